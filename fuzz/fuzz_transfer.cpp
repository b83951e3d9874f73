// Bytes from the analyzer through the real workers: a download (the selected gets)
// or a sync, over a USB device that answers with the fuzzer's bytes, and a
// completed transfer on into the containers, the op-code check and the saved files.
//   byte 0: bit 3 sync, bits 0-2 the download's selection
//   byte 1: below 0xF0 the rest of the input is repeated to the length of the
//           transfer, so short inputs complete it; otherwise the analyzer sends
//           exactly the rest of the input and falls silent (time-outs, short reads)
#include "../tests/comm/FakeUsbDevice.h"
#include "../tests/common/RecordingProgressSink.h"
#include "AutosequenceConversions.h"
#include "FuzzInput.h"
#include "MessageSink.h"
#include "TDataCommClass.h"
#include "TdataSet.h"
#include "TransferWorkers.h"
#include "autosequenceFileStructs.h"
#include <QCoreApplication>

namespace {
class SilentMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &) override { return MsgAnswer::Ok; }
};

std::string analyzerBytes(const std::uint8_t *data, std::size_t size, std::size_t transferBytes)
{
    std::string bytes(264, '\0'); // the handshake reply, whose content nobody reads
    const std::string rest(reinterpret_cast<const char *>(data) + 2, size - 2);
    if (data[1] >= 0xF0)
        return bytes + rest;
    while (bytes.size() < 264 + transferBytes)
        bytes += rest.empty() ? std::string(264, '\0') : rest;
    return bytes;
}
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    TDataCommClass::setBlockPauseMs(0);
    // The op-code definitions the check after a download reads.
    const std::filesystem::path folder = FuzzInput::write("unused", nullptr, 0).parent_path();
    for (const auto &entry : std::filesystem::directory_iterator(KT930_SOURCE_DIR "/appdir/Data"))
        if (entry.path().extension() == ".in")
            std::filesystem::copy_file(entry.path(), folder / "Data" / entry.path().filename(),
                                       std::filesystem::copy_options::overwrite_existing);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::filesystem::path appDir = FuzzInput::write("unused", nullptr, 0).parent_path();
    FakeUsbInstalled usb;
    usb.script->descriptions = {"Brennix Systems KT930 Plus"};
    usb.script->vendors = {TusbDeviceApi::FtdiVendorId};
    SilentMessageSink messages;
    RecordingProgressSink progress;
    auto completed = [&progress] { return !progress.results.empty() && progress.results.back() == TransferResult::Ok; };
    TdataSet set(appDir, messages);

    if (data[0] & 8) {
        usb.script->incoming = analyzerBytes(data, size, TinstSyncThread::ImageBytes);
        auto record = std::make_unique<TsyncCommStruct>();
        record->settings.method = std::uint8_t(TcommMethod::USB);
        TinstSyncThread worker(&progress, &messages, record.get());
        worker.start();
        worker.wait();
        if (completed()) {
            record->copyInto(set.checkitems);
            set.saveCheckitems();
        }
        return 0;
    }

    const std::uint8_t selection = data[0] & SelectAll;
    std::size_t transferBytes = 0;
    if (selection & SelectCheckitems)
        transferBytes += TransferImages::CheckitemBytes;
    if (selection & SelectAutosequences)
        transferBytes += TransferImages::AutosequenceBytes;
    if (selection & SelectChecklists)
        transferBytes += TransferImages::ChecklistBytes;
    usb.script->incoming = analyzerBytes(data, size, transferBytes);
    auto record = std::make_unique<TdownloadCommStruct>(&set.checkitems, &set.checklists, &set.userTesters,
                                                        &set.inspections);
    record->settings().method = std::uint8_t(TcommMethod::USB);
    record->data.selection = selection;
    int context = 0;
    TdownloadThread worker(&context, &progress, &messages, record.get());
    worker.start();
    worker.wait();
    if (!completed())
        return 0;
    set.validateOpCodes();
    set.backup();
    TautosequenceFile checklists;
    AutosequenceConversions::checklistsToFile(set.checklists, checklists);
    try {
        checklists.write(set.dataFile("testProc.asq"));
    } catch (const TInvalidWrite &) {
    }
    return 0;
}
