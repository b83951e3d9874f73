// Build-time generator of the demo data set: reads the readable sources in
// appdir/demo and writes the binary files of the Data folder with the core writers.
//   kt930mkdemo <definitions folder> <demo sources folder> <output Data folder>
// Every checkitem is checked against the field lines of its op code's .in file,
// so a typo in the demo sources fails the build instead of shipping.
#include "AutosequenceConversions.h"
#include "FieldSpec.h"
#include "OpCodeDefinitions.h"
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include "autosequenceFileStructs.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct TsourceLine {
    int number;
    std::string text;
};

std::vector<TsourceLine> readSource(const fs::path &file)
{
    std::ifstream in(file);
    if (!in)
        throw std::runtime_error("cannot open " + file.string());
    std::vector<TsourceLine> lines;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line[0] != '#')
            lines.push_back({number, line});
    }
    return lines;
}

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::string part;
    std::istringstream in(text);
    while (std::getline(in, part, separator))
        parts.push_back(part);
    if (!text.empty() && text.back() == separator)
        parts.emplace_back();
    return parts;
}

[[noreturn]] void fail(const fs::path &file, int line, const std::string &why)
{
    throw std::runtime_error(file.filename().string() + ":" + std::to_string(line) + ": " + why);
}

// Field fields of every ordinary op code, by letter.
std::map<char, std::vector<TfieldSpec>> readFieldSpecs(const fs::path &definitions)
{
    std::map<char, std::vector<TfieldSpec>> fields;
    for (const fs::path &file : OpCodeDefinitions::listFiles(definitions)) {
        TinstStruct header = OpCodeDefinitions::readHeader(file);
        if (header.opCode == 'A')
            continue;
        std::vector<std::string> lines = OpCodeDefinitions::readLines(file);
        for (std::size_t i = 2; i < lines.size(); ++i)
            fields[header.opCode].push_back(TfieldSpec::parse(lines[i]));
    }
    return fields;
}

void checkValue(const TfieldSpec &field, const std::string &value, const fs::path &file, int line)
{
    if (field.typeTag != 1 && field.typeTag != 2)
        return;
    if (value.empty())
        return;
    std::size_t used = 0;
    double number = std::stod(value, &used);
    if (used != value.size() || (field.typeTag == 1 && value.find_first_not_of("0123456789") != std::string::npos))
        fail(file, line, "\"" + value + "\" is not a valid number for \"" + field.leftLabel + "\"");
    if (field.range.hasRange && (number < field.range.minimum || number > field.range.maximum))
        fail(file, line, "\"" + value + "\" is outside the range of \"" + field.leftLabel + "\"");
}

TInstrDatabase readCheckitems(const fs::path &file, const std::map<char, std::vector<TfieldSpec>> &fields)
{
    TInstrDatabase db;
    std::size_t slot = 0;
    for (const TsourceLine &line : readSource(file)) {
        std::vector<std::string> parts = split(line.text, ',');
        if (parts.size() < 3 || parts[0].size() != 1 || parts[1].size() != 1)
            fail(file, line.number, "expected \"category,op,field|field\"");
        std::string values = line.text.substr(4); // commas in the values stay
        char category = parts[0][0] == '-' ? ' ' : parts[0][0];
        char opCode = parts[1][0];
        auto field = fields.find(opCode);
        if (field == fields.end())
            fail(file, line.number, std::string("unknown op code ") + opCode);
        std::vector<std::string> fields = split(values, '|');
        if (fields.size() != field->second.size())
            fail(file, line.number, "expected " + std::to_string(field->second.size()) + " values");
        std::string command;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            checkValue(field->second[i], fields[i], file, line.number);
            command += (i ? "\t" : "") + fields[i];
        }
        if (command.size() > 41)
            fail(file, line.number, "command text longer than 41 characters");
        if (slot >= TInstrDatabase::SlotCount)
            fail(file, line.number, "too many checkitems");
        db[slot++].assign(category, opCode, command);
    }
    return db;
}

std::vector<std::uint16_t> readNumbers(const std::string &text, std::size_t limit, std::size_t checkitemCount,
                                       const fs::path &file, int line)
{
    std::vector<std::uint16_t> numbers;
    std::istringstream in(text);
    int number;
    while (in >> number) {
        if (number < 1 || static_cast<std::size_t>(number) > checkitemCount)
            fail(file, line, "no checkitem " + std::to_string(number));
        numbers.push_back(static_cast<std::uint16_t>(number));
    }
    if (!in.eof())
        fail(file, line, "bad checkitem list");
    if (numbers.size() > limit)
        fail(file, line, "more than " + std::to_string(limit) + " checkitems");
    return numbers;
}

