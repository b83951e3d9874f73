#include "../comm/FakeUsbDevice.h"
#include "../comm/LoopbackAddress.h"
#include "FakeAnalyzerPeer.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TransferFixtures.h"
#include "TransferWorkers.h"
#include "TtransferSession.h"
#include <gtest/gtest.h>
#include <memory>

namespace {
const Message CommunicationsFailed {"Error", "Could not establish communications with analyzer.\nOperation Canceled.",
                                    MsgIcon::Stop, MsgButtons::Ok, MsgModality::System};
const Message InvalidState {"Error", "Invalid State!\nOperation Cancelled.", MsgIcon::Stop, MsgButtons::Ok,
                            MsgModality::System};

AnalyzerImages analyzerImages()
{
    AnalyzerImages images;
    images.checkitems.assign(45936, '\0');
    putText(images.checkitems, 0, std::string("AP") + "Earth bond\t0.1");
    putText(images.checkitems, 1043 * 44, std::string("ZL") + "Leakage\t500");
    images.autosequences.assign(7128, '\x55');
    for (std::size_t n = 0; n < 18; ++n)
        putSequence(images.autosequences, n * 88, "Inspection", "", {1, 0}, 0);
    for (std::size_t k = 0; k < 60; ++k)
        putSequence(images.autosequences, 1584 + k * 88, "Seq", "Two", {2, 3, 0}, 0x0B);
    putSequence(images.autosequences, 1584 + 59 * 88, "Last\tone", "x", {7, 0, 9}, 0x13);
    for (std::size_t t = 0; t < 5; ++t)
        putText(images.autosequences, 6864 + t * 21, std::string("  Bench ") + char('1' + t) + std::string(12, ' ') + '\0');
    images.checklists.assign(132000, '\xEE');
    for (std::size_t n = 0; n < 500; ++n) {
        putText(images.checklists, n * 264, std::string(41, ' ') + '\0');
        putWord(images.checklists, n * 264 + 42, 0);
        putWord(images.checklists, n * 264 + 234, 0);
    }
    putText(images.checklists, 499 * 264, std::string("Final\tlist") + '\0');
    putWord(images.checklists, 499 * 264 + 42, 12);
    putWord(images.checklists, 499 * 264 + 44, 0);
    putWord(images.checklists, 499 * 264 + 46, 13);
    putWord(images.checklists, 499 * 264 + 234, 0x1234);
    return images;
}

void aimAt(TcommSettings &settings, const LoopbackAddress &address)
{
    settings.ip[0] = address.a;
    settings.ip[1] = address.b;
    settings.ip[2] = address.c;
    settings.ip[3] = address.d;
}

template <typename Record> void useEthernet(Record &record, int test, std::uint8_t selection)
{
    record.settings().method = std::uint8_t(TcommMethod::Ethernet);
    aimAt(record.settings(), LoopbackAddress(test));
    record.data.selection = selection;
}

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

TEST(DownloadWorker, AllSetsArriveInOrderAndReplaceTheContainers)
{
    AnalyzerImages images = analyzerImages();
    FakeAnalyzerPeer peer(LoopbackAddress(21).text(), [&](FakeAnalyzerPeer &p) { runAnalyzer(p, images); });
    WorkerRun run;
    auto record = std::make_unique<TdownloadCommStruct>(&run.set.checkitems, &run.set.checklists, &run.set.testers,
                                                        &run.set.inspections);
    useEthernet(*record, 21, SelectAll);
    TdownloadThread worker(&run.context, &run.progress, &run.messages, record.get());
    worker.start();
    worker.wait();
    peer.join();

    EXPECT_TRUE(run.messages.messages.empty());
    EXPECT_EQ(images.commands, "GESI\rGUIN\rGASQ\rGTSP\r");
    EXPECT_EQ(run.progress.stages, (std::vector<std::string> {"Initializing", "Initiating Handshake",
                                                              "Getting Checkitems", "Getting Autosequences",
                                                              "Getting Checklists", "Completed!"}));
    EXPECT_EQ(run.progress.results, std::vector<TransferResult> {TransferResult::Ok});
    const auto &p = run.progress.positions;
    ASSERT_GE(p.size(), 6u);
    EXPECT_EQ(std::vector<int>(p.begin(), p.begin() + 5), (std::vector<int> {25, 50, 90, 25, 50}));
    EXPECT_EQ(std::vector<int>(p.end() - 2, p.end()), (std::vector<int> {90, 100}));

    EXPECT_EQ(std::string(reinterpret_cast<char *>(record->data.checkitems), 45936), images.checkitems);
    ASSERT_EQ(run.set.checkitems.size(), 1044u);
    EXPECT_EQ(run.set.checkitems[0].category, 'A');
    EXPECT_EQ(run.set.checkitems[0].commandText(), "Earth bond\t0.1");
    EXPECT_EQ(run.set.checkitems[1043].commandText(), "Leakage\t500");

    ASSERT_EQ(run.set.checklists.size(), 500u);
    const TTestProc &last = run.set.checklists.items[499];
    EXPECT_EQ(std::string(last.title), "Final list" + std::string(31, ' '));
    EXPECT_EQ(last.items[0], 12);
    EXPECT_EQ(last.items[1], 0);
    EXPECT_EQ(last.items[2], 0xFFFF);
    EXPECT_EQ(last.setting, 0x1234);

    ASSERT_EQ(run.set.inspections.size(), 18u);
    ASSERT_EQ(run.set.testers.size(), 5u);
    EXPECT_EQ(run.set.testers[2].name, "Bench 3");
    ASSERT_EQ(run.set.testers[4].sequences.size(), 12u);
    const Tautosequence &s = run.set.testers[4].sequences[11];
    EXPECT_EQ(std::string(s.title1), "Last one          ");
    EXPECT_EQ(s.items[0], 7);
    EXPECT_EQ(s.items[1], 0);
    EXPECT_EQ(s.items[2], 0xFFFF);
    EXPECT_EQ(s.setting, 0x13);
}

TEST(DownloadWorker, OnlyChecklistsLeavesOtherSetsAlone)
{
    AnalyzerImages images = analyzerImages();
    FakeAnalyzerPeer peer(LoopbackAddress(22).text(), [&](FakeAnalyzerPeer &p) { runAnalyzer(p, images); });
    WorkerRun run;
    run.set.inspections.resize(3);
    run.set.checkitems[5].assign('B', 'P', "keep me");
    auto record = std::make_unique<TdownloadCommStruct>(&run.set.checkitems, &run.set.checklists, &run.set.testers,
                                                        &run.set.inspections);
    useEthernet(*record, 22, SelectChecklists);
    std::memset(record->data.checkitems, 0x77, sizeof record->data.checkitems);
    TdownloadThread worker(&run.context, &run.progress, &run.messages, record.get());
    worker.start();
    worker.wait();
    peer.join();

    EXPECT_EQ(images.commands, "GESI\rGTSP\r");
    EXPECT_EQ(run.progress.stages, (std::vector<std::string> {"Initializing", "Initiating Handshake",
                                                              "Getting Checklists", "Completed!"}));
    EXPECT_EQ(record->data.checkitems[0], 0x77);
    EXPECT_EQ(run.set.checkitems[5].commandText(), "keep me");
    EXPECT_EQ(run.set.inspections.size(), 3u);
    EXPECT_EQ(run.set.checklists.size(), 500u);
}

TEST(DownloadWorker, CancelDuringCheckitemsReportsCancelled)
{
    AnalyzerImages images = analyzerImages();
    FakeAnalyzerPeer peer(LoopbackAddress(23).text(), [&](FakeAnalyzerPeer &p) { runAnalyzer(p, images); });
    WorkerRun run;
    run.progress.cancelAtPosition = 51; // within the 174 checkitem blocks
    auto record = std::make_unique<TdownloadCommStruct>(&run.set.checkitems, &run.set.checklists, &run.set.testers,
                                                        &run.set.inspections);
    useEthernet(*record, 23, SelectAll);
    TdownloadThread worker(&run.context, &run.progress, &run.messages, record.get());
    worker.start();
    worker.wait();
    peer.join();
    EXPECT_EQ(images.commands, "GESI\rGUIN\r");
    EXPECT_EQ(run.messages.messages, std::vector<Message>({{"Error", "Operation Cancelled.", MsgIcon::Stop,
                                                            MsgButtons::Ok, MsgModality::System}}));
    EXPECT_EQ(run.progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}

TEST(UploadWorker, SendsEveryAreaAsPacked)
{
    AnalyzerImages images;
    FakeAnalyzerPeer peer(LoopbackAddress(24).text(), [&](FakeAnalyzerPeer &p) { runAnalyzer(p, images); });
    WorkerRun run;
    run.set.checkitems[0].assign('C', 'T', "Visual check");
    run.set.checklists.makeUnused();
    run.set.inspections.resize(18);
    run.set.testers.resize(5);
    for (auto &tester : run.set.testers)
        tester.sequences.resize(12);
    auto record = std::make_unique<TuploadCommStruct>(&run.set.checkitems, &run.set.checklists, &run.set.testers,
                                                      &run.set.inspections);
    useEthernet(*record, 24, SelectAll);
    TuploadThread worker(&run.context, &run.progress, &run.messages, record.get());
    worker.start();
    worker.wait();
    peer.join();

    EXPECT_TRUE(run.messages.messages.empty());
    EXPECT_EQ(images.commands, "GESI\rPUIN\rPASQ\rPTSP\r");
    EXPECT_EQ(run.progress.stages, (std::vector<std::string> {"Initializing", "Initiating Handshake",
                                                              "Putting Checkitems", "Putting Autosequences",
                                                              "Putting Checklists", "Completed!"}));
    EXPECT_EQ(images.putCheckitems, std::string(reinterpret_cast<char *>(record->data.checkitems), 45936));
    EXPECT_EQ(images.putAutosequences, std::string(reinterpret_cast<char *>(record->data.autosequences), 7128));
    EXPECT_EQ(images.putChecklists, std::string(reinterpret_cast<char *>(record->data.checklists), 132000));
    EXPECT_EQ(images.putCheckitems.substr(0, 14), "CTVisual check");
    EXPECT_EQ(run.progress.results, std::vector<TransferResult> {TransferResult::Ok});
}

TEST(UploadWorker, WrongAckAtBlock10StopsTheUpload)
{
    AnalyzerImages images;
    images.wrongAckAtBlock = 10;
    FakeAnalyzerPeer peer(LoopbackAddress(25).text(), [&](FakeAnalyzerPeer &p) { runAnalyzer(p, images); });
    WorkerRun run;
    auto record = std::make_unique<TuploadCommStruct>(&run.set.checkitems, &run.set.checklists, &run.set.testers,
                                                      &run.set.inspections);
    useEthernet(*record, 25, SelectAll);
    TuploadThread worker(&run.context, &run.progress, &run.messages, record.get());
    worker.start();
    worker.wait();
    peer.join();
    EXPECT_EQ(images.commands, "GESI\rPUIN\r");
    EXPECT_EQ(images.putCheckitems.size(), 11u * 264);
    EXPECT_EQ(run.messages.messages, std::vector<Message> {CommunicationsFailed});
    EXPECT_EQ(run.progress.stages.back(), "Putting Checkitems");
    EXPECT_EQ(run.progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}

TEST(SyncWorker, EthernetReadsTheCheckitemImageInChunks)
{
    AnalyzerImages images = analyzerImages();
    FakeAnalyzerPeer peer(LoopbackAddress(26).text(), [&](FakeAnalyzerPeer &p) { runAnalyzer(p, images); });
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    auto record = std::make_unique<TsyncCommStruct>();
    record->settings.method = std::uint8_t(TcommMethod::Ethernet);
    aimAt(record->settings, LoopbackAddress(26));
    TinstSyncThread worker(&progress, &messages, record.get());
    worker.start();
    worker.wait();
    peer.join();

    EXPECT_TRUE(messages.messages.empty());
    EXPECT_EQ(images.commands, "GESI\rGUIN\r");
    EXPECT_EQ(progress.stages, (std::vector<std::string> {"Requesting Ethernet Connection",
                                                          "Initializing Ethernet Connection", "Sending Handshake",
                                                          "Handshake Valid - Beginning Download",
                                                          "Sending Request for Data", "Transfer Complete"}));
    EXPECT_EQ(progress.positions, (std::vector<int> {50, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20}));
    EXPECT_EQ(std::string(reinterpret_cast<char *>(record->area), 45936), images.checkitems);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(record->area) + 45936, 67584 - 45936), std::string(21648, '\0'));
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Ok});

    TInstrDatabase db;
    record->copyInto(db);
    ASSERT_EQ(db.size(), 1044u);
    EXPECT_EQ(db[1043].commandText(), "Leakage\t500");
}

TEST(SyncWorker, UsbSkipsDevicesOfOtherVendors)
{
    FakeUsbInstalled fake;
    fake.script->vendors = {0x1234, 0x0403};
    AnalyzerImages images = analyzerImages();
    fake.script->incoming = std::string(264, 'H') + images.checkitems;
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
    EXPECT_EQ(std::string(reinterpret_cast<char *>(record->area), 45936), images.checkitems);
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
