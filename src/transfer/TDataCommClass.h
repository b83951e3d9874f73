#pragma once
// The block engine: a four-letter command, then a run of 264-byte blocks received
// (getData) or sent with acknowledgements (putData). Returns 0, -1 (send failed)
// or -2 (block read failed / wrong acknowledgement), closing the module first;
// time-out and cancellation are thrown.
#include "TgenericCommmunicationsModule.h"
#include <memory>

class TDataCommClass {
public:
    // With no module given, one is made from the other arguments and owned.
    TDataCommClass(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout, std::uint32_t blockSize,
                   TtransportParams *parameters, TgenericCommmunicationsModule *module, bool quiet,
                   MessageSink &messages);
    virtual ~TDataCommClass();
    TDataCommClass(const TDataCommClass &) = delete;
    TDataCommClass &operator=(const TDataCommClass &) = delete;

    virtual int open();
    virtual int initialize(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout, std::uint32_t blockSize,
                           TtransportParams *parameters, TgenericCommmunicationsModule *module, bool quiet);
    virtual void close();
    virtual int getData(const std::uint8_t *command, std::size_t commandLength, std::uint8_t *buffer,
                        std::size_t blockCount);
    virtual int putData(const std::uint8_t *command, std::size_t commandLength, const std::uint8_t *buffer,
                        std::size_t blockCount);
    virtual int write(const std::uint8_t *buffer, std::size_t length);
    virtual int read(std::uint8_t *buffer, std::size_t length);
    virtual int bytesAvailable();
    virtual std::uint32_t getTimeout();
    virtual bool isCancelled();
    virtual void setProgress(int percent);

    TgenericCommmunicationsModule *module() const { return m_module; }

    static constexpr int DownloadPollMs = 50, AckPollMs = 10;
    // The pause after each received block: 1 ms, as the analyzer has always been
    // read. The fuzz target of the workers sets 0 to run thousands of transfers.
    static void setBlockPauseMs(unsigned ms);

private:
    TgenericCommmunicationsModule &checkedModule();
    std::size_t sendCommand(const std::uint8_t *command, std::size_t commandLength);
    // 0 accepted, -2 wrong pair; throws on time-out or cancellation.
    int waitForAck(bool (*accept)(const std::uint8_t *ack, char expected), char expected);

    bool m_quiet;
    TgenericCommmunicationsModule *m_module = nullptr;
    bool m_ownsModule = false;
    MessageSink &m_messages;
};
