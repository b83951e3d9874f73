// Help: the topic opens in the plug-in's own window, which the frame closes when it goes.
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "THelpBrowser.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "autoSequenceEditForm.h"
#include "UiTestSupport.h"

// One window per frame and per sequence editor: a second press raises it, a closed
// one is replaced, and the owner's end closes it.
TEST(Help, TheFrameAndTheEditorKeepOneTopicWindowThatARepeatedPressRaisesAndTheirEndCloses)
{
    AppDirScope appDir;
    std::filesystem::copy_file(KT930_TEST_APPDIR "/AUTOSEQUENCEEDITOR.qch",
                               appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch");
    RecordingMessageSink sink;
    auto frame = std::make_unique<TAutoSeqEditFrame>(nullptr, nullptr, nullptr, &sink);
    frame->show();
    mouseClick(frame.get(), "BtnHelp");
    ASSERT_EQ(helpWindows().size(), 1);
    QPointer<THelpWindow> window = helpWindows().first();
    EXPECT_TRUE(window->topicLoaded() && window->toPlainText().contains("Upload To KT930 and Download From KT930"));
    EXPECT_TRUE(frame->screen()->availableGeometry().contains(window->frameGeometry()));

    // The user goes back to the frame, then minimises the help window.
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    window->showMinimized();
    mouseClick(frame.get(), "BtnHelp");
    EXPECT_EQ(helpWindows(), QList<THelpWindow *>{window.data()});
    EXPECT_TRUE(!window->isMinimized() && QTest::qWaitForWindowActive(window.data()));

    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(window.isNull());
    mouseClick(frame.get(), "BtnHelp");
    window = helpWindows().value(0);
    frame.reset();
    EXPECT_TRUE(window.isNull());

    // The sequence editor keeps its own one the same way.
    appDir.copyDemoDefinitions();
    TInstrDatabase db;
    Tautosequence seq = unusedSequence();
    auto editor = std::make_unique<TsequenceEditor>(nullptr, nullptr, &db, seq, [] {}, false, &sink);
    click(editor.get(), "btnHelp");
    click(editor.get(), "btnHelp");
    ASSERT_EQ(helpWindows().size(), 1);
    window = helpWindows().value(0);
    editor.reset();
    EXPECT_TRUE(window.isNull());
}

// On any screen and wherever the asking window stands: the whole window with a title bar
// and borders inside the free area, over the asking window, centred on it where there is room.
TEST(Help, PlacementKeepsTheWholeWindowInTheFreeAreaOfTheAskersScreen)
{
    const QMargins titleBarAndBorders(4, 30, 4, 4);
    const QRect secondScreen(1920, 0, 1280, 984), smallScreen(0, 0, 640, 440);
    // Bottom left, top right partly off the screen, room all round, a small screen.
    const std::pair<QRect, QRect> askerOnScreen[] = {{{1920, 684, 400, 300}, secondScreen},
                                                     {{3000, -50, 400, 300}, secondScreen},
                                                     {{2300, 300, 400, 300}, secondScreen},
                                                     {{100, 100, 400, 300}, smallScreen}};
    for (const auto &[asker, available] : askerOnScreen) {
        const QRect placed = THelpWindow::placement(asker, available);
        EXPECT_TRUE(available.contains(placed.marginsAdded(titleBarAndBorders)) && placed.intersects(asker))
            << asker.x() << "," << asker.y();
    }
    EXPECT_EQ(THelpWindow::placement(askerOnScreen[2].first, secondScreen).center(), askerOnScreen[2].first.center());
}

// Back and Forward follow the pages the links led to, by button and by Alt+Left / Alt+Right.
TEST(Help, AMissingFileIsSaidInTheWindowBackAndForwardWalkThroughThePagesAsTheHistoryAllows)
{
    AppDirScope appDir;
    THelpWindow missing(appDir.dir().path() / "AUTOSEQUENCEEDITOR.qch", "autoSequenceEditor.html");
    EXPECT_TRUE(!missing.topicLoaded() &&
                missing.toPlainText().startsWith("The help topic autoSequenceEditor.html could not be found"));
    THelpWindow window(KT930_TEST_APPDIR "/AUTOSEQUENCEEDITOR.qch", "autoSequenceEditor.html");
    window.show(), window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto *back = child<QToolButton>(&window, "btnBack"), *forward = child<QToolButton>(&window, "btnForward");
    const QUrl first = window.browser()->source(), second = first.resolved(QUrl("sequenceEditor.html"));
    window.browser()->setSource(second);

    struct Step { std::function<void()> act; QUrl page; bool backEnabled, forwardEnabled; };
    const Step steps[] = {
        // Alt+Right with the focus off the page too
        {[] {}, second, true, false},
        {[&] { QTest::keyClick(window.browser(), Qt::Key_Left, Qt::AltModifier); }, first, false, true},
        {[&] { forward->setFocus(), QTest::keyClick(forward, Qt::Key_Right, Qt::AltModifier); }, second, true, false},
        {[&] { back->click(); }, first, false, true},
        {[&] { forward->click(); }, second, true, false}};
    for (const Step &step : steps) {
        step.act();
        EXPECT_EQ(std::tuple(window.browser()->source(), back->isEnabled(), forward->isEnabled()),
                  std::tuple(step.page, step.backEnabled, step.forwardEnabled));
    }
    EXPECT_FALSE(back->icon().isNull());
}
