// Bytes from the analyzer through the real workers: a download (the selected gets)
// or a sync, over a USB device that answers with the fuzzer's bytes, and a
// completed transfer on through the job's op-code check and saves.
//   byte 0: bit 3 sync, bits 0-2 the download's selection
//   byte 1: below 0xF0 the rest of the input is repeated to the length of the
//           transfer, so short inputs complete it; otherwise the analyzer sends
//           exactly the rest of the input and falls silent (time-outs, short reads)
#include "../tests/comm/FakeUsbDevice.h"
#include "../tests/common/RecordingProgressSink.h"
#include "FuzzInput.h"
#include "MessageSink.h"
#include "TDataCommClass.h"
#include "TdataSet.h"
#include "TtransferJob.h"
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
    TdataSet set(appDir, messages);
    TtransferJob::Parameters parameters;
    parameters.kind = data[0] & 8 ? TtransferJob::Kind::Sync : TtransferJob::Kind::Download;
    parameters.data = &set;
    parameters.context = &set;
    parameters.selection = data[0] & SelectAll;
    parameters.savedParts = TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters | TdataSet::Checklists;
    std::size_t transferBytes = 0;
    if (parameters.kind == TtransferJob::Kind::Sync || (parameters.selection & SelectCheckitems))
        transferBytes += TransferImages::CheckitemBytes;
    if (parameters.kind == TtransferJob::Kind::Download) {
        if (parameters.selection & SelectAutosequences)
            transferBytes += TransferImages::AutosequenceBytes;
        if (parameters.selection & SelectChecklists)
            transferBytes += TransferImages::ChecklistBytes;
    }
    usb.script->incoming = analyzerBytes(data, size, transferBytes);
    TtransferJob job(parameters, messages);
    job.run(progress);
    return 0;
}
