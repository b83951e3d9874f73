#include "TtransferSession.h"
#include "Tmydlstruct.h"
#include "Tmyulstruct.h"
#include <cstring>
#include <exception>

namespace {
const char CommunicationsFailed[] = "Could not establish communications with analyzer.\nOperation Canceled.";
const char InitializeFailed[] = "Could not initialize connection.\nOperation Canceled.";
const char TimeoutText[] = "Timeout Error.\nOperation Canceled.";
}

std::uint8_t TtransferSession::modeOf(std::uint8_t method)
{
    switch (method) {
    case std::uint8_t(TcommMethod::USB): return ModeUSB;
    case std::uint8_t(TcommMethod::Ethernet): return ModeEthernet;
    case std::uint8_t(TcommMethod::Serial): return ModeSerial;
    default: return ModeNone;
    }
}

TtransportParams TtransferSession::parametersOf(const TcommSettings &settings)
{
    switch (modeOf(settings.method)) {
    case ModeEthernet:
        return TtransportParams::makeEthernet(std::uint8_t(settings.ip[0]), std::uint8_t(settings.ip[1]),
                                              std::uint8_t(settings.ip[2]), std::uint8_t(settings.ip[3]));
    case ModeSerial:
        return TtransportParams::makeSerial(settings.serialPort);
    default:
        return TtransportParams::makeUSB();
    }
}

TtransferSession::TtransferSession(TtransferRecord &record, bool upload, std::uint8_t mode,
                                   ProgressSink &progress, MessageSink &messages)
    : m_progress(progress), m_messages(messages), m_parameters(parametersOf(record.settings()))
{
    if (upload)
        m_module = std::make_unique<Tmyulstruct>(&m_holder, mode, Timeout, BlockSize, &m_parameters,
                                                 static_cast<TuploadCommStruct *>(&record), progress, messages);
    else
        m_module = std::make_unique<Tmydlstruct>(&m_holder, mode, Timeout, BlockSize, &m_parameters,
                                                 static_cast<TdownloadCommStruct *>(&record), progress, messages);
    m_engine = std::make_unique<TDataCommClass>(&m_holder, mode, Timeout, BlockSize, &m_parameters,
                                                m_module.get(), false, messages);
}

TtransferSession::~TtransferSession()
{
    m_engine.reset();
    m_module.reset();
}

void TtransferSession::close()
{
    m_engine->close();
}

void TtransferSession::fail(const std::string &caption, const std::string &text)
{
    m_messages.error(caption, text, MsgModality::System);
}

void TtransferSession::reportFailure(MessageSink &messages, const std::string &unknownText)
{
    auto show = [&](const char *caption, const std::string &text) {
        messages.error(caption, text, MsgModality::System);
    };
    try {
        throw;
    } catch (const TcommTimeoutException &) {
        show("Error", TimeoutText);
    } catch (const TnoDeviceAttachedException &) {
        show("Error", "No Deviced Attached.\nOperation Canceled.");
    } catch (const TinitializationException &) {
        show("Error", InitializeFailed);
    } catch (const TbadInitializationException &) {
        show("Bad Initialization", InitializeFailed);
    } catch (const TuninitializedCommModeException &) {
        show("Uninitialized", InitializeFailed);
    } catch (const TinvalidCommModuleException &) {
        show("Error", "Invalid communications configuration.\nOperation Canceled.");
    } catch (const TinvalidDataLengthException &) {
        show("Bad Data Length", "Invalid communications configuration.\nOperation Canceled.");
    } catch (const ToperationCancelledException &) {
        show("Error", "Operation Cancelled.");
    } catch (const std::exception &) {
        show("VCL Exception", unknownText);
    } catch (...) {
        show("Error", unknownText);
    }
}

template <typename Action>
bool TtransferSession::runCommand(Action action, const std::string &unknownText)
{
    try {
        if (action() == 0)
            return true;
        close();
        fail("Error", CommunicationsFailed);
    } catch (...) {
        try {
            close();
        } catch (...) {
        }
        reportFailure(m_messages, unknownText);
    }
    return false;
}

bool TtransferSession::handshake()
{
    try {
        if (m_engine->open() != 0) {
            if (!m_progress.isCancelled())
                fail("Error", InitializeFailed);
            return false;
        }
    } catch (const TcommTimeoutException &) {
        close();
        if (!m_progress.isCancelled())
            fail("Error", TimeoutText);
        return false;
    } catch (...) {
        close();
        fail("Exception", InitializeFailed);
        return false;
    }
    // The reply's content is not used; its arrival in time is the handshake.
    std::uint8_t reply[BlockSize] = {};
    return runCommand([&] { return m_engine->getData(reinterpret_cast<const std::uint8_t *>("GESI\r"), 5, reply, 1); },
                      "Unknown Exception on Handshake Command");
}

bool TtransferSession::getCommand(const char *command, std::uint8_t *area, std::size_t blockCount)
{
    std::memset(area, 0, blockCount * BlockSize);
    return runCommand([&] { return m_engine->getData(reinterpret_cast<const std::uint8_t *>(command), 5, area, blockCount); },
                      "Unknown Exception on Get Data Command");
}

bool TtransferSession::putCommand(const char *command, const std::uint8_t *area, std::size_t blockCount)
{
    return runCommand([&] { return m_engine->putData(reinterpret_cast<const std::uint8_t *>(command), 5, area, blockCount); },
                      "Unknown Exception on Put Data Command");
}
