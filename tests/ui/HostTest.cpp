// The host window with the real plug-in library: view swap, reload, menus, geometry, folder messages.
// Switching data folders is in HostFolderTest.
#include "THelpWindow.h"
#include "TdataFolderSession.h"
#include "TempDir.h"
#include "ThostMainWindow.h"
#include "TrestorePoints.h"
#include "UiTestSupport.h"
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
class HostTest : public ::testing::Test {
protected:
    HostTest()
    {
        // A complete data set, so the start-up shows no message box.
        fs::copy(fs::path(KT930_TEST_APPDIR) / "Data", appDir.dir().path() / "Data",
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }
    // Data in the test's folder; plug-ins and help from the build, as an installation has them.
    TappFolders folders() const
    {
        const fs::path build(KT930_TEST_APPDIR);
        return {appDir.dir().path(), build / "Plugins", build, {}, "test"};
    }
    AppDirScope appDir;
};

// Closes any box that opens while it lives, and says whether one did.
struct BoxWatch {
    bool seen = false;
    QTimer timer;
    BoxWatch()
    {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            if (QWidget *box = QApplication::activeModalWidget())
                seen = true, box->close();
        });
        timer.start(2);
    }
};

// What the next message box said, answered with button; then runs before the button is pressed.
struct BoxSeen {
    QString caption, text;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    void answer(QMessageBox::StandardButton button, std::function<void()> then = {})
    {
        whenModal([this, button, then](QWidget *widget) {
            auto *box = static_cast<QMessageBox *>(widget);
            *this = {box->windowTitle(), box->text(), box->standardButton(box->defaultButton()), box->icon()};
            if (then)
                then();
            box->button(button) ? box->button(button)->click() : void(box->close());
        });
    }
};

Tkt930Frame *frameOf(ThostMainWindow &window)
{
    return window.container()->findChild<Tkt930Frame *>();
}

TEST_F(HostTest, ButtonShowsTheFrameWithinTheScreenAndReturnGivesTheMainViewBack)
{
    ThostMainWindow window(folders());
    window.show();
    ASSERT_EQ(window.pluginCount(), 2);
    QPushButton *pluginButton = child<QPushButton>(window.mainView(), "plugin0");
    EXPECT_EQ(pluginButton->text(), QStringLiteral("Inspections and\nUser Testers"));
    pluginButton->click();
    Tkt930Frame *frame = frameOf(window);
    ASSERT_NE(frame, nullptr);
    EXPECT_TRUE(frame->isVisible() && !window.mainView()->isVisible());
    QApplication::processEvents();
    const QRect available = window.screen()->availableGeometry();
    auto *exit = child<QPushButton>(frame, "BtnExit");
    EXPECT_TRUE(available.contains(window.frameGeometry()) &&
                available.contains(QRect(exit->mapToGlobal(QPoint()), exit->size())));
    exit->click();
    EXPECT_TRUE(!frame->isVisible() && window.mainView()->isVisible());
}

TEST_F(HostTest, ClosingTheMainWindowWithHelpOpenEndsTheProgramAndTheFrameClosesItsHelp)
{
    auto window = std::make_unique<ThostMainWindow>(folders());
    window->show();
    window->showPlugin(0);
    click(frameOf(*window), "BtnHelp");
    // By class name: the plug-in library carries its own copy of the class.
    QPointer<QWidget> help;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->inherits("THelpWindow") && w->isVisible())
            help = w;
    ASSERT_FALSE(help.isNull());
    // What kt930pc does: run the loop until the application quits. A help window
    // that held it back would leave the loop to the guard's failure code.
    QTimer::singleShot(0, window.get(), &QWidget::close);
    QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0);
    window.reset(); // what leaving the event loop does in kt930pc
    EXPECT_TRUE(help.isNull());
}

