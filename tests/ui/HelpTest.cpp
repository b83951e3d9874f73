// Help: the topic opens in the plug-in's own window, which the frame closes when it goes.
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "THelpWindow.h"
#include "UiTestSupport.h"
#include <QApplication>
#include <QPushButton>
#include <gtest/gtest.h>

TEST(Help, TopicOpensInAWindowThatTheFrameClosesOnDestruction)
{
    AppDirScope appDir;
    std::filesystem::copy_file(KT930_TEST_APPDIR "/AUTOSEQUENCEEDITOR.qch", appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch");
    RecordingMessageSink sink;
    auto frame = std::make_unique<TAutoSeqEditFrame>(nullptr, nullptr, nullptr, &sink);
    frame->findChild<QPushButton *>("BtnHelp")->click();
    ASSERT_EQ(frame->helpWindowCount(), 1);

    THelpWindow *window = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *help = qobject_cast<THelpWindow *>(w))
            window = help;
    ASSERT_NE(window, nullptr);
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
