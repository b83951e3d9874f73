#include "FakeUsbDevice.h"
#include "LoopbackAddress.h"
#include "PtyPair.h"
#include "RecordingMessageSink.h"
#include "TgenericCommmunicationsModule.h"
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

namespace {
const Message DeviceNotDetected {"Error", "Device Not Detected.\nPlease check connection.\n\nOperation Canceled."};

struct ModuleFixture : ::testing::Test {
    void TearDown() override { TCommPort::setPortOverrides({}); }
    QRTcommClass holder;
    RecordingMessageSink messages;
    TtransportParams usb = TtransportParams::makeUSB();
};
}

TEST(QRTcommClassTest, AdmitsOneConnectionUntilReleased)
{
    QRTcommClass holder;
    EXPECT_EQ(holder.release(), -1);
    void *slot = holder.acquire(QRTcommClass::Serial);
    ASSERT_EQ(slot, &holder.serialSlot());
    EXPECT_TRUE(holder.serialSlot());
    EXPECT_EQ(holder.acquire(QRTcommClass::Serial), nullptr);
    EXPECT_EQ(holder.release(), 0);
    EXPECT_FALSE(holder.serialSlot());
    EXPECT_EQ(holder.acquire(7), nullptr);
    EXPECT_FALSE(holder.inUse());
    EXPECT_EQ(holder.acquire(QRTcommClass::Socket), &holder.socketSlot());
    EXPECT_TRUE(holder.socketSlot());
}

TEST_F(ModuleFixture, UsbTriesBothDescriptionsAndReportsOnceUnlessQuiet)
{
    for (bool quiet : {false, true}) {
        FakeUsbInstalled fake;
        RecordingMessageSink sink;
        TgenericCommmunicationsModule module(&holder, ModeUSB, 2000, 264, &usb, sink, quiet);
        EXPECT_THROW(module.open(), TnoDeviceAttachedException);
        EXPECT_EQ(fake.script->calls,
                  (std::vector<std::string> {"open Brennix Systems KT930 Plus", "open Brennix Systems Kt930 Final"}));
        EXPECT_EQ(sink.messages, quiet ? std::vector<Message> {} : std::vector<Message> {DeviceNotDetected}) << quiet;
    }
}

TEST_F(ModuleFixture, SecondOpenWhileHolderBusyRetriesAfterRelease)
{
    FakeUsbInstalled fake;
    fake.script->descriptions = {"Brennix Systems KT930 Plus"};
    ASSERT_NE(holder.acquire(QRTcommClass::Serial), nullptr);
    TgenericCommmunicationsModule module(&holder, ModeUSB, 2000, 264, &usb, messages);
    EXPECT_EQ(module.open(), 0);
    EXPECT_TRUE(holder.usbSlot());
    EXPECT_FALSE(holder.serialSlot());
}

TEST_F(ModuleFixture, MissingSetupIsUninitialized)
{
    TgenericCommmunicationsModule noMode(&holder, ModeNone, 2000, 264, &usb, messages);
    EXPECT_THROW(noMode.open(), TuninitializedCommModeException);
    TgenericCommmunicationsModule noHolder(nullptr, ModeUSB, 2000, 264, &usb, messages);
    EXPECT_THROW(noHolder.open(), TuninitializedCommModeException);
}

TEST_F(ModuleFixture, FailedInitializeClearsModeAndThrowsUninitialized)
{
    FakeUsbInstalled fake;
    TgenericCommmunicationsModule module(&holder, ModeNone, 0, 0, nullptr, messages);
    EXPECT_THROW(module.initialize(&holder, ModeUSB, 2000, 264, &usb, true), TuninitializedCommModeException);
    EXPECT_EQ(module.mode(), ModeNone);
    EXPECT_EQ(module.getTimeout(), 2000u);
    EXPECT_EQ(module.getBlockSize(), 264u);
}

