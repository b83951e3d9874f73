// "Compare With KT930..." through the host's menu against the real simulator: the
// settings form, the read into memory, the grouped differences; no file changes.
#include "../e2e/KnownDataSet.h"
#include "../e2e/SimulatorUnderTest.h"
#include "RecordingMessageSink.h"
#include "TcomparisonDialog.h"
#include "ThostMainWindow.h"
#include "TlastTransfer.h"
#include "UiTestSupport.h"
#include <QTreeWidget>

namespace fs = std::filesystem;

namespace {
QStringList treeTexts(const QTreeWidget *tree)
{
    QStringList texts;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        texts << tree->topLevelItem(i)->text(0);
        for (int j = 0; j < tree->topLevelItem(i)->childCount(); ++j)
            texts << "  " + tree->topLevelItem(i)->child(j)->text(0);
    }
    return texts;
}

std::string everyFile(const fs::path &folder)
{
    std::string all;
    for (const auto &entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            all += entry.path().string() + ":" + TempDir::read(entry.path()) + "\n";
    return all;
}
} // namespace

TEST(HostCompareTest, TheAnalyzersDataSetAgainstTheDiskGroupedByKind)
{
    AppDirScope appDir;
    appDir.copyDemoDefinitions();
    const KnownImages known = KnownDataSet::images(3);
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, known);
    ASSERT_TRUE(sim.ready());
    RecordingMessageSink sink;
    TdataSet pc(appDir.dir().path(), sink);
    KnownDataSet::fill(pc, known);
    Tautosequence::setTitle(pc.inspections[1].title1, "CHANGED ON PC");
    ASSERT_TRUE(pc.save(TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters | TdataSet::Checklists));

    TappFolders folders{appDir.dir().path(), fs::path(KT930_TEST_APPDIR) / "Plugins", KT930_TEST_APPDIR, {}, "test"};
    TempDir settings;
    folders.hostSettings = settings.path();
    ThostMainWindow window(folders);
    window.show();
    // Through the menu, and through the overview's offer after an upload.
    const auto compare = [&](const std::function<void()> &start) {
        QString summary;
        connectByEthernet(sim.address(), [&] {
            whenTrue([] { return qobject_cast<TcomparisonDialog *>(QApplication::activeModalWidget()) != nullptr; },
                     [&] {
                         auto *dialog = qobject_cast<TcomparisonDialog *>(QApplication::activeModalWidget());
                         summary = dialog->summary() + "\n" + treeTexts(dialog->differences()).join("\n");
                         dialog->reject();
                     });
        });
        start();
        return summary.toStdString();
    };
    const std::string expected = "1 difference (inspections 1)\nInspections (1)\n"
                                 "  inspection 2 title 1: \"CHANGED ON PC\" -> \"Insp 1 s3\"";
    EXPECT_EQ(compare([&] { window.findChild<QAction *>("actionCompare")->trigger(); }), expected);
    auto *verify = child<QPushButton>(window.mainView(), "btnVerifyUpload");
    EXPECT_FALSE(verify->isVisible());
    ASSERT_TRUE(TlastTransfer::record(appDir.dir().path() / "Data", "upload", "Ethernet " + sim.address()));
    const std::string before = everyFile(appDir.dir().path() / "Data");
    window.mainView()->hide(); // as when a frame hands the view back
    window.mainView()->show();
    ASSERT_TRUE(verify->isVisible());
    EXPECT_EQ(compare([&] { verify->click(); }), expected);
    EXPECT_EQ(everyFile(appDir.dir().path() / "Data"), before); // no data file, and no record of a transfer
    EXPECT_TRUE(sink.messages.empty());
}
