#include "AutosequenceConversions.h"
#include "TitemList.h"
#include <cstring>

namespace {
const char InspectionsTitle[] = "Physical Inspections";
const char UserTestersTitle[] = "User Tester Autosequences";
constexpr std::size_t TitleBytes = sizeof Tautosequence::title1; // 19

// strncpy: stops at the first 0 of the source, zero pads the rest of count.
void boundedCopy(char *target, const char *source, std::size_t count)
{
    std::size_t length = strnlen(source, count);
    std::memcpy(target, source, length);
    std::memset(target + length, 0, count - length);
}

TautosequenceFileStorage toRecord(const Tautosequence &sequence)
{
    TautosequenceFileStorage record;
    boundedCopy(record.title1, sequence.title1, TitleBytes);
    boundedCopy(record.title2, sequence.title2, TitleBytes);
    record.setting = sequence.setting;
    record.items.assign(std::begin(sequence.items), std::end(sequence.items));
    record.itemCount = static_cast<std::uint16_t>(record.items.size());
    return record;
}

Tautosequence fromRecord(const TautosequenceFileStorage &record)
{
    Tautosequence sequence;
    boundedCopy(sequence.title1, record.title1, TitleBytes);
    boundedCopy(sequence.title2, record.title2, TitleBytes);
    sequence.setting = record.setting;
    TitemList(sequence.items).assignFileItems(record.items);
    return sequence;
}

// The tester that filesToUserTesters adds for a missing file: empty titles.
TuserTester addedUserTester(unsigned k)
{
    TuserTester tester;
    tester.name = "USER TESTER #" + std::to_string(k);
    Tautosequence empty;
    std::memset(empty.title1, 0, sizeof empty.title1);
    std::memset(empty.title2, 0, sizeof empty.title2);
    tester.sequences.assign(12, empty);
    return tester;
}
}

namespace AutosequenceConversions {

void inspectionsToFile(const std::vector<Tautosequence> &inspections, TautosequenceFile &file)
{
    file = TautosequenceFile();
    file.setTitle(InspectionsTitle);
    for (const Tautosequence &sequence : inspections)
        file.records.push_back(toRecord(sequence));
    file.header.recordCount = static_cast<std::uint16_t>(file.records.size());
}

void userTesterToFile(const TuserTester &tester, TautosequenceFile &file)
{
    file = TautosequenceFile();
    file.setTitle(UserTestersTitle);
    file.setSubtitle(tester.name);
    for (const Tautosequence &sequence : tester.sequences)
        file.records.push_back(toRecord(sequence));
    file.header.recordCount = static_cast<std::uint16_t>(file.records.size());
}

void userTestersToFiles(const std::vector<TuserTester> &testers, std::vector<TautosequenceFile> &files)
{
    files.clear();
    for (const TuserTester &tester : testers)
        userTesterToFile(tester, files.emplace_back());
}

void fileToInspections(const TautosequenceFile &file, std::vector<Tautosequence> &inspections)
{
    inspections.clear();
    for (const TautosequenceFileStorage &record : file.records)
        inspections.push_back(fromRecord(record));
}

TuserTester fileToUserTester(const TautosequenceFile &file)
{
    TuserTester tester;
    tester.name = file.subtitle();
    for (const TautosequenceFileStorage &record : file.records)
        tester.sequences.push_back(fromRecord(record));
    return tester;
}

void filesToUserTesters(const std::vector<TautosequenceFile> &files, std::vector<TuserTester> &testers)
{
    constexpr std::size_t Testers = 5;
    testers.clear();
    for (std::size_t i = 0; i < files.size() && i < Testers; ++i)
        testers.push_back(fileToUserTester(files[i]));
    if (files.size() >= Testers)
        return;
    // Counting from F - 1 as an unsigned number: one tester too many for 1..4
    // files, none at all for 0 files (F - 1 wraps around). Kept as it is.
    for (unsigned k = static_cast<unsigned>(files.size()) - 1u; k <= 4u; ++k)
        testers.push_back(addedUserTester(k));
}

void fileToChecklists(const TautosequenceFile &file, TTestProcList &checklists)
{
    checklists.items.clear();
    for (const TautosequenceFileStorage &record : file.records) {
        TTestProc &checklist = checklists.items.emplace_back();
        boundedCopy(checklist.title, record.title1, sizeof checklist.title);
        checklist.setting = record.setting;
        TitemList(checklist.items).assignFileItems(record.items);
    }
}

void checklistsToFile(const TTestProcList &checklists, TautosequenceFile &file)
{
    file = TautosequenceFile();
    for (const TTestProc &checklist : checklists.items) {
        TautosequenceFileStorage &record = file.records.emplace_back();
        boundedCopy(record.title1, checklist.title, sizeof checklist.title);
        record.setting = checklist.setting;
        record.items.assign(std::begin(checklist.items), std::end(checklist.items));
        record.itemCount = static_cast<std::uint16_t>(record.items.size());
    }
    file.header.recordCount = static_cast<std::uint16_t>(file.records.size());
}
}