TEST_F(ModuleFixture, SerialOpensThroughPortOverrideAt19200)
{
    PtyPair pty;
    // Start from a cooked 9600 7E2 line so every setting has to be made.
    termios line {};
    ASSERT_EQ(tcgetattr(pty.master, &line), 0);
    line.c_iflag |= ICRNL | IXON;
    line.c_oflag |= OPOST;
    line.c_lflag |= ICANON | ECHO | ISIG | IEXTEN;
    line.c_cflag = (line.c_cflag & ~CSIZE) | CS7 | PARENB | CSTOPB;
    cfsetspeed(&line, B9600);
    ASSERT_EQ(tcsetattr(pty.master, TCSANOW, &line), 0);

    TCommPort::setPortOverrides({{201, pty.slavePath}});
    TtransportParams serial = TtransportParams::makeSerial(201);
    EXPECT_STREQ(serial.serial.portName, "COM201");
    TgenericCommmunicationsModule module(&holder, ModeSerial, 2000, 264, &serial, messages);
    EXPECT_EQ(module.open(), 0);
    EXPECT_EQ(module.isOpen(), TgenericCommmunicationsModule::Connected);

    ASSERT_EQ(tcgetattr(pty.master, &line), 0); // the master reports the slave's line
    EXPECT_EQ(cfgetispeed(&line), speed_t(B19200));
    EXPECT_EQ(cfgetospeed(&line), speed_t(B19200));
    EXPECT_EQ(line.c_cflag & CSIZE, tcflag_t(CS8));
    EXPECT_EQ(line.c_cflag & (PARENB | CSTOPB), 0u);
    EXPECT_EQ(line.c_cflag & (CREAD | CLOCAL), tcflag_t(CREAD | CLOCAL));
    EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0u);
    EXPECT_EQ(line.c_iflag & (ICRNL | IXON | ISTRIP), 0u);
    EXPECT_EQ(line.c_oflag & OPOST, 0u);
    EXPECT_EQ(line.c_cc[VMIN], 0);
    EXPECT_EQ(line.c_cc[VTIME], 0);
    EXPECT_EQ(module.write(reinterpret_cast<const std::uint8_t *>("GESI\r"), 5), 0);
    EXPECT_EQ(pty.receive(5), "GESI\r");
    pty.send("*\r");
    module.waitForData(2, 1000);
    EXPECT_EQ(module.bytesAvailable(), 2);
    std::uint8_t ack[8] = {};
    EXPECT_EQ(module.read(ack, 4), -1); // short read fails
    EXPECT_EQ(std::string(reinterpret_cast<char *>(ack)), "*\r");
    module.close();
    EXPECT_EQ(module.isOpen(), TgenericCommmunicationsModule::Idle);
}

TEST_F(ModuleFixture, SerialOpenFailureShowsTableEntryAndRethrows)
{
    TCommPort::setPortOverrides({{202, "/nonexistent/tty"}});
    TtransportParams serial = TtransportParams::makeSerial(202);
    TgenericCommmunicationsModule module(&holder, ModeSerial, 2000, 264, &serial, messages);
    EXPECT_THROW(module.open(), ECommError);
    ASSERT_EQ(messages.messages.size(), 1u);
    EXPECT_EQ(messages.messages[0], (Message {"Serial Port Error", "Open Error!"}));
}

TEST_F(ModuleFixture, SerialErrorCodesOutsideTableAreUnspecified)
{
    TgenericCommmunicationsModule module(&holder, ModeSerial, 2000, 264, &usb, messages);
    module.onSerialError(ECommError(42, 0));
    module.onSerialError(ECommError(ECommError::SetCommTimeoutsError, 0));
    ASSERT_EQ(messages.messages.size(), 2u);
    EXPECT_EQ(messages.messages[0], (Message {"Unspecified Serial Port Error",
                                              "An unspecified serial port error occurred.\rOperation Canceled."}));
    EXPECT_EQ(messages.messages[1], (Message {"Serial Port Error", "Set Comm Timeouts Error!"}));
}

