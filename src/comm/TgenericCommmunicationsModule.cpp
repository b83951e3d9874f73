#include "TgenericCommmunicationsModule.h"
#include <QCoreApplication>
#include <QEventLoop>
#include <QHostAddress>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <stdexcept>

namespace {
std::mutex pumpMutex;
std::function<void()> pump;

using Clock = std::chrono::steady_clock;

int remainingMs(Clock::time_point deadline)
{
    // Rounded up, so a poll never ends before its period.
    auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? int(left) : 0;
}

bool socketAlive(const QTcpSocket *socket)
{
    auto state = socket->state();
    return state == QAbstractSocket::HostLookupState || state == QAbstractSocket::ConnectingState
        || state == QAbstractSocket::ConnectedState;
}

// Runs the socket's thread events until one of the signals fires or ms pass.
template <typename... Signals>
void waitForSocketEvent(QTcpSocket *socket, int ms, Signals... quitSignals)
{
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    (QObject::connect(socket, quitSignals, &loop, &QEventLoop::quit), ...);
    QObject::connect(socket, &QAbstractSocket::errorOccurred, &loop, &QEventLoop::quit);
    timer.start(ms);
    loop.exec();
}
}

TgenericCommmunicationsModule::TgenericCommmunicationsModule(QRTcommClass *holder, std::uint8_t mode,
                                                             std::uint32_t timeout, std::uint32_t blockSize,
                                                             TtransportParams *parameters, MessageSink &messages,
                                                             bool quiet)
    : m_quiet(quiet), m_mode(mode), m_timeout(timeout), m_blockSize(blockSize), m_holder(holder),
      m_parameters(parameters), m_messages(messages)
{
}

TgenericCommmunicationsModule::~TgenericCommmunicationsModule() = default;

void TgenericCommmunicationsModule::setMessagePump(std::function<void()> p)
{
    std::lock_guard lock(pumpMutex);
    pump = std::move(p);
}

void TgenericCommmunicationsModule::processMessages()
{
    std::function<void()> p;
    {
        std::lock_guard lock(pumpMutex);
        p = pump;
    }
    if (p)
        p();
    else
        QCoreApplication::processEvents();
}

void TgenericCommmunicationsModule::show(const std::string &caption, const std::string &text)
{
    if (!m_quiet)
        m_messages.error(caption, text);
}

int TgenericCommmunicationsModule::open()
{
    if (m_mode == ModeNone || !m_holder || !m_parameters)
        throw TuninitializedCommModeException();
    return openByMode();
}

int TgenericCommmunicationsModule::openByMode()
{
    switch (m_mode) {
    case ModeSerial:
        return openSerial(m_parameters);
    case ModeUSB:
        openUSB();
        return 0;
    case ModeEthernet:
        return openEthernet(m_parameters);
    default:
        throw TuninitializedCommModeException();
    }
}

int TgenericCommmunicationsModule::initialize(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout,
                                              std::uint32_t blockSize, TtransportParams *parameters, bool quiet)
{
    m_holder = holder;
    m_mode = mode;
    m_timeout = timeout;
    m_blockSize = blockSize;
    m_parameters = parameters;
    m_quiet = quiet;
    if (m_mode == ModeNone || !m_holder || !m_parameters)
        throw TuninitializedCommModeException();
    try {
        return openByMode();
    } catch (...) {
        m_mode = ModeNone;
        throw TuninitializedCommModeException();
    }
}

void TgenericCommmunicationsModule::close()
{
    switch (m_mode) {
    case ModeSerial:
        if (m_serialPort)
            m_serialPort->CloseCommPort();
        m_serialPort.reset();
        break;
    case ModeUSB:
        if (m_usbSlot && *m_usbSlot)
            (*m_usbSlot)->close();
        break;
    case ModeEthernet:
        if (m_clientSocket) {
            m_clientSocket->close();
            processMessages();
            m_connectedSocket = nullptr;
            m_clientSocket->abort();
        }
        break;
    default:
        break;
    }
    m_state = Idle;
}

int TgenericCommmunicationsModule::bytesAvailable()
{
    switch (m_mode) {
    case ModeSerial: return availableSerial();
    case ModeUSB: return availableUSB();
    case ModeEthernet: return availableEthernet();
    default: return -1;
    }
}

