#include "TanalyzerComparison.h"
#include "CategoryDescriptors.h"
#include "OpCodeDefinitions.h"
#include "TcomparisonDialog.h"
#include "TdataSet.h"
#include "TdataSetComparison.h"
#include "TtransferRunner.h"
#include "VAROAutoSeqEditor.h"

namespace {
// Passes boxes on and remembers whether there were any: a load that said something
// fell back to defaults somewhere, which the comparison must not hide.
struct TnoticingSink : MessageSink {
    explicit TnoticingSink(MessageSink &target) : target(target) {}
    MsgAnswer show(const Message &message) override
    {
        spoke = true;
        return target.show(message);
    }
    MessageSink &target;
    bool spoke = false;
};
} // namespace

bool TanalyzerComparison::run(const std::filesystem::path &appDir, const TPluginHostInfo &host, MessageSink &messages,
                              QWidget *parent)
{
    TtransferJob::Parameters parameters;
    if (!TtransferRunner::chooseTransport(parameters, false, &host, messages))
        return false;

    TnoticingSink loadMessages(messages);
    TdataSet mine(appDir, loadMessages);
    mine.loadAll();
    TopCodeTable opCodes;
    OpCodeDefinitions::loadReadable(mine.dataFolder(), opCodes, loadMessages);

    // Never saved: the analyzer's content goes into this set alone.
    TdataSet analyzer(appDir, messages);
    parameters.kind = TtransferJob::Kind::Read;
    parameters.data = &analyzer;
    parameters.context = &analyzer;
    TtransferJob job(parameters, messages);
    if (TtransferRunner::run(job, &analyzer) == 2 || !job.completed())
        return false;

    const TdataSetComparison comparison({mine, nullptr}, {analyzer, nullptr}, opCodes);
    QString caption = QStringLiteral("This PC (%1) against the KT930").arg(QString::fromStdString(appDir.string()));
    if (loadMessages.spoke)
        caption += QStringLiteral("\nThis PC's data set did not load cleanly: defaults stood in for what failed.");
    TcomparisonDialog dialog(comparison, caption, parent);
    dialog.exec();
    return true;
}
