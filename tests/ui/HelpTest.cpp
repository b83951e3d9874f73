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

// One window per frame: a second press raises it, a closed one is replaced, and
// the frame's end closes it.
TEST(Help, TheFrameKeepsOneTopicWindowThatARepeatedPressRaisesAndItsEndCloses)
{
    AppDirScope appDir;
    std::filesystem::copy_file(KT930_TEST_APPDIR "/AUTOSEQUENCEEDITOR.qch", appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch");
    RecordingMessageSink sink;
    auto frame = std::make_unique<TAutoSeqEditFrame>(nullptr, nullptr, nullptr, &sink);
    frame->show();
    mouseClick(frame.get(), "BtnHelp");
    ASSERT_EQ(helpWindows().size(), 1);
    QPointer<THelpWindow> window = helpWindows().first();
    EXPECT_TRUE(window->topicLoaded());
    EXPECT_TRUE(window->toPlainText().contains("Upload To KT930 and Download From KT930"));

    // The user goes back to the frame, then minimises the help window.
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    window->showMinimized();
    mouseClick(frame.get(), "BtnHelp");
    ASSERT_EQ(helpWindows().size(), 1);
    EXPECT_EQ(helpWindows().first(), window.data());
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.data()));

    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(window.isNull());
    mouseClick(frame.get(), "BtnHelp");
    ASSERT_EQ(helpWindows().size(), 1);
    window = helpWindows().first();
    frame.reset();
    EXPECT_TRUE(window.isNull());
}

TEST(Help, MissingHelpFileSaysSoInTheWindow)
{
    AppDirScope appDir;
    THelpWindow window(appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch", "autoSequenceEditor.html");
    EXPECT_FALSE(window.topicLoaded());
    EXPECT_TRUE(window.toPlainText().startsWith("The help topic autoSequenceEditor.html could not be found"));
}

TEST(Help, TheSequenceEditorKeepsOneHelpWindowThatGoesWithIt)
{
    AppDirScope appDir;
    appDir.copyDemoDefinitions();
    RecordingMessageSink sink;
    TInstrDatabase db;
    Tautosequence seq = unusedSequence();
    auto editor = std::make_unique<TsequenceEditor>(nullptr, nullptr, &db, seq, [] {}, false, &sink);
    click(editor.get(), "btnHelp");
    click(editor.get(), "btnHelp");
    ASSERT_EQ(helpWindows().size(), 1);
    QPointer<THelpWindow> window = helpWindows().first();
    editor.reset();
    EXPECT_TRUE(window.isNull());
}
