#include "TshowCommand.h"
#include "CategoryDescriptors.h"
#include "OpCodeDefinitions.h"
#include "TautosequenceCall.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TcommandFields.h"
#include "TdataSet.h"
#include "TitemList.h"
#include "TlistTexts.h"
#include "TtextEncoding.h"
#include <cstdio>
#include <iostream>

namespace {
// What show prints, already in UTF-8, gathered once for both output forms.
struct Tcheckitem {
    int number;
    std::string category, categoryName, opCode, opCodeName, command;
    TnamedCommand fields;
};
struct Ttester {
    std::string root;
    std::vector<std::string> children;
};
struct Tchecklist {
    int number;
    std::string title;
    std::vector<int> items;
    std::vector<std::string> steps; // what each item does, as the checklist editor shows it
};
struct Treport {
    std::vector<Message> messages;
    std::vector<std::string> folderWarnings;
    std::vector<Tcheckitem> checkitems;
    std::vector<std::string> inspections;
    std::vector<Ttester> testers;
    std::vector<Tchecklist> checklists;
};

std::string utf8(const std::string &text)
{
    return TtextEncoding::toUtf8(text);
}

// "<number> <op code name> | <command>"; an "A" step names the autosequence it runs.
std::string stepText(const TdataSet &data, const TopCodeTable &opCodes, std::uint16_t item)
{
    const std::size_t index = item - 1u;
    if (index >= data.checkitems.size() || data.checkitems[index].isFree())
        return std::to_string(item) + " (no such checkitem)";
    const TInstr &record = data.checkitems[index];
    const auto opCode = opCodes.find(record.opCode);
    std::string command = record.opCode == 'A'
                              ? TautosequenceCall::runsText(record.commandText(), data.inspections, data.userTesters)
                              : record.commandText();
    command.erase(command.find_last_not_of(' ') + 1);
    return std::to_string(item) + " " + (opCode != opCodes.end() ? utf8(opCode->second.name) : "(unknown op code)") +
           " | " + TtextEncoding::toUtf8(command, true);
}

Treport gather(const std::filesystem::path &appDir)
{
    TcliMessageSink sink;
    TdataSet data(appDir, sink);
    data.loadAll();

    TopCodeTable opCodes;
    OpCodeDefinitions::loadReadable(data.dataFolder(), opCodes, sink);
    const TcommandFields fields = TcommandFields::load(data.dataFolder());
    TcategoryMap categories;
    if (CategoryDescriptors::load(data.dataFile("catdes.dat"), categories) != 0)
        sink.error(CategoryDescriptors::loadErrorCaption(), CategoryDescriptors::loadErrorText());

    Treport report;
    for (std::size_t i = 0; i < data.checkitems.size(); ++i) {
        const TInstr &record = data.checkitems[i];
        if (record.isFree())
            continue;
        auto opCode = opCodes.find(record.opCode);
        // Trailing blanks are padding; trailing tabs are empty fields and stay.
        std::string command = record.commandText();
        command.erase(command.find_last_not_of(' ') + 1);
        report.checkitems.push_back({static_cast<int>(i + 1), utf8(std::string(1, record.category)),
                                     utf8(CategoryDescriptors::displayText(categories, record.category)),
                                     utf8(std::string(1, record.opCode)),
                                     opCode != opCodes.end() ? utf8(opCode->second.name) : "(unknown op code)",
                                     TtextEncoding::toUtf8(command, true), fields.name(record)});
    }
    for (const Tautosequence &inspection : data.inspections)
        report.inspections.push_back(utf8(TlistTexts::inspectionRow(inspection)));
    for (std::size_t i = 0; i < data.userTesters.size(); ++i) {
        TuserTester &tester = data.userTesters[i];
        Ttester shown{utf8(TlistTexts::testerRoot(static_cast<int>(i), tester)), {}};
        for (std::size_t j = 0; j < tester.sequences.size(); ++j)
            shown.children.push_back(utf8(TlistTexts::testerChild(static_cast<int>(j), tester.sequences[j])));
        report.testers.push_back(shown);
    }
    for (std::size_t i = 0; i < data.checklists.size(); ++i) {
        const TTestProc &checklist = data.checklists.items[i];
        if (checklist.isUnused())
            continue;
        Tchecklist shown{static_cast<int>(i + 1), utf8(TlistTexts::trim(checklist.titleText())), {}, {}};
        for (std::uint16_t item : TitemList::used(checklist.items)) {
            shown.items.push_back(item);
            shown.steps.push_back(stepText(data, opCodes, item));
        }
        report.checklists.push_back(shown);
    }
    report.messages = sink.messages();
    report.folderWarnings = data.folderWarnings();
    return report;
}

std::string itemList(const std::vector<int> &items)
{
    std::string text;
    for (int item : items)
        text += (text.empty() ? "" : " ") + std::to_string(item);
    return text;
}

void printText(const Treport &report, bool withFields, std::ostream &out)
{
    out << "Load messages:" << (report.messages.empty() ? " none" : "") << "\n";
    for (const Message &message : report.messages) {
        out << "  " << utf8(message.caption) << "\n";
        std::string text = TcliMessageSink::printable(message.text);
        for (std::size_t start = 0; start <= text.size();) {
            std::size_t end = text.find('\n', start);
            if (end == std::string::npos)
                end = text.size();
            out << "    " << text.substr(start, end - start) << "\n";
            start = end + 1;
        }
    }
    if (!report.folderWarnings.empty())
        out << "\nData folder warnings:\n";
    for (const std::string &warning : report.folderWarnings)
        out << "  " << warning << "\n";
    out << "\nCheckitems (" << report.checkitems.size() << " used):\n";
    for (const Tcheckitem &item : report.checkitems) {
        char number[16];
        std::snprintf(number, sizeof number, "%4d", item.number);
        out << number << "  " << item.category << " " << item.categoryName << " | " << item.opCodeName << " | "
            << item.command << "\n";
        if (withFields && !item.fields.values.empty())
            out << "        " << utf8(item.fields.text()) << "\n";
        if (withFields && !item.fields.misfit.empty())
            out << "        does not fit its fields: " << utf8(item.fields.misfit) << "\n";
    }
    out << "\nPhysical Inspections:\n";
    for (std::size_t i = 0; i < report.inspections.size(); ++i)
        out << "  " << i + 1 << ". " << report.inspections[i] << "\n";
    out << "\nUser Tester Sequences:\n";
    for (const Ttester &tester : report.testers) {
        out << "  " << tester.root << "\n";
        for (const std::string &child : tester.children)
            out << "      " << child << "\n";
    }
    out << "\nChecklists (" << report.checklists.size() << " used):\n";
    for (const Tchecklist &checklist : report.checklists) {
        out << "  " << checklist.number << ". " << checklist.title << ": " << itemList(checklist.items) << "\n";
        for (std::size_t i = 0; i < checklist.steps.size(); ++i)
            out << "      " << i + 1 << ". " << checklist.steps[i] << "\n";
    }
}

void printJson(const Treport &report, std::ostream &out)
{
    auto q = TtextEncoding::jsonString;
    out << "{\n  \"messages\": [";
    for (std::size_t i = 0; i < report.messages.size(); ++i)
        out << (i ? ",\n" : "\n") << "    {\"caption\": " << q(utf8(report.messages[i].caption))
            << ", \"text\": " << q(utf8(report.messages[i].text)) << "}";
    out << "\n  ],\n  \"folderWarnings\": [";
    for (std::size_t i = 0; i < report.folderWarnings.size(); ++i)
        out << (i ? ",\n" : "\n") << "    " << q(report.folderWarnings[i]);
    out << "\n  ],\n  \"checkitems\": [";
    for (std::size_t i = 0; i < report.checkitems.size(); ++i) {
        const Tcheckitem &item = report.checkitems[i];
        out << (i ? ",\n" : "\n") << "    {\"number\": " << item.number << ", \"category\": " << q(item.category)
            << ", \"categoryName\": " << q(item.categoryName) << ", \"opCode\": " << q(item.opCode)
            << ", \"opCodeName\": " << q(item.opCodeName) << ", \"command\": " << q(item.command) << ", \"fields\": [";
        for (std::size_t k = 0; k < item.fields.values.size(); ++k) {
            const TnamedValue &value = item.fields.values[k];
            out << (k ? ", " : "") << "{\"label\": " << q(utf8(value.label)) << ", \"value\": " << q(utf8(value.value))
                << ", \"unit\": " << q(utf8(value.unit)) << "}";
        }
        out << "], \"misfit\": " << (item.fields.misfit.empty() ? "null" : q(utf8(item.fields.misfit))) << "}";
    }
    out << "\n  ],\n  \"physicalInspections\": [";
    for (std::size_t i = 0; i < report.inspections.size(); ++i)
        out << (i ? ",\n" : "\n") << "    {\"number\": " << i + 1 << ", \"text\": " << q(report.inspections[i]) << "}";
    out << "\n  ],\n  \"userTesters\": [";
    for (std::size_t i = 0; i < report.testers.size(); ++i) {
        out << (i ? ",\n" : "\n") << "    {\"text\": " << q(report.testers[i].root) << ", \"sequences\": [";
        for (std::size_t j = 0; j < report.testers[i].children.size(); ++j)
            out << (j ? ", " : "") << q(report.testers[i].children[j]);
        out << "]}";
    }
    out << "\n  ],\n  \"checklists\": [";
    for (std::size_t i = 0; i < report.checklists.size(); ++i) {
        const Tchecklist &checklist = report.checklists[i];
        out << (i ? ",\n" : "\n") << "    {\"number\": " << checklist.number << ", \"title\": " << q(checklist.title)
            << ", \"items\": [";
        for (std::size_t j = 0; j < checklist.items.size(); ++j)
            out << (j ? ", " : "") << checklist.items[j];
        out << "], \"steps\": [";
        for (std::size_t j = 0; j < checklist.steps.size(); ++j)
            out << (j ? ", " : "") << q(checklist.steps[j]);
        out << "]}";
    }
    out << "\n  ]\n}\n";
}
} // namespace

