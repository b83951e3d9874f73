// Help: the topic opens in the plug-in's own window, which the frame closes when it goes.
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "autoSequenceEditForm.h"
#include "UiTestSupport.h"
#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {
QList<THelpWindow *> helpWindows()
{
    QList<THelpWindow *> found;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *help = qobject_cast<THelpWindow *>(w); help && help->isVisible())
            found << help;
    return found;
}
} // namespace

TEST(Help, TopicOpensInAWindowThatTheFrameClosesOnDestruction)
{
    AppDirScope appDir;
    std::filesystem::copy_file(KT930_TEST_APPDIR "/AUTOSEQUENCEEDITOR.qch", appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch");
    RecordingMessageSink sink;
    auto frame = std::make_unique<TAutoSeqEditFrame>(nullptr, nullptr, nullptr, &sink);
    frame->findChild<QPushButton *>("BtnHelp")->click();
    ASSERT_EQ(helpWindows().size(), 1);
    THelpWindow *window = helpWindows().first();
    EXPECT_TRUE(window->topicLoaded());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->toPlainText().contains("Upload To KT930 and Download From KT930"));

    QPointer<THelpWindow> watch(window);
    frame.reset();
    EXPECT_TRUE(watch.isNull());
}

TEST(Help, MissingHelpFileSaysSoInTheWindow)
{
    AppDirScope appDir;
    THelpWindow window(appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch", "autoSequenceEditor.html");
    EXPECT_FALSE(window.topicLoaded());
    EXPECT_TRUE(window.toPlainText().startsWith("The help topic autoSequenceEditor.html could not be found"));
}

TEST(Help, ASecondPressRaisesTheFramesOneHelpWindowInsteadOfOpeningAnother)
{
    AppDirScope appDir;
    RecordingMessageSink sink;
    auto frame = std::make_unique<TAutoSeqEditFrame>(nullptr, nullptr, nullptr, &sink);
    frame->show();
    auto *help = frame->findChild<QPushButton *>("BtnHelp");
    QTest::mouseClick(help, Qt::LeftButton);
    ASSERT_EQ(helpWindows().size(), 1);
    QPointer<THelpWindow> window = helpWindows().first();

    // The user goes back to the frame, then minimises the help window.
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    window->showMinimized();
    QTest::mouseClick(help, Qt::LeftButton);
    ASSERT_EQ(helpWindows().size(), 1);
    EXPECT_EQ(helpWindows().first(), window.data());
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.data()));

    // Once closed, the next press opens a new one.
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(window.isNull());
    QTest::mouseClick(help, Qt::LeftButton);
    EXPECT_EQ(helpWindows().size(), 1);
}

TEST(Help, TheSequenceEditorKeepsOneHelpWindowThatGoesWithIt)
{
    AppDirScope appDir;
    for (const auto &entry : std::filesystem::directory_iterator(KT930_TEST_APPDIR "/Data"))
        if (entry.path().extension() == ".in")
            std::filesystem::copy_file(entry.path(), appDir.data(entry.path().filename().string()));
    RecordingMessageSink sink;
    TInstrDatabase db;
    Tautosequence seq = unusedSequence();
    auto editor = std::make_unique<TsequenceEditor>(nullptr, nullptr, &db, seq, [] {}, false, &sink);
    auto *help = editor->findChild<QPushButton *>("btnHelp");
    help->click();
    help->click();
    ASSERT_EQ(helpWindows().size(), 1);
    QPointer<THelpWindow> window = helpWindows().first();
    editor.reset();
    EXPECT_TRUE(window.isNull());
}