TEST(EthernetMessageTable, TextsPerEvent)
{
    using M = TgenericCommmunicationsModule;
    EXPECT_EQ(M::socketMessage(TsocketEvent::Send),
              (Message {"Ethernet Send Error", "An error occurred while attempting to send.\rOperation Canceled."}));
    EXPECT_EQ(M::socketMessage(TsocketEvent::Receive),
              (Message {"Ethernet Receive Error", "An error occurred while attempting to receive.\rOperation Canceled."}));
    EXPECT_EQ(M::socketMessage(TsocketEvent::Connect),
              (Message {"Ethernet Connection Error", "An error occurred while attempting to connect.\rOperation Canceled."}));
    EXPECT_EQ(M::socketMessage(TsocketEvent::Disconnect),
              (Message {"Ethernet Disconnection Error", "An unexpected disconnection has occurred.\rOperation Canceled"}));
    EXPECT_EQ(M::socketMessage(TsocketEvent::Accept),
              (Message {"Ethernet Accept Error",
                        "An error occurred while attempting to accept a connection.\rOperation Canceled."}));
    EXPECT_EQ(M::socketMessage(TsocketEvent::General),
              (Message {"Unspecified Ethernet Error", "An unspecified error occurred.\rOperation Canceled."}));
}

TEST_F(ModuleFixture, EthernetBlockCutShortByAClosedConnectionTimesOut)
{
    QTcpServer server;
    const LoopbackAddress address(3);
    ASSERT_TRUE(server.listen(QHostAddress(QString::fromStdString(address.text())), AnalyzerTcpPort));
    TtransportParams ethernet = TtransportParams::makeEthernet(address.a, address.b, address.c, address.d);
    TgenericCommmunicationsModule module(&holder, ModeEthernet, 100, 264, &ethernet, messages, true);
    ASSERT_EQ(module.open(), 0);
    ASSERT_TRUE(server.hasPendingConnections() || server.waitForNewConnection(2000));
    QTcpSocket *peer = server.nextPendingConnection();
    peer->write(QByteArray("AB", 2));
    peer->flush();
    peer->waitForBytesWritten(1000);
    peer->disconnectFromHost();
    module.waitForData(2, 500);
    std::uint8_t buffer[8] = {};
    EXPECT_THROW(module.read(buffer, 8), TcommTimeoutException);
}

TEST(EthernetEvents, SocketErrorsMapToTheirEvents)
{
    using E = TsocketEvent;
    using S = QAbstractSocket;
    const struct {
        S::SocketError error;
        bool connecting;
        E underWay, expected;
    } cases[] = {
        {S::ConnectionRefusedError, true, E::General, E::Connect},
        {S::HostNotFoundError, true, E::General, E::Connect},
        {S::SocketTimeoutError, true, E::General, E::Connect},
        {S::RemoteHostClosedError, false, E::Receive, E::Disconnect},
        // A broken link fails the send or receive under way.
        {S::NetworkError, false, E::Send, E::Send},
        {S::NetworkError, false, E::Receive, E::Receive},
        {S::NetworkError, true, E::Receive, E::Connect},
        // Anything else is general, whatever was under way.
        {S::ProxyConnectionRefusedError, false, E::Send, E::General},
        {S::UnknownSocketError, false, E::Receive, E::General},
        {S::SocketResourceError, true, E::Receive, E::General},
    };
    for (const auto &c : cases)
        EXPECT_EQ(TgenericCommmunicationsModule::socketEventOf(c.error, c.connecting, c.underWay), c.expected)
            << "error " << c.error << (c.connecting ? " connecting" : "") << " under way " << int(c.underWay);
}

// The one slow case of this program: a refused connect is reported by the error
// event, leaves the state at 0, and the connect then runs out of its 201 polls.
TEST_F(ModuleFixture, EthernetRefusedConnectReportsThenTimesOut)
{
    const LoopbackAddress address(1);
    TtransportParams ethernet = TtransportParams::makeEthernet(address.a, address.b, address.c, address.d);
    TgenericCommmunicationsModule module(&holder, ModeEthernet, 2000, 264, &ethernet, messages);
    EXPECT_THROW(module.open(), TcommTimeoutException);
    EXPECT_EQ(module.isOpen(), TgenericCommmunicationsModule::Idle);
    ASSERT_EQ(messages.messages.size(), 1u);
    EXPECT_EQ(messages.messages[0], TgenericCommmunicationsModule::socketMessage(TsocketEvent::Connect));
}
