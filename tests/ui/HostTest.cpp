// The host window loading the real plug-in library: button, view swap, return,
// ReloadData when the frame is shown again.
#include "AutosequenceConversions.h"
#include "ThostMainWindow.h"
#include "UiTestSupport.h"
#include <QApplication>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {
class HostTest : public ::testing::Test {
protected:
    HostTest()
    {
        ensureApplication();
        // A complete data set, so the start-up shows no message box.
        fs::copy(fs::path(KT930_TEST_APPDIR) / "Data", appDir.dir().path() / "Data",
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }

    static QPushButton *button(QWidget *parent, const char *name)
    {
        auto *b = parent->findChild<QPushButton *>(QString::fromLatin1(name));
        EXPECT_NE(b, nullptr) << name;
        return b;
    }

    AppDirScope appDir;
};

TEST_F(HostTest, ButtonShowsTheFrameReturnGivesTheMainViewBackAndReloadReadsTheDisk)
{
    ThostMainWindow window(QString::fromLatin1(KT930_TEST_APPDIR));
    window.show();
    ASSERT_EQ(window.pluginCount(), 1);
    QPushButton *pluginButton = button(window.mainView(), "plugin0");
    ASSERT_NE(pluginButton, nullptr);
    EXPECT_EQ(pluginButton->text(), QStringLiteral("Inspections and\nUser Testers"));

    pluginButton->click();
    auto *frame = window.container()->findChild<Tkt930Frame *>();
    ASSERT_NE(frame, nullptr);
    EXPECT_TRUE(frame->isVisible());
    EXPECT_FALSE(window.mainView()->isVisible());

    button(frame, "BtnExit")->click();
    EXPECT_FALSE(frame->isVisible());
    EXPECT_TRUE(window.mainView()->isVisible());

    // Another program changes the inspections while the main view is shown.
    TautosequenceFile file;
    AutosequenceConversions::inspectionsToFile({sequence("CHANGED ON DISK", "BY ANOTHER TOOL")}, file);
    ASSERT_EQ(file.write(appDir.data("inspection.asq")), 0);

    pluginButton->click();
    EXPECT_EQ(window.container()->findChild<Tkt930Frame *>(), frame); // the same frame, reloaded
    auto *list = frame->findChild<QListWidget *>(QStringLiteral("lstIP"));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 1);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("CHANGED ON DISK - BY ANOTHER TOOL"));
    EXPECT_TRUE(frame->isVisible());
    EXPECT_FALSE(window.mainView()->isVisible());
}

TEST_F(HostTest, ClosingTheMainWindowWithHelpOpenEndsTheProgramAndTheFrameClosesItsHelp)
{
    auto window = std::make_unique<ThostMainWindow>(QString::fromLatin1(KT930_TEST_APPDIR));
    window->show();
    button(window->mainView(), "plugin0")->click();
    auto *frame = window->container()->findChild<Tkt930Frame *>();
    ASSERT_NE(frame, nullptr);
    button(frame, "BtnHelp")->click();
    // By class name: the plug-in library carries its own copy of the class.
    QPointer<QWidget> help;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->inherits("THelpWindow"))
            help = w;
    ASSERT_FALSE(help.isNull());
    ASSERT_TRUE(help->isVisible());

    // What kt930pc does: run the loop until the application quits. A help window
    // that held it back would leave the loop to the guard's failure code.
    QTimer::singleShot(0, window.get(), &QWidget::close);
    QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0);
    window.reset(); // what leaving the event loop does in kt930pc
    EXPECT_TRUE(help.isNull());
}

TEST_F(HostTest, TheWindowAndTheFramesBottomButtonsFitTheScreen)
{
    ThostMainWindow window(QString::fromLatin1(KT930_TEST_APPDIR));
    window.show();
    button(window.mainView(), "plugin0")->click();
    QApplication::processEvents();
    const QRect available = window.screen()->availableGeometry();
    EXPECT_TRUE(available.contains(window.frameGeometry()))
        << window.frameGeometry().width() << "x" << window.frameGeometry().height() << " on "
        << available.width() << "x" << available.height();
    auto *exit = button(window.container()->findChild<Tkt930Frame *>(), "BtnExit");
    const QRect exitOnScreen(exit->mapToGlobal(QPoint(0, 0)), exit->size());
    EXPECT_TRUE(available.contains(exitOnScreen));
}

TEST_F(HostTest, AFolderWithoutPluginsSaysSoAndTheHostGoesOn)
{
    ThostMainWindow window(QString::fromStdString(appDir.dir().path().string()));
    EXPECT_EQ(window.pluginCount(), 0);
    EXPECT_EQ(window.mainView()->findChildren<QPushButton *>().size(), 0);
}
}
