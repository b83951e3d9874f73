// The host's data folders with the real plug-in: switching with the frame on show,
// Save Data Folder As, the recent folders and the overview below the buttons.
#include "../e2e/SimulatorUnderTest.h"
#include "AutosequenceConversions.h"
#include "ThostMainWindow.h"
#include "UiTestSupport.h"

namespace fs = std::filesystem;

namespace {
class HostFolderTest : public ::testing::Test {
protected:
    HostFolderTest()
    {
        fs::copy(fs::path(KT930_TEST_APPDIR) / "Data", a / "Data",
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        TappFolders demo{a, fs::path(KT930_TEST_APPDIR) / "Plugins", KT930_TEST_APPDIR, {}, "test"};
        demo.hostSettings = settings.path();
        window = std::make_unique<ThostMainWindow>(demo);
        window->show();
    }
    ~HostFolderTest() override
    {
        window.reset();
        qunsetenv(TappDir::OpenedFolderVariable);
    }
    Tkt930Frame *frame() const { return window->container()->findChild<Tkt930Frame *>(); }
    QString shown(const char *name) const { return child<QLabel>(window->mainView(), name)->text(); }
    AppDirScope appDir; // the application object, and the folder the plug-in starts on
    TempDir settings, customers;
    const fs::path a = appDir.dir().path(), b = customers / "b&c"; // no shortcut
    std::unique_ptr<ThostMainWindow> window;
};

QString boxText;
void answerNextBox(QMessageBox::StandardButton button)
{
    whenModal([button](QWidget *widget) {
        auto *box = static_cast<QMessageBox *>(widget);
        boxText = box->windowTitle() + ": " + box->text();
        box->button(button)->click();
    });
}

TEST_F(HostFolderTest, OpeningAFolderWithTheFrameShownSavesItsEditsReadsTheNewSetAndRemembersBoth)
{
    fs::copy(a, b, fs::copy_options::recursive);
    TautosequenceFile file;
    AutosequenceConversions::inspectionsToFile({sequence("CUSTOMER B", "SITE 2")}, file);
    ASSERT_EQ(file.write(b / "Data/inspection.asq"), 0);
    window->showPlugin(0);
    child<QListWidget>(frame(), "lstIP")->setCurrentRow(0);
    answerNextBox(QMessageBox::Yes);
    click(frame(), "BtnIPClear"); // in the frame only, until it is left
    const std::string before = TempDir::read(a / "Data/inspection.asq");

    ASSERT_TRUE(window->openDataFolder(b));
    EXPECT_NE(TempDir::read(a / "Data/inspection.asq"), before);
    EXPECT_TRUE(frame()->isVisible());
    EXPECT_EQ(listTexts(frame()), QStringList{"CUSTOMER B - SITE 2"});
    const QString folderB = QString::fromStdString(b.string());
    EXPECT_EQ(window->windowTitle(), "KT930 Plus PC - " + folderB);
    EXPECT_EQ(child<QLabel>(window->statusBar(), "applicationFolder")->text(), "Data folder: " + folderB);
    EXPECT_EQ(TempDir::read(settings / "recent-folders"), b.string() + "\n" + a.string() + "\n");
    fs::create_directory_symlink(b, customers / "link"); // the same folder, reached another way
    ASSERT_TRUE(window->openDataFolder(customers / "link"));
    EXPECT_EQ(window->applicationFolder(), b);

    // Back in the main view, the overview of b offers a as one click.
    click(frame(), "BtnExit");
    EXPECT_EQ(shown("folder") + "|" + shown("inspections") + "|" + shown("warnings"), folderB + "|1 used|none");
    QPushButton *entry = nullptr;
    for (QPushButton *button : window->mainView()->findChildren<QPushButton *>())
        entry = button->text() == QString::fromStdString(a.string()) ? button : entry;
    ASSERT_NE(entry, nullptr);
    entry->click();
    EXPECT_EQ(window->applicationFolder(), a);
    EXPECT_EQ(TappDir::applicationFolder(), a); // what the plug-in reads
    const QString shownB = QString(folderB).replace("&", "&&");
    EXPECT_EQ(window->findChild<QMenu *>("menuRecent")->actions().value(0)->text(), "&1  " + shownB);
    EXPECT_TRUE(std::ranges::any_of(window->mainView()->findChildren<QPushButton *>(),
                                    [&](const QPushButton *button) { return button->text() == shownB; }));

    // A folder without Data/, and no shipped defaults to make one from: nothing changes.
    answerNextBox(QMessageBox::Ok);
    EXPECT_FALSE(window->openDataFolder(settings.path()));
    EXPECT_EQ(boxText.toStdString(), "Open Data Folder: The folder " + settings.path().string() +
                                         " holds no Data folder.\nChoose a folder that holds one, or make a new one "
                                         "from the data set in use with Save Data Folder As...");
    EXPECT_EQ(window->applicationFolder(), a);

    // Quit with edits on show: the frame saves them first.
    window->showPlugin(0);
    child<QListWidget>(frame(), "lstIP")->setCurrentRow(1);
    answerNextBox(QMessageBox::Yes);
    click(frame(), "BtnIPClear");
    const std::string unsaved = TempDir::read(a / "Data/inspection.asq");
    window->findChild<QAction *>(QStringLiteral("actionQuit"))->trigger();
    EXPECT_NE(TempDir::read(a / "Data/inspection.asq"), unsaved);
}

// End to end: the copy is the folder the frame downloads into, and the overview says so.
TEST_F(HostFolderTest, SaveAsSwitchesToTheCopyAndTheOverviewShowsItsLastDownload)
{
    window->showPlugin(0);
    ASSERT_TRUE(window->saveDataFolderAs(b));
    EXPECT_TRUE(frame()->isVisible());

    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, KnownDataSet::images(1));
    ASSERT_TRUE(sim.ready());
    connectByEthernet(sim.address());
    click(frame(), "BtnDownload");
    click(frame(), "BtnExit");
    EXPECT_EQ(TempDir::read(b / "Data/mit.dat"), KnownDataSet::images(1).checkitems);
    EXPECT_EQ(shown("lastTransfer").mid(19), ", download over Ethernet " + QString::fromStdString(sim.address()));
    EXPECT_EQ((shown("checkitems") + "|" + shown("inspections") + "|" + shown("sequences")).toStdString(),
              "836 used|18 used|60 used");
}
} // namespace
