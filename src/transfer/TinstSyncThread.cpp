#include "TinstSyncThread.h"
#include "TgenericCommmunicationsModule.h"
#include "TtransferSession.h"
#include <algorithm>
#include <cstring>
#include <stdexcept>

struct TsyncTexts {
    const char *requestStage, *notFoundText, *initStage;
    const char *sendCaption, *sendText;
    const char *receiveCaption, *receiveText;
    const char *requestCaption;
    const char *dataCaption;
    const char *timeoutCaption;
};

namespace {
const char CommError[] = "A communications error occurred.\r\rOperation Canceled.";
const char CommTimeout[] = "A communications timeout occurred.\r\rOperation Canceled.";

const TsyncTexts UsbTexts {"Requesting USB Handle", "A USB handle could not be found.\nOperation Canceled.",
                           "Initializing USB Connection", "Handshake Failed", CommError,
                           "Invalid Handshake Received.", CommError, "Request for Data Failed",
                           // the handshake caption is reused for data on this path
                           "Invalid Handshake Received.", "Data Transfer Timed Out."};
const TsyncTexts EthernetTexts {"Requesting Ethernet Connection",
                                "An Ethernet connection could not be found.\nOperation Canceled.",
                                "Initializing Ethernet Connection",
                                "Ethernet Connection Error",
                                "An error occurred while attempting to send the handshake.\rOperation Canceled.",
                                "Ethernet Connection Error",
                                "An error occurred while attempting to receive the handshake.\rOperation Canceled.",
                                "Request for Data Failed", "Invalid Data Received.", "Data Timed Out."};
const TsyncTexts SerialTexts {"Requesting Serial Connection",
                              "An Serial connection could not be found.\nOperation Canceled.",
                              "Initializing Serial Connection", "Handshake Failed",
                              CommError, "Invalid Handshake Received.", CommError, "Download Failed",
                              "Invalid Data Received.", "Data Transfer Timed Out."};

constexpr int PollMs = 50, Polls = 40;
constexpr std::size_t BlockSize = 264;

// A port failure throws (a serial error, or a USB device unplugged); it counts
// as a failed write or read of the step it happens in.
template <typename Step> bool portStep(Step step)
{
    try {
        return step();
    } catch (const ECommError &) {
        return false;
    } catch (const TnoDeviceAttachedException &) {
        return false;
    }
}
}

TinstSyncThread::TinstSyncThread(ProgressSink *progress, MessageSink *messages, TsyncCommStruct *record)
    : m_progress(progress), m_messages(messages), m_record(record)
{
    if (!progress || !messages || !record)
        throw std::invalid_argument("Invalid Arguments For TinstSyncThread(bool, TfrmProgress)");
}

void TinstSyncThread::run()
{
    try {
        execute();
    } catch (...) {
        m_messages->error("Error", "An unspecified error occurred.\nOperation Cancelled.", MsgModality::System);
        m_progress->setResult(TransferResult::Cancel);
    }
}

void TinstSyncThread::fail(TgenericCommmunicationsModule &module, const char *caption, const char *text)
{
    module.close();
    m_messages->error(caption, text, MsgModality::System);
}

void TinstSyncThread::execute()
{
    const std::uint8_t mode = TtransferSession::modeOf(m_record->settings.method);
    if (mode == ModeNone) {
        m_messages->error("Error", "Invalid State!\nOperation Cancelled.", MsgModality::System);
        m_progress->setCancelled();
        m_progress->setResult(TransferResult::Cancel);
        return;
    }
    const TsyncTexts &texts = mode == ModeUSB ? UsbTexts : mode == ModeEthernet ? EthernetTexts : SerialTexts;
    QRTcommClass holder;
    TtransportParams parameters = TtransferSession::parametersOf(m_record->settings);
    TgenericCommmunicationsModule module(&holder, mode, TtransferSession::Timeout, BlockSize, &parameters,
                                         *m_messages);
    bool done = false;
    m_progress->setStage(texts.requestStage);
    const int kind = mode == ModeUSB ? QRTcommClass::USB : mode == ModeEthernet ? QRTcommClass::Socket
                                                                                : QRTcommClass::Serial;
    void *slot = module.acquireSlot(kind);
    if (!slot) {
        m_messages->error("Error", texts.notFoundText, MsgModality::System);
    } else {
        m_progress->setStage(texts.initStage);
        done = openTransport(module, slot, parameters) && exchange(module, texts);
    }
    if (done) {
        m_progress->setStage("Transfer Complete");
        module.close();
    }
    holder.release();
    m_progress->setResult(done ? TransferResult::Ok : TransferResult::Cancel);
}

