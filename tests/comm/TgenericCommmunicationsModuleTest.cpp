#include "FakeUsbDevice.h"
#include "LoopbackAddress.h"
#include "PtyPair.h"
#include "RecordingMessageSink.h"
#include "TgenericCommmunicationsModule.h"
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

namespace {
using Module = TgenericCommmunicationsModule;

struct ModuleFixture : ::testing::Test {
    ~ModuleFixture() override { TCommPort::setPortOverrides({}); }
    QRTcommClass holder;
    RecordingMessageSink messages;
    TtransportParams usb = TtransportParams::makeUSB();
};
}

// A failed open reports once unless quiet; an open while the holder is busy takes it over, releasing the other link.
TEST_F(ModuleFixture, UsbTriesBothDescriptionsTakesTheHolderAndNeedsItsSetUp)
{
    const Message notDetected{"Error", "Device Not Detected.\nPlease check connection.\n\nOperation Canceled."};
    FakeUsbInstalled fake;
    for (bool quiet : {false, true}) {
        RecordingMessageSink sink;
        fake.script->calls.clear();
        EXPECT_THROW(Module(&holder, ModeUSB, 2000, 264, &usb, sink, quiet).open(), TnoDeviceAttachedException);
        EXPECT_EQ(fake.script->calls,
                  (std::vector<std::string>{"open Brennix Systems KT930 Plus", "open Brennix Systems Kt930 Final"}));
        EXPECT_EQ(sink.messages, quiet ? std::vector<Message>{} : std::vector<Message>{notDetected}) << quiet;
    }
    fake.script->descriptions = {"Brennix Systems KT930 Plus"};
    holder.release();
    ASSERT_NE(holder.acquire(QRTcommClass::Serial), nullptr);
    EXPECT_EQ(Module(&holder, ModeUSB, 2000, 264, &usb, messages).open(), 0);
    EXPECT_EQ(std::pair(bool(holder.usbSlot()), bool(holder.serialSlot())), std::pair(true, false));
    // Missing set-up, or a failed initialize, is uninitialized.
    EXPECT_THROW(Module(&holder, ModeNone, 2000, 264, &usb, messages).open(), TuninitializedCommModeException);
    EXPECT_THROW(Module(nullptr, ModeUSB, 2000, 264, &usb, messages).open(), TuninitializedCommModeException);
    fake.script->descriptions.clear();
    Module module(&holder, ModeNone, 0, 0, nullptr, messages);
    EXPECT_THROW(module.initialize(&holder, ModeUSB, 2000, 264, &usb, true), TuninitializedCommModeException);
    EXPECT_EQ(std::tuple(module.mode(), module.getTimeout(), module.getBlockSize()), std::tuple(ModeNone, 2000u, 264u));
}

TEST_F(ModuleFixture, SerialOpensThroughPortOverrideAt19200Raw)
{
    PtyPair pty;
    // Start from a cooked 9600 7E2 line so every setting has to be made.
    termios line{};
    ASSERT_EQ(tcgetattr(pty.master, &line), 0);
    line.c_iflag |= ICRNL | IXON;
    line.c_oflag |= OPOST;
    line.c_lflag |= ICANON | ECHO | ISIG | IEXTEN;
    line.c_cflag = (line.c_cflag & ~CSIZE) | CS7 | PARENB | CSTOPB;
    cfsetspeed(&line, B9600);
    ASSERT_EQ(tcsetattr(pty.master, TCSANOW, &line), 0);

    TCommPort::setPortOverrides({{201, pty.slavePath}});
    TtransportParams serial = TtransportParams::makeSerial(201);
    Module module(&holder, ModeSerial, 2000, 264, &serial, messages);
    EXPECT_EQ(module.open(), 0);
    ASSERT_EQ(tcgetattr(pty.master, &line), 0); // the master reports the slave's line
    EXPECT_EQ(
        std::tuple(cfgetispeed(&line), cfgetospeed(&line), line.c_cflag & (CSIZE | PARENB | CSTOPB | CREAD | CLOCAL),
                   line.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), line.c_iflag & (ICRNL | IXON | ISTRIP),
                   line.c_oflag & OPOST, line.c_cc[VMIN], line.c_cc[VTIME]),
        std::tuple(speed_t(B19200), speed_t(B19200), tcflag_t(CS8 | CREAD | CLOCAL), 0u, 0u, 0u, cc_t(0), cc_t(0)));
    EXPECT_EQ(module.write(reinterpret_cast<const std::uint8_t *>("GESI\r"), 5), 0);
    EXPECT_EQ(pty.receive(5), "GESI\r");
    pty.send("*\r");
    module.waitForData(2, 1000);
    EXPECT_EQ(module.bytesAvailable(), 2);
    std::uint8_t ack[8] = {};
    EXPECT_EQ(module.read(ack, 4), -1); // short read fails
    EXPECT_EQ(std::string(reinterpret_cast<char *>(ack)), "*\r");
    module.close();
    EXPECT_EQ(module.isOpen(), Module::Idle);
}