std::string TshowCommand::summary() const
{
    return "print the data set: checkitems, inspections, user testers, checklists";
}

std::string TshowCommand::usage() const
{
    return "Usage: kt930ctl show [--fields] [--json] [--appdir DIR]\n"
           "Loads the data set of DIR/Data as the editor does and prints the load messages,\n"
           "the used checkitems (number, category, op code, command with tabs shown as \xC2\xBB),\n"
           "the physical inspections, the user tester sequences and the used checklists with their\n"
           "steps (a step that runs an autosequence names it), and warns\n"
           "when other users may write the data folder or one of its data files.\n"
           "  --fields       under each checkitem, its command's values named by the fields of its op\n"
           "                 code's definition file (\"Low limit=0 ohm/MOhm/uA\"), or why the command does\n"
           "                 not fit those fields\n"
           "  --json         print the same as one JSON document; each checkitem has its \"fields\"\n"
           "                 (label, value, unit) and \"misfit\" (null when the command fits)\n"
           "  --appdir DIR   application folder (default: as kt930ctl where says)\n";
}

int TshowCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {"--json", "--fields"}, 0))
        return *exitCode;
    Treport report = gather(args.appDir);
    if (args.has("--json"))
        printJson(report, std::cout);
    else
        printText(report, args.has("--fields"), std::cout);
    return 0;
}
