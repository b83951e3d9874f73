#pragma once
// The transport-neutral module: opens, reads, writes, polls and closes whichever
// transport the mode selects. Read/write/available return 0 (or a count) on
// success and -1 on failure; time-outs, a missing device and bad configuration
// throw the exceptions of CommExceptions.h. Messages go to the given sink unless quiet.
#include "CommExceptions.h"
#include "ECommError.h"
#include "MessageSink.h"
#include "QRTcommClass.h"
#include "TtransportParams.h"
#include <cstddef>
#include <cstdint>
#include <functional>

class QTcpSocket;

// Socket error events, as the Ethernet message table knows them.
enum class TsocketEvent { General, Send, Receive, Connect, Disconnect, Accept };

class TgenericCommmunicationsModule {
public:
    // Ethernet connection state (serial sets Connected after an open too).
    enum State : std::uint8_t { Idle = 0, Connecting = 1, Connected = 2 };

    TgenericCommmunicationsModule(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout,
                                  std::uint32_t blockSize, TtransportParams *parameters,
                                  MessageSink &messages, bool quiet = false);
    virtual ~TgenericCommmunicationsModule();
    TgenericCommmunicationsModule(const TgenericCommmunicationsModule &) = delete;
    TgenericCommmunicationsModule &operator=(const TgenericCommmunicationsModule &) = delete;

    // 0 when the transport is open, -1 when the holder gave no connection.
    virtual int open();
    virtual int initialize(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout,
                           std::uint32_t blockSize, TtransportParams *parameters, bool quiet);
    virtual void close();
    virtual int bytesAvailable();
    virtual int read(std::uint8_t *buffer, std::size_t length);
    virtual int write(const std::uint8_t *buffer, std::size_t length);
    virtual std::uint32_t getBlockSize() const { return m_blockSize; }
    virtual std::uint32_t getTimeout() const { return m_timeout; }
    virtual std::uint8_t isOpen() const { return m_state; }
    virtual bool isCancelled() { return false; }
    virtual void setProgress(int) {}
    virtual void onSerialError(const ECommError &error);
    // Shows the event's message unless quiet, zeroes errorCode, drops the state to Idle.
    virtual void onSocketError(QTcpSocket *socket, TsocketEvent event, int &errorCode);
    virtual void openUSB();
    virtual int openSerial(TtransportParams *parameters);
    virtual int openEthernet(TtransportParams *parameters);
    // The two halves of an open, for callers that report a busy holder themselves:
    // acquireSlot takes a connection of the kind from the holder (retrying once
    // after a release) and returns its slot or null; the open*Slot calls open the
    // transport over a slot so acquired, as openSerial and openEthernet do.
    void *acquireSlot(int kind);
    int openSerialSlot(void *slot, TtransportParams *parameters);
    int openEthernetSlot(void *slot, TtransportParams *parameters);
    virtual void onSocketConnect(QTcpSocket *socket);

    virtual int readUSB(std::uint8_t *buffer, std::size_t length);
    virtual int writeUSB(const std::uint8_t *buffer, std::size_t length);
    virtual int readSerial(std::uint8_t *buffer, std::size_t length);
    virtual int writeSerial(const std::uint8_t *buffer, std::size_t length);
    virtual int readEthernet(std::uint8_t *buffer, std::size_t length);
    virtual int writeEthernet(const std::uint8_t *buffer, std::size_t length);
    virtual int availableSerial();
    virtual int availableUSB();
    virtual int availableEthernet();

    // One poll period: waits up to periodMs for `needed` pending bytes and returns
    // early once they are there. Replaces the blind sleeps between polls.
    void waitForData(std::size_t needed, int periodMs);

    // Uses a USB device the caller already opened through the holder's USB slot.
    void adoptUSB(std::unique_ptr<TusbDeviceApi> *slot);

    std::uint8_t mode() const { return m_mode; }
    bool quiet() const { return m_quiet; }
    MessageSink &messages() { return m_messages; }

    // "Process pending window messages": QCoreApplication::processEvents on the
    // calling thread unless replaced (an empty function restores the default).
    static void setMessagePump(std::function<void()> pump);
    static void processMessages();

    // Ethernet message table entry of an event.
    static Message socketMessage(TsocketEvent event);
    // The event a socket error (a QAbstractSocket::SocketError) stands for;
    // `activity` is the send or receive under way.
    static TsocketEvent socketEventOf(int socketError, bool connecting, TsocketEvent activity);

protected:
    void show(const std::string &caption, const std::string &text);

private:
    int openByMode();
    TCommPort &serialPort();
    TusbDeviceApi &usbDevice();
    void waitEthernet(std::size_t needed, int periodMs);
    void connectSocketEvents(QTcpSocket *socket);

    bool m_quiet;
    std::uint8_t m_state = Idle;
    std::uint8_t m_mode;
    std::uint32_t m_timeout;
    std::uint32_t m_blockSize;
    std::unique_ptr<TusbDeviceApi> *m_usbSlot = nullptr;
    std::unique_ptr<TCommPort> m_serialPort; // the module's own port
    QTcpSocket *m_clientSocket = nullptr;    // owned by the holder
    QRTcommClass *m_holder;
    TtransportParams *m_parameters;
    QTcpSocket *m_connectedSocket = nullptr;
    std::uint32_t m_connectTimeout = 0;
    TsocketEvent m_socketActivity = TsocketEvent::General;
    MessageSink &m_messages;
};
