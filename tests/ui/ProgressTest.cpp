// The progress dialog: argument check, start of the worker, reports from its thread, cancel.
#include "TcommSettings.h"
#include "Thrown.h"
#include "UiTestSupport.h"
#include "progress.h"

// Kinds 0 and 1 start the worker; a worker that ends without a result closes with 2.
TEST(Progress, NullSettingsThrowTheDocumentedTextAndTheExitCodeFollowsTheKindAndTheWorkersResult)
{
    ensureApplication();
    EXPECT_STREQ(thrown<std::invalid_argument>([] { TfrmProgress form(nullptr, nullptr, nullptr); }).value().what(),
                 "Invalid parameters passed to TfrmProgress(TComponent, void *, void *");
    const struct { std::uint8_t kind; bool reportsOk; int exitCode; bool workerRuns; } cases[] = {
        {2, true, 2, false}, {1, true, 1, true}, {0, false, 2, true}};
    for (const auto &c : cases) {
        TcommSettings settings;
        settings.kind = c.kind;
        TfrmProgress form(nullptr, nullptr, &settings);
        std::atomic<bool> ran{false};
        std::unique_ptr<QThread> worker(QThread::create([&] {
            ran = true;
            form.setStage("Downloading Checkitems");
            form.setPosition(57);
            if (c.reportsOk)
                form.setResult(TransferResult::Ok);
        }));
        settings.worker = worker.get();
        EXPECT_EQ(form.exec(), c.exitCode) << int(c.kind);
        worker->wait();
        EXPECT_EQ(std::pair(ran.load(), form.isCancelled()), std::pair(c.workerRuns, !c.workerRuns)) << int(c.kind);
        const QString reported = form.findChild<QLabel *>("lblOperation")->text() + "|"
                                 + QString::number(form.findChild<QProgressBar *>("transferProgress")->value());
        EXPECT_TRUE(!c.workerRuns || reported == "Downloading Checkitems|57")
            << reported.toStdString(); // from the worker's thread
    }
}