int TgenericCommmunicationsModule::read(std::uint8_t *buffer, std::size_t length)
{
    switch (m_mode) {
    case ModeSerial: return readSerial(buffer, length);
    case ModeUSB: return readUSB(buffer, length);
    case ModeEthernet: return readEthernet(buffer, length);
    default: return -1;
    }
}

int TgenericCommmunicationsModule::write(const std::uint8_t *buffer, std::size_t length)
{
    switch (m_mode) {
    case ModeSerial: return writeSerial(buffer, length);
    case ModeUSB: return writeUSB(buffer, length);
    case ModeEthernet: return writeEthernet(buffer, length);
    default: return -1;
    }
}

void TgenericCommmunicationsModule::onSerialError(const ECommError &error)
{
    std::string text = ECommError::text(error.code());
    if (text.empty())
        show("Unspecified Serial Port Error", "An unspecified serial port error occurred.\rOperation Canceled.");
    else
        show("Serial Port Error", text);
}

Message TgenericCommmunicationsModule::socketMessage(TsocketEvent event)
{
    switch (event) {
    case TsocketEvent::Send:
        return {"Ethernet Send Error", "An error occurred while attempting to send.\rOperation Canceled."};
    case TsocketEvent::Receive:
        return {"Ethernet Receive Error", "An error occurred while attempting to receive.\rOperation Canceled."};
    case TsocketEvent::Connect:
        return {"Ethernet Connection Error", "An error occurred while attempting to connect.\rOperation Canceled."};
    case TsocketEvent::Disconnect:
        return {"Ethernet Disconnection Error", "An unexpected disconnection has occurred.\rOperation Canceled"};
    case TsocketEvent::Accept:
        return {"Ethernet Accept Error",
                "An error occurred while attempting to accept a connection.\rOperation Canceled."};
    default:
        return {"Unspecified Ethernet Error", "An unspecified error occurred.\rOperation Canceled."};
    }
}

void TgenericCommmunicationsModule::onSocketError(QTcpSocket *, TsocketEvent event, int &errorCode)
{
    if (!m_quiet)
        m_messages.show(socketMessage(event));
    errorCode = 0;
    m_state = Idle;
}

void TgenericCommmunicationsModule::onSocketConnect(QTcpSocket *socket)
{
    m_connectedSocket = socket;
    m_state = Connected;
}

void *TgenericCommmunicationsModule::acquireSlot(int kind)
{
    void *slot = m_holder->acquire(kind);
    if (!slot) {
        m_holder->release();
        slot = m_holder->acquire(kind);
    }
    return slot;
}

void TgenericCommmunicationsModule::openUSB()
{
    void *slot = acquireSlot(QRTcommClass::USB);
    if (!slot) {
        m_messages.error("Error", "A USB handle could not be found.\nOperation Canceled.");
        m_holder->release();
        throw TnoDeviceAttachedException();
    }
    m_usbSlot = static_cast<std::unique_ptr<TusbDeviceApi> *>(slot);
    if (!*m_usbSlot)
        throw TnoDeviceAttachedException();
    TusbDeviceApi &device = **m_usbSlot;
    if (!device.openByDescription("Brennix Systems KT930 Plus")
        && !device.openByDescription("Brennix Systems Kt930 Final")) {
        show("Error", "Device Not Detected.\nPlease check connection.\n\nOperation Canceled.");
        throw TnoDeviceAttachedException();
    }
    m_state = Connected;
}

void TgenericCommmunicationsModule::adoptUSB(std::unique_ptr<TusbDeviceApi> *slot)
{
    m_usbSlot = slot;
    m_mode = ModeUSB;
    m_state = Connected;
}

int TgenericCommmunicationsModule::openSerial(TtransportParams *parameters)
{
    void *slot = acquireSlot(QRTcommClass::Serial);
    if (!slot) {
        show("Error", "An Serial connection could not be found.\nOperation Canceled.");
        m_holder->release();
        return -1;
    }
    return openSerialSlot(slot, parameters);
}

