#pragma once
// One upload or download run over the block engine: the holder, the transport
// parameters, the module and the engine (destroyed engine first, holder last),
// the handshake and the data commands with their failure messages.
#include "MessageSink.h"
#include "ProgressSink.h"
#include "TDataCommClass.h"
#include "TtransferRecord.h"
#include <memory>

class TtransferSession {
public:
    static constexpr std::uint32_t Timeout = 2000, BlockSize = 264;

    // Transport mode of a record's method byte (0 USB -> 2, 1 Ethernet -> 3,
    // 2 serial -> 1); ModeNone for anything else.
    static std::uint8_t modeOf(std::uint8_t method);
    static TtransportParams parametersOf(const TcommSettings &settings);

    // The record is the download or upload record (by `upload`); mode must be valid.
    TtransferSession(TtransferRecord &record, bool upload, std::uint8_t mode, ProgressSink &progress,
                     MessageSink &messages);
    ~TtransferSession();

    bool handshake();
    bool getCommand(const char *command, std::uint8_t *area, std::size_t blockCount);
    bool putCommand(const char *command, const std::uint8_t *area, std::size_t blockCount);
    void close();
    void releaseHolder() { m_holder.release(); }

    // Inside a catch block: shows the message of the exception being handled.
    static void reportFailure(MessageSink &messages, const std::string &unknownText);

private:
    template <typename Action> bool runCommand(Action action, const std::string &unknownText);
    void fail(const std::string &caption, const std::string &text);

    ProgressSink &m_progress;
    MessageSink &m_messages;
    QRTcommClass m_holder;
    TtransportParams m_parameters;
    std::unique_ptr<TgenericCommmunicationsModule> m_module;
    std::unique_ptr<TDataCommClass> m_engine;
};