TEST_F(HostTest, LooksLikeAnApplicationIconMenusAndAbout)
{
    ThostMainWindow window(folders());
    window.show();
    EXPECT_FALSE(window.windowIcon().isNull());
    QStringList menus, entries;
    for (QAction *menu : window.menuBar()->actions()) {
        menus << menu->text();
        for (QAction *entry : menu->menu()->actions())
            entries << entry->text();
    }
    EXPECT_EQ(menus, (QStringList{"&File", "&Help"}));
    EXPECT_EQ(entries, (QStringList{"&Open Data Folder...", "Save Data Folder &As...", "Recent Data &Folders", "",
                                    "&Restore Previous Data Set...", "&Compare With KT930...", "", "&Quit",
                                    "AUTOSEQUENCEEDITOR Help", "TestProcedureEditor Help", "", "&About KT930 Plus PC",
                                    "About &Qt"}));

    // A help entry opens its file at the first page.
    window.findChild<QMenu *>(QStringLiteral("menuHelp"))->actions().at(0)->trigger();
    ASSERT_EQ(helpWindows().size(), 1);
    EXPECT_TRUE(helpWindows().first()->windowTitle() == "AUTOSEQUENCEEDITOR Help" &&
                helpWindows().first()->topicLoaded());
    helpWindows().first()->close();

    BoxSeen about; // the version and the libraries' licences
    about.answer(QMessageBox::Ok);
    window.findChild<QAction *>(QStringLiteral("actionAbout"))->trigger();
    EXPECT_EQ(about.caption, QStringLiteral("About KT930 Plus PC"));
    EXPECT_EQ(about.text,
              QStringLiteral("<h3>KT930 Plus PC 1.0</h3>"
                             "<p>Edits the test content of the KT930 Plus safety analyzer and moves it to and from "
                             "the analyzer over USB, a serial port or Ethernet.</p>"
                             "<p>Built with these libraries, each under its own licence:</p><ul>"
                             "<li>Qt ") +
                  QString::fromLatin1(qVersion()) +
                  QStringLiteral(": GNU LGPL version 3</li>"
                                 "<li>libftdi1: GNU LGPL version 2.1</li>"
                                 "<li>libusb-1.0: GNU LGPL version 2.1</li>"
                                 "<li>Boost: Boost Software License 1.0</li></ul>"));
    window.findChild<QAction *>(QStringLiteral("actionQuit"))->trigger();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(HostTest, RemembersItsPlaceAndSizeButNeverOpensOffTheScreen)
{
    QRect placed;
    for (QRect geometry :
         {QRect(40, 60, 500, 400), QRect(100000, 100000, 500, 400)}) { // the second on a screen gone since
        ThostMainWindow window(folders());
        EXPECT_TRUE(placed.isNull() || window.geometry() == placed);
        window.show();
        window.setGeometry(geometry.translated(window.screen()->availableGeometry().topLeft()));
        placed = window.geometry();
        window.close();
    }
    ThostMainWindow window(folders());
    window.show();
    EXPECT_TRUE(window.screen()->availableGeometry().contains(window.frameGeometry()));
}

// The words are the application folder's, checked there.
TEST_F(HostTest, FirstStartSaysWhereTheNewDataFolderIs)
{
    TempDir install;
    install.write("Data/catdes.dat", "shipped");
    TappFolders fresh = folders();
    fresh.application = appDir.dir().path() / "user";
    fresh.defaults = install.path() / "Data";
    BoxSeen seen;
    seen.answer(QMessageBox::Ok);
    ThostMainWindow::prepareDataFolder(fresh);
    EXPECT_TRUE(seen.caption == "KT930 Plus PC" && seen.icon == QMessageBox::Information);
    EXPECT_TRUE(seen.text.startsWith("Your data folder " + QString::fromStdString(fresh.application.string()) +
                                     " was created"));
    EXPECT_EQ(TempDir::read(fresh.application / "Data/catdes.dat"), "shipped");
    ThostMainWindow::prepareDataFolder(fresh); // present now: no second box (a box would hang here)
}

TEST_F(HostTest, NoPluginsOrOneThatCannotBeLoadedIsNamedInABoxOrOnStderrAndTheOthersStillLoad)
{
    TappFolders mixed = folders();
    mixed.plugins = appDir.dir().path() / "Plugins";
    {
        ThostMainWindow none(mixed); // no plug-in folder: no buttons, and the host goes on
        EXPECT_EQ(none.pluginCount() +
                      none.mainView()->findChildren<QPushButton *>(QString(), Qt::FindDirectChildrenOnly).size(),
                  0);
    }
    appDir.dir().write("Plugins/broken.so", "not a library");
    fs::create_symlink(folders().plugins / "libVAROAutoSeqEditor.so", mixed.plugins / "libVAROAutoSeqEditor.so");
    const std::string loadError =
        "The plug-in broken.so could not be loaded.\n" + (mixed.plugins / "broken.so").string();
    BoxSeen seen;
    seen.answer(QMessageBox::Ok);
    {
        ThostMainWindow window(mixed);
        EXPECT_TRUE(seen.caption == "Plug-in Error" && seen.text.startsWith(QString::fromStdString(loadError)))
            << seen.text.toStdString();
        EXPECT_EQ(std::pair(window.pluginCount(), window.pluginErrors()), std::pair(1, 1));
    }
    BoxWatch boxes;
    testing::internal::CaptureStderr();
    ThostMainWindow window(mixed, ThostMainWindow::Reporting::Console);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind("kt930pc: " + loadError, 0), 0u) << err;
    EXPECT_FALSE(boxes.seen);
    EXPECT_EQ(std::pair(window.pluginCount(), window.pluginErrors()), std::pair(1, 1));
}

