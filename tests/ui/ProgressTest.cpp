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

TEST(Progress, ExitCodeFollowsTheKindAndTheWorkersResult)
{
    ensureApplication();
    struct Case {
        std::uint8_t kind;
        bool reportsOk;
        int exitCode;
        bool workerRuns;
    };
    // Kinds 0 and 1 start the worker; a worker that ends without a result closes with 2.
    for (const Case c : {Case{2, true, 2, false}, Case{1, true, 1, true}, Case{0, false, 2, true}}) {
        TcommSettings settings;
        settings.kind = c.kind;
        TfrmProgress form(nullptr, nullptr, &settings);
        ScriptedWorker worker([&] {
            form.setStage("Downloading Checkitems");
            form.setPosition(57);
            if (c.reportsOk)
                form.setResult(TransferResult::Ok);
        });
        settings.worker = &worker;
        EXPECT_EQ(form.exec(), c.exitCode) << int(c.kind);
        worker.wait();
        EXPECT_EQ(worker.ran, c.workerRuns) << int(c.kind);
        EXPECT_EQ(form.isCancelled(), !c.workerRuns) << int(c.kind);
        if (c.workerRuns) { // reported from the worker's thread
            EXPECT_EQ(form.findChild<QLabel *>("lblOperation")->text(), "Downloading Checkitems");
            EXPECT_EQ(form.findChild<QProgressBar *>("transferProgress")->value(), 57);
        }
    }
}