bool TinstSyncThread::openTransport(TgenericCommmunicationsModule &module, void *slot, TtransportParams &parameters)
{
    switch (module.mode()) {
    case ModeUSB:
        return openUSB(static_cast<std::unique_ptr<TusbDeviceApi> *>(slot), module);
    case ModeEthernet:
        return module.openEthernetSlot(slot, &parameters) == 0;
    default:
        // A port error shows the serial message table, then ends the run as any
        // failure of the open does.
        return module.openSerialSlot(slot, &parameters) == 0;
    }
}

bool TinstSyncThread::openUSB(std::unique_ptr<TusbDeviceApi> *usbSlot, TgenericCommmunicationsModule &module)
{
    if (!usbSlot || !*usbSlot)
        throw std::runtime_error("Invalid Parameters Passed To USB Initialization Routine");
    TusbDeviceApi &device = **usbSlot;
    int count = device.deviceCount();
    if (count <= 0) {
        m_messages->error("Device Not Detected",
                          "A Safety Analyzer could not be found\rPlease check the connection.\r\rOperation Canceled.",
                          MsgModality::System);
        return false;
    }
    for (int index = 0; index < count; ++index) {
        if (!device.openByIndex(index))
            continue;
        if (device.vendorId() == TusbDeviceApi::FtdiVendorId) {
            module.adoptUSB(usbSlot);
            return true;
        }
        device.close();
    }
    m_messages->error("Error", "Safety Analyzer Not Detected.\nPlease check connection.\n\nOperation Canceled.",
                      MsgModality::System);
    return false;
}

TinstSyncThread::Arrival TinstSyncThread::receive(TgenericCommmunicationsModule &module, std::uint8_t *buffer,
                                                  std::size_t needed, std::size_t clearBytes, Step step)
{
    int pending = 0;
    if (step == Step::Chunk && !portStep([&] {
            pending = module.bytesAvailable();
            return true;
        }))
        return Arrival::Failed;
    for (int idlePolls = 0; idlePolls < Polls;) {
        if (step == Step::Chunk && m_progress->isCancelled()) {
            module.close();
            throw ToperationCancelledException();
        }
        const int before = pending;
        if (!portStep([&] {
                module.waitForData(needed, PollMs);
                pending = module.bytesAvailable();
                return true;
            }))
            return Arrival::Failed;
        if (pending >= int(needed)) {
            std::memset(buffer, 0, clearBytes);
            return portStep([&] { return module.read(buffer, needed) == 0; }) ? Arrival::Received : Arrival::Failed;
        }
        if (step == Step::Handshake || pending <= before)
            ++idlePolls;
        else
            idlePolls = 0;
    }
    return Arrival::TimedOut;
}

bool TinstSyncThread::exchange(TgenericCommmunicationsModule &module, const TsyncTexts &texts)
{
    m_progress->setStage("Sending Handshake");
    if (!portStep([&] { return module.write(reinterpret_cast<const std::uint8_t *>("GESI\r"), 5) == 0; })) {
        fail(module, texts.sendCaption, texts.sendText);
        return false;
    }
    std::uint8_t reply[BlockSize]; // content not examined
    switch (receive(module, reply, BlockSize, BlockSize, Step::Handshake)) {
    case Arrival::Received:
        break;
    case Arrival::Failed:
        fail(module, texts.receiveCaption, texts.receiveText);
        return false;
    case Arrival::TimedOut:
        fail(module, "Handshake Request Timed Out.", CommTimeout);
        return false;
    }

    m_progress->setStage("Handshake Valid - Beginning Download");
    m_progress->setStage("Sending Request for Data");
    if (!portStep([&] { return module.write(reinterpret_cast<const std::uint8_t *>("GUIN\r"), 5) == 0; })) {
        fail(module, texts.requestCaption, CommError);
        return false;
    }
    m_progress->setPosition(50);
    // The analyzer answers with the 1044-slot image: chunks are read until it is
    // complete, the last one only as far as the image goes.
    for (std::size_t i = 0; i < TsyncCommStruct::ChunkCount && i * TsyncCommStruct::ChunkSize < ImageBytes; ++i) {
        const std::size_t needed = std::min(TsyncCommStruct::ChunkSize, ImageBytes - i * TsyncCommStruct::ChunkSize);
        switch (receive(module, m_record->area + i * TsyncCommStruct::ChunkSize, needed, TsyncCommStruct::ChunkSize,
                        Step::Chunk)) {
        case Arrival::Received:
            break;
        case Arrival::Failed:
            fail(module, texts.dataCaption, CommError);
            return false;
        case Arrival::TimedOut:
            fail(module, texts.timeoutCaption, CommTimeout);
            return false;
        }
        m_progress->setPosition(int(2 * i));
    }
    return true;
}
