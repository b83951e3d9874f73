#pragma once
// Fetches the analyzer's checkitem database image into the sync record over its
// own transport paths ("GESI\r" handshake, then "GUIN\r" read in 4224-byte chunks
// until the 1044-slot image is complete).
#include "MessageSink.h"
#include "ProgressSink.h"
#include "TsyncCommStruct.h"
#include <QThread>

#include "TtransportParams.h"
#include "TusbDeviceApi.h"
#include <memory>

class TgenericCommmunicationsModule;
struct TsyncTexts;

class TinstSyncThread : public QThread {
    Q_OBJECT
public:
    static constexpr std::size_t ImageBytes = TInstrDatabase::SlotCount * sizeof(TInstr); // 45936

    // Throws std::invalid_argument "Invalid Arguments For TinstSyncThread(bool, TfrmProgress)".
    TinstSyncThread(ProgressSink *progress, MessageSink *messages, TsyncCommStruct *record);

protected:
    void run() override;

private:
    enum class Arrival { Received, Failed, TimedOut };
    // A handshake gets 40 polls. A data chunk may be cancelled before each poll, and
    // only polls that bring no new byte count against its 40: a 4224-byte chunk needs
    // 2.2 s of a 19200-baud line, more than 40 polls of 50 ms.
    enum class Step { Handshake, Chunk };

    void execute();
    // Opens the transport over the acquired slot; false after its message. Serial
    // port errors propagate after the port's own box.
    bool openTransport(TgenericCommmunicationsModule &module, void *slot, TtransportParams &parameters);
    // Finds the analyzer among the USB devices; false after its message.
    bool openUSB(std::unique_ptr<TusbDeviceApi> *slot, TgenericCommmunicationsModule &module);
    // Polls of 50 ms for `needed` bytes; clears clearBytes of the buffer and reads
    // them once pending.
    Arrival receive(TgenericCommmunicationsModule &module, std::uint8_t *buffer, std::size_t needed,
                    std::size_t clearBytes, Step step);
    // Handshake and data over an open module; false after its message.
    bool exchange(TgenericCommmunicationsModule &module, const TsyncTexts &texts);
    void fail(TgenericCommmunicationsModule &module, const char *caption, const char *text);

    ProgressSink *m_progress;
    MessageSink *m_messages;
    TsyncCommStruct *m_record;
};