int TgenericCommmunicationsModule::openSerialSlot(void *slot, TtransportParams *parameters)
{
    m_serialPort = std::make_unique<TCommPort>();
    if (!*static_cast<std::unique_ptr<TCommPort> *>(slot)) {
        m_holder->release();
        throw TinitializationException();
    }
    try {
        if (m_serialPort->GetConnected())
            m_serialPort->CloseCommPort();
        const TserialParams &p = parameters->serial;
        m_serialPort->SetBaudRate(p.baudRate);
        m_serialPort->SetParity(p.parity);
        m_serialPort->SetStopBits(p.stopBits);
        m_serialPort->SetByteSize(p.byteSize);
        m_serialPort->SetCommPort(std::string(p.portName, strnlen(p.portName, sizeof p.portName)));
        m_serialPort->OpenCommPort();
        m_state = Connected;
        return 0;
    } catch (const ECommError &error) {
        onSerialError(error);
        m_serialPort.reset();
        throw;
    } catch (...) {
        if (!m_quiet)
            m_messages.show({"Unspecified Serial Port Error",
                             "An unspecified serial port communications error occurred.\rOperation Canceled.",
                             MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task});
        m_serialPort.reset();
        throw TinitializationException();
    }
}

TsocketEvent TgenericCommmunicationsModule::socketEventOf(int socketError, bool connecting, TsocketEvent activity)
{
    switch (QAbstractSocket::SocketError(socketError)) {
    case QAbstractSocket::ConnectionRefusedError:
    case QAbstractSocket::HostNotFoundError:
        return TsocketEvent::Connect;
    case QAbstractSocket::NetworkError:
    case QAbstractSocket::SocketTimeoutError:
        // A broken or stalled link fails whatever was under way.
        return connecting ? TsocketEvent::Connect : activity;
    case QAbstractSocket::RemoteHostClosedError:
        return TsocketEvent::Disconnect;
    default:
        return TsocketEvent::General;
    }
}

void TgenericCommmunicationsModule::connectSocketEvents(QTcpSocket *socket)
{
    QObject::connect(socket, &QTcpSocket::connected, socket, [this, socket] { onSocketConnect(socket); });
    QObject::connect(socket, &QAbstractSocket::errorOccurred, socket, [this, socket](QAbstractSocket::SocketError error) {
        int code = int(error);
        onSocketError(socket, socketEventOf(error, m_state == Connecting, m_socketActivity), code);
    });
}

int TgenericCommmunicationsModule::openEthernet(TtransportParams *parameters)
{
    void *slot = acquireSlot(QRTcommClass::Socket);
    if (!slot) {
        m_messages.error("Error", "An Ethernet connection could not be found.\nOperation Canceled.");
        return -1;
    }
    return openEthernetSlot(slot, parameters);
}

int TgenericCommmunicationsModule::openEthernetSlot(void *slot, TtransportParams *parameters)
{
    auto &socket = *static_cast<std::unique_ptr<QTcpSocket> *>(slot);
    if (!socket)
        throw std::runtime_error("Ethernet Connection Error");
    const TethernetParams &p = parameters->ethernet;
    m_connectTimeout = p.connectTimeout ? p.connectTimeout : m_timeout;
    char address[16];
    std::snprintf(address, sizeof address, "%d.%d.%d.%d", p.a, p.b, p.c, p.d);

    m_clientSocket = socket.get();
    connectSocketEvents(m_clientSocket);
    m_clientSocket->abort();
    processMessages();
    m_socketActivity = TsocketEvent::General;
    m_state = Connecting;
    m_clientSocket->connectToHost(QHostAddress(QString::fromLatin1(address)), quint16(p.port));

    for (std::uint32_t i = 0; i < m_connectTimeout / 10 + 1; ++i) {
        if (m_state == Connected)
            return 0;
        processMessages();
        // One 10 ms poll that ends early when the connect or an error arrives.
        auto deadline = Clock::now() + std::chrono::milliseconds(10);
        while (m_state != Connected && remainingMs(deadline) > 0) {
            if (m_state == Connecting && socketAlive(m_clientSocket))
                waitForSocketEvent(m_clientSocket, remainingMs(deadline), &QTcpSocket::connected);
            else
                QThread::msleep(unsigned(remainingMs(deadline)));
        }
    }
    throw TcommTimeoutException();
}

TCommPort &TgenericCommmunicationsModule::serialPort()
{
    if (!m_serialPort)
        throw ECommError(ECommError::PortNotOpen, 0);
    return *m_serialPort;
}

TusbDeviceApi &TgenericCommmunicationsModule::usbDevice()
{
    if (!m_usbSlot || !*m_usbSlot)
        throw TnoDeviceAttachedException();
    return **m_usbSlot;
}

int TgenericCommmunicationsModule::readUSB(std::uint8_t *buffer, std::size_t length)
{
    return usbDevice().read(buffer, length) == int(length) ? 0 : -1;
}

