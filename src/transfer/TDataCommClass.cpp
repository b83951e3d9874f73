#include "TDataCommClass.h"
#include <QThread>
#include <atomic>
#include <cstring>

namespace {
std::atomic<unsigned> blockPauseMs{1};
}

void TDataCommClass::setBlockPauseMs(unsigned ms)
{
    blockPauseMs = ms;
}

TDataCommClass::TDataCommClass(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout,
                               std::uint32_t blockSize, TtransportParams *parameters,
                               TgenericCommmunicationsModule *module, bool quiet, MessageSink &messages)
    : m_quiet(quiet), m_module(module), m_messages(messages)
{
    if (!m_module) {
        m_module = new TgenericCommmunicationsModule(holder, mode, timeout, blockSize, parameters, messages, quiet);
        m_ownsModule = true;
    }
}

TDataCommClass::~TDataCommClass()
{
    if (m_ownsModule)
        delete m_module;
}

TgenericCommmunicationsModule &TDataCommClass::checkedModule()
{
    if (!m_module)
        throw TinvalidCommModuleException();
    return *m_module;
}

int TDataCommClass::open()
{
    return checkedModule().open();
}

int TDataCommClass::initialize(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout,
                               std::uint32_t blockSize, TtransportParams *parameters,
                               TgenericCommmunicationsModule *module, bool quiet)
{
    m_quiet = quiet;
    if (!m_module) {
        if (module) {
            m_module = module;
        } else {
            m_module = new TgenericCommmunicationsModule(holder, mode, timeout, blockSize, parameters, m_messages, quiet);
            m_ownsModule = true;
        }
    }
    return m_module->initialize(holder, mode, timeout, blockSize, parameters, quiet);
}

void TDataCommClass::close() { checkedModule().close(); }
int TDataCommClass::write(const std::uint8_t *buffer, std::size_t length) { return checkedModule().write(buffer, length); }
int TDataCommClass::read(std::uint8_t *buffer, std::size_t length) { return checkedModule().read(buffer, length); }
int TDataCommClass::bytesAvailable() { return checkedModule().bytesAvailable(); }
std::uint32_t TDataCommClass::getTimeout() { return checkedModule().getTimeout(); }
bool TDataCommClass::isCancelled() { return checkedModule().isCancelled(); }
void TDataCommClass::setProgress(int percent) { checkedModule().setProgress(percent); }

// Sends a data command: the module's block size, or 0 when the send failed (the
// port is closed then).
std::size_t TDataCommClass::sendCommand(const std::uint8_t *command, std::size_t commandLength)
{
    TgenericCommmunicationsModule &module = checkedModule();
    const std::size_t blockSize = module.getBlockSize();
    if (blockSize == 0)
        throw TinvalidCommModuleException();
    if (module.write(command, commandLength) != 0) {
        module.close();
        return 0;
    }
    return blockSize;
}

int TDataCommClass::getData(const std::uint8_t *command, std::size_t commandLength, std::uint8_t *buffer,
                            std::size_t blockCount)
{
    if (commandLength == 0 || blockCount == 0)
        throw TinvalidDataLengthException();
    const std::size_t blockSize = sendCommand(command, commandLength);
    if (blockSize == 0)
        return -1;
    TgenericCommmunicationsModule &module = checkedModule();
    module.setProgress(50);
    const std::uint32_t timeout = module.getTimeout();
    const std::uint32_t polls = timeout / DownloadPollMs + (timeout < DownloadPollMs ? 1 : 0);
    for (std::size_t i = 0; i < blockCount; ++i) {
        bool received = false;
        for (std::uint32_t poll = 0; poll < polls && !received; ++poll) {
            TgenericCommmunicationsModule::processMessages();
            if (module.isCancelled())
                throw ToperationCancelledException();
            if (module.bytesAvailable() < int(blockSize)) {
                TgenericCommmunicationsModule::processMessages();
                module.waitForData(blockSize, DownloadPollMs);
                continue;
            }
            std::uint8_t *block = buffer + i * blockSize;
            std::memset(block, 0, blockSize);
            if (module.read(block, blockSize) != 0) {
                module.close();
                return -2;
            }
            module.setProgress(int(50 + 40 * (i + 1) / blockCount));
            TgenericCommmunicationsModule::processMessages();
            if (const unsigned pause = blockPauseMs.load())
                QThread::msleep(pause);
            received = true;
        }
        if (!received) {
            module.close();
            throw TcommTimeoutException();
        }
    }
    return 0;
}

int TDataCommClass::waitForAck(bool (*accept)(const std::uint8_t *ack, char expected), char expected)
{
    TgenericCommmunicationsModule &module = *m_module;
    const std::uint32_t timeout = module.getTimeout();
    const std::uint32_t polls = timeout / AckPollMs + (timeout < AckPollMs ? 1 : 0);
    for (std::uint32_t poll = 0; poll < polls; ++poll) {
        TgenericCommmunicationsModule::processMessages();
        if (module.isCancelled())
            throw ToperationCancelledException();
        if (module.bytesAvailable() < 2) {
            TgenericCommmunicationsModule::processMessages();
            module.waitForData(2, AckPollMs);
            continue;
        }
        std::uint8_t ack[4] = {};
        if (module.read(ack, 2) != 0)
            continue; // a failed read costs one poll
        if (accept(ack, expected))
            return 0;
        module.close();
        return -2;
    }
    module.close();
    throw TcommTimeoutException();
}

namespace {
// The command acknowledgement is deliberately lenient: either byte will do.
bool commandAccepted(const std::uint8_t *ack, char) { return ack[0] == '*' || ack[1] == '\r'; }
bool blockAccepted(const std::uint8_t *ack, char expected) { return ack[0] == std::uint8_t(expected) && ack[1] == '\r'; }
}

int TDataCommClass::putData(const std::uint8_t *command, std::size_t commandLength, const std::uint8_t *buffer,
                            std::size_t blockCount)
{
    if (commandLength == 0 || blockCount == 0)
        return -1; // unlike getData, no exception
    const std::size_t blockSize = sendCommand(command, commandLength);
    if (blockSize == 0)
        return -1;
    TgenericCommmunicationsModule &module = checkedModule();
    module.setProgress(30);
    if (int result = waitForAck(commandAccepted, '*'); result != 0)
        return result;
    for (std::size_t i = 0; i < blockCount; ++i) {
        TgenericCommmunicationsModule::processMessages();
        if (module.isCancelled())
            throw ToperationCancelledException();
        if (module.write(buffer + i * blockSize, blockSize) != 0) {
            module.close();
            return -1;
        }
        module.setProgress(int(50 + 40 * (i + 1) / blockCount));
        if (int result = waitForAck(blockAccepted, i + 1 == blockCount ? '*' : 'C'); result != 0)
            return result;
    }
    return 0;
}
