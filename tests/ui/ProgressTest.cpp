// The progress dialog: argument check, start of the worker, reports from the
// worker's thread, cancel.
#include "TcommSettings.h"
#include "UiTestSupport.h"
#include "progress.h"
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <gtest/gtest.h>
#include <functional>

namespace {
class ScriptedWorker : public QThread {
public:
    explicit ScriptedWorker(std::function<void()> body) : m_body(std::move(body)) {}
    std::atomic<bool> ran{false};

protected:
    void run() override
    {
        ran = true;
        m_body();
    }

private:
    std::function<void()> m_body;
};
} // namespace

TEST(Progress, NullSettingsThrowTheDocumentedText)
{
    ensureApplication();
    try {
        TfrmProgress form(nullptr, nullptr, nullptr);
        FAIL();
    } catch (const std::invalid_argument &e) {
        EXPECT_STREQ(e.what(), "Invalid parameters passed to TfrmProgress(TComponent, void *, void *");
    }
}

TEST(Progress, UnknownKindCancelsWithoutStartingTheWorker)
{
    ensureApplication();
    TcommSettings settings;
    settings.kind = 2;
    TfrmProgress form(nullptr, nullptr, &settings);
    ScriptedWorker worker([] {});
    settings.worker = &worker;
    EXPECT_EQ(form.exec(), 2);
    EXPECT_TRUE(form.isCancelled());
    EXPECT_FALSE(worker.ran);
}

TEST(Progress, WorkerReportsFromItsThreadAndOkClosesWithOne)
{
    ensureApplication();
    TcommSettings settings;
    settings.kind = 1;
    TfrmProgress form(nullptr, nullptr, &settings);
    EXPECT_EQ(form.windowTitle(), "Transfer Progress");
    ScriptedWorker worker([&] {
        form.setStage("Downloading Checkitems");
        form.setPosition(57);
        form.setResult(TransferResult::Ok);
    });
    settings.worker = &worker;
    EXPECT_EQ(form.exec(), 1);
    worker.wait();
    EXPECT_EQ(form.findChild<QLabel *>("lblOperation")->text(), "Downloading Checkitems");
    EXPECT_EQ(form.findChild<QProgressBar *>("transferProgress")->value(), 57);
}

TEST(Progress, WorkerEndingWithoutResultStillClosesTheDialog)
{
    ensureApplication();
    TcommSettings settings;
    settings.kind = 1;
    TfrmProgress form(nullptr, nullptr, &settings);
    ScriptedWorker worker([] {});
    settings.worker = &worker;
    EXPECT_EQ(form.exec(), 2);
}
