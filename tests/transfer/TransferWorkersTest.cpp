#include "../comm/FakeUsbDevice.h"
#include "ByteBuilder.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TransferFixtures.h"
#include "TransferWorkers.h"
#include "TtransferSession.h"
#include <gtest/gtest.h>
#include <memory>

namespace {
const Message InvalidState {"Error", "Invalid State!\nOperation Cancelled.", MsgIcon::Stop, MsgButtons::Ok,
                            MsgModality::System};

struct WorkerRun {
    DataSet set;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    int context = 0;
};
}

TEST(TransferWorkerArguments, NullContextOrProgressIsRejected)
{
    DataSet set;
    RecordingProgressSink progress;
    TdownloadCommStruct download(&set.checkitems, &set.checklists, &set.testers, &set.inspections);
    int context = 0;
    try {
        TdownloadThread(nullptr, &progress, nullptr, &download);
        FAIL();
    } catch (const std::invalid_argument &e) {
        EXPECT_STREQ(e.what(), "Invalid Arguments For TdownloadThread");
    }
    auto upload = std::make_unique<TuploadCommStruct>(&set.checkitems, &set.checklists, &set.testers, &set.inspections);
    try {
        TuploadThread(&context, nullptr, nullptr, upload.get());
        FAIL();
    } catch (const std::invalid_argument &e) {
        EXPECT_STREQ(e.what(), "Invalid Arguments For TuploadThread");
    }
    TsyncCommStruct sync;
    try {
        TinstSyncThread(nullptr, nullptr, &sync);
        FAIL();
    } catch (const std::invalid_argument &e) {
        EXPECT_STREQ(e.what(), "Invalid Arguments For TinstSyncThread(bool, TfrmProgress)");
    }
}

TEST(TransferWorkerMethods, MethodByteMapsToTransportMode)
{
    EXPECT_EQ(TtransferSession::modeOf(0), ModeUSB);
    EXPECT_EQ(TtransferSession::modeOf(1), ModeEthernet);
    EXPECT_EQ(TtransferSession::modeOf(2), ModeSerial);
    EXPECT_EQ(TtransferSession::modeOf(3), ModeNone);
}

TEST(TransferWorkerMethods, InvalidMethodCancelsWithoutConnecting)
{
    WorkerRun run;
    auto record = std::make_unique<TdownloadCommStruct>(&run.set.checkitems, &run.set.checklists, &run.set.testers,
                                                        &run.set.inspections);
    record->settings().method = 3;
    TdownloadThread worker(&run.context, &run.progress, &run.messages, record.get());
    worker.start();
    worker.wait();
    EXPECT_EQ(run.messages.messages, std::vector<Message> {InvalidState});
    EXPECT_TRUE(run.progress.cancelled);
    EXPECT_EQ(run.progress.results, std::vector<TransferResult> {TransferResult::Cancel});
    EXPECT_EQ(run.progress.stages, std::vector<std::string> {"Initializing"});
}

TEST(SyncWorker, UsbSkipsDevicesOfOtherVendors)
{
    FakeUsbInstalled fake;
    fake.script->vendors = {0x1234, 0x0403};
    std::string checkitems(45936, '\0');
    checkitems.replace(1043 * 44, 44, ByteBuilder::checkitem('Z', 'L', "Leakage\t500"));
    fake.script->incoming = std::string(264, 'H') + checkitems;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    auto record = std::make_unique<TsyncCommStruct>();
    TinstSyncThread worker(&progress, &messages, record.get());
    worker.start();
    worker.wait();
    EXPECT_TRUE(messages.messages.empty());
    EXPECT_EQ(fake.script->calls, (std::vector<std::string> {"open #0", "close", "open #1", "close"}));
    EXPECT_EQ(fake.script->written, "GESI\rGUIN\r");
    EXPECT_EQ(progress.stages.front(), "Requesting USB Handle");
    EXPECT_EQ(std::string(reinterpret_cast<char *>(record->area), 45936), checkitems);
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Ok});
}

TEST(SyncWorker, UsbWithoutDevicesOrAnalyzer)
{
    FakeUsbInstalled fake;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    auto record = std::make_unique<TsyncCommStruct>();
    {
        TinstSyncThread worker(&progress, &messages, record.get());
        worker.start();
        worker.wait();
    }
    fake.script->vendors = {0x1234};
    {
        TinstSyncThread worker(&progress, &messages, record.get());
        worker.start();
        worker.wait();
    }
    EXPECT_EQ(messages.messages,
              (std::vector<Message> {{"Device Not Detected",
                                      "A Safety Analyzer could not be found\rPlease check the connection.\r\rOperation Canceled.",
                                      MsgIcon::Stop, MsgButtons::Ok, MsgModality::System},
                                     {"Error", "Safety Analyzer Not Detected.\nPlease check connection.\n\nOperation Canceled.",
                                      MsgIcon::Stop, MsgButtons::Ok, MsgModality::System}}));
}

TEST(SyncWorker, InvalidMethodCancelsWithoutConnecting)
{
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    auto record = std::make_unique<TsyncCommStruct>();
    record->settings.method = 3;
    TinstSyncThread worker(&progress, &messages, record.get());
    worker.start();
    worker.wait();
    EXPECT_EQ(messages.messages, std::vector<Message> {InvalidState});
    EXPECT_TRUE(progress.cancelled);
    EXPECT_TRUE(progress.stages.empty());
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}