TEST_F(HostTest, RestorePreviousDataSetListsConfirmsAndPutsTheFilesBackOnlyFromTheMainView)
{
    ThostMainWindow window(folders());
    window.show();
    QAction *restore = window.findChild<QAction *>(QStringLiteral("actionRestore"));
    const fs::path data = appDir.dir().path() / "Data";
    BoxSeen seen, done;
    seen.answer(QMessageBox::Ok);
    restore->trigger();
    EXPECT_EQ(seen.text.toStdString(), "There are no restore points in " + data.string() +
                                           ".\nA download, a sync or an import keeps the files it replaces as one.");
    // A frame on show may hold edits of the files: the user goes back first.
    window.showPlugin(0);
    seen.answer(QMessageBox::Ok);
    restore->trigger();
    EXPECT_EQ(seen.text, QStringLiteral("Return to the main window first, so that the open view saves its changes."));
    child<QPushButton>(window.container()->findChild<Tkt930Frame *>(), "BtnExit")->click();

    const std::string original = appDir.readData("mit.dat");
    std::string why;
    ASSERT_TRUE(TrestorePoints(data).create("sync", {"mit.dat"}, why)) << why;
    const QString time = QString::fromStdString(TrestorePoints(data).list().at(0).time);
    appDir.writeData("mit.dat", "replaced by the sync");
    QString row;
    whenModal([&](QWidget *dialog) {
        row = child<QListWidget>(dialog, "restorePoints")->currentItem()->text();
        seen.answer(QMessageBox::Yes, [&] { done.answer(QMessageBox::Ok); });
        dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
    });
    restore->trigger();
    EXPECT_EQ(row, "1.  " + time + "  sync:  mit.dat");
    EXPECT_EQ(seen.text, "Put back the files that \"sync\" replaced on " + time +
                             "?\n\nThe current files are kept as a restore point first, so this can be undone.");
    EXPECT_EQ(seen.defaultButton, QMessageBox::No);
    EXPECT_EQ(done.text, "The files that \"sync\" replaced on " + time +
                             " were put back.\nThe files they replaced are now restore point 1.");
    EXPECT_EQ(appDir.readData("mit.dat"), original);
    EXPECT_EQ(TempDir::read(TrestorePoints(data).list().at(0).folder / "mit.dat"), "replaced by the sync");
}

TEST_F(HostTest, ASecondHostOnTheDataFolderNamesTheProcessAndNoEndsIt)
{
    const fs::path data = appDir.dir().path() / "Data";
    const TdataFolderSession first(data), second(data);
    BoxSeen seen;
    seen.answer(QMessageBox::No);
    EXPECT_FALSE(ThostMainWindow::continueWithDataFolderInUse(second, data));
    EXPECT_TRUE(seen.caption == "Data Folder In Use" && seen.defaultButton == QMessageBox::Yes);
    EXPECT_EQ(seen.text.toStdString(),
              "The data folder\n" + data.string() + "\nis in use by another KT930 program (process " +
                  std::to_string(::getpid()) +
                  ").\n\nBoth may change the same files. Before each save this program checks for changes made by the "
                  "other and asks which version to keep.\n\nContinue anyway?");
    EXPECT_TRUE(ThostMainWindow::continueWithDataFolderInUse(first, data)); // no box: it would wait here
}
} // namespace