TEST_F(ModuleFixture, SerialOpenFailureAndOtherPortErrorsShowTheirTableEntry)
{
    TCommPort::setPortOverrides({{202, "/nonexistent/tty"}});
    TtransportParams serial = TtransportParams::makeSerial(202);
    Module module(&holder, ModeSerial, 2000, 264, &serial, messages);
    EXPECT_THROW(module.open(), ECommError);
    for (int code : {0, 13, 17, 18, 19})
        module.onSerialError(ECommError(std::uint8_t(code), 0));
    const Message unspecified{"Unspecified Serial Port Error",
                              "An unspecified serial port error occurred.\rOperation Canceled."};
    EXPECT_EQ(messages.messages, (std::vector<Message>{{"Serial Port Error", "Open Error!"},
                                                       {"Serial Port Error", "Bad Serial Port!"},
                                                       {"Serial Port Error", "Flush File Buffers Error!"},
                                                       {"Serial Port Error", "Set Comm Timeouts Error!"},
                                                       {"Serial Port Error", "Clear Comm Error!"},
                                                       unspecified}));
}

TEST(EthernetMessageTable, TextsPerEvent)
{
    using E = TsocketEvent;
    const std::pair<E, Message> rows[] = {
        {E::Send, {"Ethernet Send Error", "An error occurred while attempting to send.\rOperation Canceled."}},
        {E::Receive, {"Ethernet Receive Error", "An error occurred while attempting to receive.\rOperation Canceled."}},
        {E::Connect,
         {"Ethernet Connection Error", "An error occurred while attempting to connect.\rOperation Canceled."}},
        {E::Disconnect,
         {"Ethernet Disconnection Error", "An unexpected disconnection has occurred.\rOperation Canceled"}},
        {E::Accept,
         {"Ethernet Accept Error", "An error occurred while attempting to accept a connection.\rOperation Canceled."}},
        {E::General, {"Unspecified Ethernet Error", "An unspecified error occurred.\rOperation Canceled."}},
    };
    for (const auto &[event, message] : rows)
        EXPECT_EQ(Module::socketMessage(event), message) << int(event);
}

TEST_F(ModuleFixture, EthernetBlockCutShortByAClosedConnectionTimesOut)
{
    QTcpServer server;
    const LoopbackAddress address(3);
    ASSERT_TRUE(server.listen(QHostAddress(QString::fromStdString(address.text())), AnalyzerTcpPort));
    TtransportParams ethernet = TtransportParams::makeEthernet(address.a, address.b, address.c, address.d);
    Module module(&holder, ModeEthernet, 100, 264, &ethernet, messages, true);
    ASSERT_EQ(module.open(), 0);
    ASSERT_TRUE(server.hasPendingConnections() || server.waitForNewConnection(2000));
    QTcpSocket *peer = server.nextPendingConnection();
    peer->write(QByteArray("AB", 2));
    peer->waitForBytesWritten(1000);
    peer->disconnectFromHost();
    module.waitForData(2, 500);
    std::uint8_t buffer[8] = {};
    EXPECT_THROW(module.read(buffer, 8), TcommTimeoutException);
}

// A broken link fails the send or receive under way; other errors are general.
TEST(EthernetEvents, SocketErrorsMapToTheirEvents)
{
    using E = TsocketEvent;
    using S = QAbstractSocket;
    const std::tuple<S::SocketError, bool, E, E> cases[] = {
        // error, connecting, under way, expected
        {S::ConnectionRefusedError, true, E::General, E::Connect},
        {S::HostNotFoundError, true, E::General, E::Connect},
        {S::SocketTimeoutError, true, E::General, E::Connect},
        {S::RemoteHostClosedError, false, E::Receive, E::Disconnect},
        {S::NetworkError, false, E::Send, E::Send},
        {S::NetworkError, false, E::Receive, E::Receive},
        {S::NetworkError, true, E::Receive, E::Connect},
        {S::ProxyConnectionRefusedError, false, E::Send, E::General},
        {S::UnknownSocketError, false, E::Receive, E::General},
        {S::SocketResourceError, true, E::Receive, E::General},
    };
    for (const auto &[error, connecting, underWay, expected] : cases)
        EXPECT_EQ(Module::socketEventOf(error, connecting, underWay), expected) << error << connecting << int(underWay);
}
