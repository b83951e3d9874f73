#include "TdataFolderSummary.h"
#include "MessageSink.h"
#include "TdataSet.h"
#include "TimeStamp.h"
#include <algorithm>
#include <sys/stat.h>

namespace {
// The loaders' boxes become lines; a question would have no one to answer it.
class TsummarySink : public MessageSink {
public:
    std::vector<std::string> lines;
    MsgAnswer show(const Message &message) override
    {
        std::string text = message.caption + ": " + message.text;
        std::replace_if(
            text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        lines.push_back(text);
        return message.buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Ok;
    }
};
} // namespace

TdataFolderSummary TdataFolderSummary::of(const std::filesystem::path &appDir)
{
    TsummarySink sink;
    TdataSet data(appDir, sink);
    data.loadAll();
    TdataFolderSummary summary;
    for (std::size_t i = 0; i < data.checkitems.size(); ++i)
        summary.checkitems += !data.checkitems[i].isFree();
    summary.inspections = int(std::count_if(data.inspections.begin(), data.inspections.end(),
                                            [](const Tautosequence &sequence) { return !sequence.isUnused(); }));
    for (const TuserTester &tester : data.userTesters)
        summary.sequences += int(std::count_if(tester.sequences.begin(), tester.sequences.end(),
                                               [](const Tautosequence &sequence) { return !sequence.isUnused(); }));
    for (std::size_t i = 0; i < data.checklists.size(); ++i)
        summary.checklists += !data.checklists.items[i].isUnused();
    std::time_t newest = 0;
    for (const std::string &name : TdataSet::fileNames()) {
        struct stat st {};
        if (::stat(data.dataFile(name).c_str(), &st) == 0 && S_ISREG(st.st_mode))
            newest = std::max(newest, st.st_mtime);
    }
    if (newest)
        summary.lastSaved = localTimeText(newest);
    summary.lastTransfer = TlastTransfer::read(data.dataFolder());
    summary.warnings = sink.lines;
    for (const std::string &warning : data.folderWarnings())
        summary.warnings.push_back(warning);
    return summary;
}