int TgenericCommmunicationsModule::writeUSB(const std::uint8_t *buffer, std::size_t length)
{
    return usbDevice().write(buffer, length) == int(length) ? 0 : -1;
}

int TgenericCommmunicationsModule::availableUSB()
{
    int pending = usbDevice().queueStatus();
    if (pending < 0)
        throw TnoDeviceAttachedException();
    return pending;
}

int TgenericCommmunicationsModule::readSerial(std::uint8_t *buffer, std::size_t length)
{
    return serialPort().ReadBytes(buffer, length) == length ? 0 : -1;
}

int TgenericCommmunicationsModule::writeSerial(const std::uint8_t *buffer, std::size_t length)
{
    serialPort().WriteBuffer(buffer, length);
    return 0;
}

int TgenericCommmunicationsModule::availableSerial()
{
    return int(serialPort().BytesAvailable());
}

int TgenericCommmunicationsModule::readEthernet(std::uint8_t *buffer, std::size_t length)
{
    if (!m_clientSocket)
        return -1;
    m_socketActivity = TsocketEvent::Receive;
    qint64 offset = 0;
    for (std::uint32_t i = 0; i < m_timeout / 10 + 1; ++i) {
        // The count is assigned, not added: a second partial receive restarts from
        // the first one's count. Harmless, as blocks are read only once pending whole.
        // A connection the analyzer closed reads as -1 here where a socket receive
        // gives 0: counted as nothing received, so a short block times out and is
        // never taken for a whole one.
        offset = std::max<qint64>(
            m_clientSocket->read(reinterpret_cast<char *>(buffer) + offset, qint64(length) - offset), 0);
        if (static_cast<std::uint64_t>(offset) >= length)
            return 0;
        processMessages();
        waitEthernet(length - std::size_t(offset), 10);
    }
    throw TcommTimeoutException();
}

int TgenericCommmunicationsModule::writeEthernet(const std::uint8_t *buffer, std::size_t length)
{
    if (!m_clientSocket || m_clientSocket->state() != QAbstractSocket::ConnectedState)
        return -1;
    m_socketActivity = TsocketEvent::Send;
    qint64 written = m_clientSocket->write(reinterpret_cast<const char *>(buffer), qint64(length));
    while (m_clientSocket->bytesToWrite() > 0 && m_clientSocket->waitForBytesWritten(int(m_timeout))) {
    }
    m_socketActivity = TsocketEvent::Receive;
    return written == qint64(length) && m_clientSocket->bytesToWrite() == 0 ? 0 : -1;
}

int TgenericCommmunicationsModule::availableEthernet()
{
    if (!m_clientSocket)
        return -1;
    return int(m_clientSocket->bytesAvailable());
}

void TgenericCommmunicationsModule::waitEthernet(std::size_t needed, int periodMs)
{
    auto deadline = Clock::now() + std::chrono::milliseconds(periodMs);
    while (std::size_t(m_clientSocket->bytesAvailable()) < needed && remainingMs(deadline) > 0) {
        if (socketAlive(m_clientSocket))
            waitForSocketEvent(m_clientSocket, remainingMs(deadline), &QIODevice::readyRead);
        else
            QThread::msleep(unsigned(remainingMs(deadline)));
    }
}

void TgenericCommmunicationsModule::waitForData(std::size_t needed, int periodMs)
{
    auto deadline = Clock::now() + std::chrono::milliseconds(periodMs);
    switch (m_mode) {
    case ModeEthernet:
        if (m_clientSocket) {
            waitEthernet(needed, periodMs);
            return;
        }
        break;
    case ModeSerial:
        if (m_serialPort && m_serialPort->GetConnected()) {
            while (m_serialPort->BytesAvailable() < needed && remainingMs(deadline) > 0) {
                m_serialPort->WaitReadable(remainingMs(deadline));
                // Part of the data is there: look again shortly.
                if (m_serialPort->BytesAvailable() < needed && remainingMs(deadline) > 0)
                    QThread::msleep(1);
            }
            return;
        }
        break;
    case ModeUSB:
        if (m_usbSlot && *m_usbSlot) {
            (*m_usbSlot)->waitForData(needed, periodMs);
            return;
        }
        break;
    default:
        break;
    }
    QThread::msleep(unsigned(periodMs));
}