// "title1|title2|setting|1 2 3" or "UNUSED".
Tautosequence parseSequence(const TsourceLine &line, std::size_t checkitemCount, const fs::path &file)
{
    Tautosequence sequence;
    if (line.text == "UNUSED") {
        sequence.makeUnused();
        return sequence;
    }
    std::vector<std::string> parts = split(line.text, '|');
    if (parts.size() != 4 || parts[0].size() > 18 || parts[1].size() > 18)
        fail(file, line.number, "expected \"title1|title2|setting|numbers\" with titles of at most 18 characters");
    Tautosequence::setTitle(sequence.title1, parts[0]);
    Tautosequence::setTitle(sequence.title2, parts[1]);
    int setting = std::stoi(parts[2]);
    if (!TesterSetting::isValid(static_cast<std::uint16_t>(setting)))
        fail(file, line.number, "setting word above 31");
    sequence.setting = static_cast<std::uint16_t>(setting);
    std::vector<std::uint16_t> numbers =
        readNumbers(parts[3], Tautosequence::ItemCount, checkitemCount, file, line.number);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        sequence.items[i] = numbers[i];
    if (numbers.size() < Tautosequence::ItemCount)
        sequence.items[numbers.size()] = 0;
    return sequence;
}

void padUnused(std::vector<Tautosequence> &sequences, std::size_t count)
{
    while (sequences.size() < count) {
        sequences.emplace_back();
        sequences.back().makeUnused();
    }
}

std::vector<Tautosequence> readInspections(const fs::path &file, std::size_t checkitemCount)
{
    std::vector<Tautosequence> inspections;
    for (const TsourceLine &line : readSource(file))
        inspections.push_back(parseSequence(line, checkitemCount, file));
    if (inspections.size() > 18)
        fail(file, 0, "more than 18 physical inspections");
    padUnused(inspections, 18);
    return inspections;
}

std::vector<TuserTester> readTesters(const fs::path &file, std::size_t checkitemCount)
{
    std::vector<TuserTester> testers;
    for (const TsourceLine &line : readSource(file)) {
        if (line.text.rfind("tester|", 0) == 0) {
            testers.push_back({line.text.substr(7), {}});
            continue;
        }
        if (testers.empty() || testers.back().sequences.size() == 12)
            fail(file, line.number, "sequence outside a tester or more than 12 in one");
        testers.back().sequences.push_back(parseSequence(line, checkitemCount, file));
    }
    if (testers.size() != 5)
        fail(file, 0, "expected 5 user testers");
    for (TuserTester &tester : testers)
        padUnused(tester.sequences, 12);
    return testers;
}

TTestProcList readChecklists(const fs::path &file, std::size_t checkitemCount)
{
    TTestProcList checklists;
    checklists.makeUnused();
    std::size_t index = 0;
    for (const TsourceLine &line : readSource(file)) {
        std::vector<std::string> parts = split(line.text, '|');
        if (parts.size() != 3 || parts[0].size() > 41)
            fail(file, line.number, "expected \"title|setting|numbers\" with a title of at most 41 characters");
        if (index >= checklists.size())
            fail(file, line.number, "more than 500 checklists");
        TTestProc &checklist = checklists.items[index++];
        checklist.blank();
        parts[0].copy(checklist.title, parts[0].size());
        checklist.setting = static_cast<std::uint16_t>(std::stoi(parts[1]));
        std::vector<std::uint16_t> numbers =
            readNumbers(parts[2], TEST_PROCEDURE::ItemCount, checkitemCount, file, line.number);
        for (std::size_t i = 0; i < numbers.size(); ++i)
            checklist.items[i] = numbers[i];
        if (numbers.size() < TEST_PROCEDURE::ItemCount)
            checklist.items[numbers.size()] = 0;
    }
    return checklists;
}

void writeAsq(TautosequenceFile &file, const fs::path &path)
{
    if (file.write(path) != 0)
        throw std::runtime_error("cannot write " + path.string());
}

std::size_t usedSlots(const TInstrDatabase &db)
{
    std::size_t count = 0;
    while (count < db.size() && !db[count].isFree())
        ++count;
    return count;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::cerr << "usage: kt930mkdemo <definitions folder> <demo sources folder> <output Data folder>\n";
        return 2;
    }
    const fs::path definitions = argv[1], sources = argv[2], data = argv[3];
    try {
        fs::create_directories(data);
        TInstrDatabase db = readCheckitems(sources / "checkitems.txt", readFieldSpecs(definitions));
        const std::size_t count = usedSlots(db);
        std::vector<Tautosequence> inspections = readInspections(sources / "inspections.txt", count);
        std::vector<TuserTester> testers = readTesters(sources / "testers.txt", count);
        TTestProcList checklists = readChecklists(sources / "checklists.txt", count);

        if (TInstrDatabase::saveMasterTable(db.slots(), data / "mit.dat") != 0)
            throw std::runtime_error("cannot write mit.dat");
        TautosequenceFile inspectionFile;
        AutosequenceConversions::inspectionsToFile(inspections, inspectionFile);
        writeAsq(inspectionFile, data / "inspection.asq");
        std::vector<TautosequenceFile> testerFiles;
        AutosequenceConversions::userTestersToFiles(testers, testerFiles);
        for (std::size_t i = 0; i < testerFiles.size(); ++i)
            writeAsq(testerFiles[i], data / ("usertester" + std::to_string(i + 1) + ".asq"));
        TautosequenceFile checklistFile;
        AutosequenceConversions::checklistsToFile(checklists, checklistFile);
        writeAsq(checklistFile, data / "testProc.asq");
    } catch (const std::exception &e) {
        std::cerr << "kt930mkdemo: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
