#include "PtyPair.h"
#include "TCommPort.h"
#include "Thrown.h"
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <thread>
#include <vector>

namespace {
constexpr int PtyPort = 200;

class TCommPortTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        TCommPort::setPortOverrides({{PtyPort, pty.slavePath}});
        port.SetCommPort("COM200");
        port.SetBaudRate(19200);
    }
    void TearDown() override { TCommPort::setPortOverrides({}); }

    template <typename F> std::uint8_t codeOf(F f)
    {
        auto e = thrown<ECommError>(f);
        return e ? e->code() : 0xFF;
    }

    // Waits (up to 5 s) until count bytes are pending: the pty hands them over in pieces.
    void waitPending(std::size_t count)
    {
        for (int i = 0; i < 500 && port.BytesAvailable() < count; ++i)
            port.WaitReadable(10);
    }

    PtyPair pty;
    TCommPort port;
};
}

TEST(TCommPortNames, NumbersMapToDevicesAndOverridesWin)
{
    EXPECT_EQ(TCommPort::devicePath(33), "/dev/ttyUSB0"); // the families: TserialPortMap's
    TCommPort::setPortOverrides({{3, "/tmp/port3"}});
    EXPECT_EQ(TCommPort::resolve("COM3"), "/tmp/port3");
    EXPECT_EQ(TCommPort::resolve("COM4"), "/dev/ttyS3");
    EXPECT_EQ(TCommPort::resolve("/dev/pts/7"), "/dev/pts/7");
    TCommPort::setPortOverrides({});
}

TEST_F(TCommPortTest, ClosedPortRefusesIoWithCode7)
{
    std::uint8_t buffer[4];
    EXPECT_EQ(codeOf([&] { port.ReadBytes(buffer, 4); }), ECommError::PortNotOpen);
    EXPECT_EQ(codeOf([&] { port.WriteBuffer(buffer, 4); }), ECommError::PortNotOpen);
    EXPECT_EQ(codeOf([&] { port.BytesAvailable(); }), ECommError::PortNotOpen);
}

TEST_F(TCommPortTest, MissingDeviceIsOpenErrorWithErrno)
{
    TCommPort::setPortOverrides({{PtyPort, "/nonexistent/tty"}});
    auto e = thrown<ECommError>([&] { port.OpenCommPort(); });
    ASSERT_TRUE(e) << "opened a missing device";
    EXPECT_EQ(e->code(), ECommError::OpenError);
    EXPECT_EQ(e->lastError(), ENOENT);
}

TEST_F(TCommPortTest, OpenPortRefusesRename)
{
    port.OpenCommPort();
    ASSERT_TRUE(port.GetConnected());
    EXPECT_EQ(codeOf([&] { port.SetCommPort("COM2"); }), ECommError::PortAlreadyOpen);
}

// A sync chunk is 4224 bytes, more than a terminal queues (about 4 KB): the port's
// own input queue must hold it all and report it as pending.
TEST_F(TCommPortTest, WholeSyncChunkIsPendingAndReadsUnchanged)
{
    port.OpenCommPort();
    std::string chunk(4224, '\0');
    for (std::size_t i = 0; i < chunk.size(); ++i)
        chunk[i] = char(i * 31 + i / 256);
    std::thread peer([&] { pty.send(chunk); });
    waitPending(chunk.size());
    peer.join();
    EXPECT_EQ(port.BytesAvailable(), 4224u);
    std::vector<std::uint8_t> buffer(4224);
    ASSERT_EQ(port.ReadBytes(buffer.data(), buffer.size()), 4224u);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), chunk);
    EXPECT_EQ(port.BytesAvailable(), 0u);
}

TEST_F(TCommPortTest, QueuedBytesComeBeforeLaterOnesAndCloseDropsThem)
{
    port.OpenCommPort();
    pty.send("first");
    waitPending(5);
    pty.send("second");
    std::uint8_t buffer[11] = {};
    EXPECT_EQ(port.ReadBytes(buffer, 11), 11u);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer), 11), "firstsecond");

    pty.send("stale");
    waitPending(5);
    port.CloseCommPort();
    port.OpenCommPort();
    EXPECT_EQ(port.BytesAvailable(), 0u);
}

// The exclusive mark stays with the terminal after its descriptor closes unless
// it is taken off.
TEST_F(TCommPortTest, CloseGivesUpExclusiveUse)
{
    auto exclusive = [&] {
        int fd = ::open(pty.slavePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (fd < 0)
            return errno == EBUSY; // not privileged: the mark refuses the open
        int flag = 0;
        ::ioctl(fd, TIOCGEXCL, &flag);
        ::close(fd);
        return flag != 0;
    };
    port.OpenCommPort();
    EXPECT_TRUE(exclusive());
    port.CloseCommPort();
    EXPECT_FALSE(exclusive());
}

// A port that another program holds exclusively does not open, even for a
// privileged process, and keeps its holder's mark.
TEST_F(TCommPortTest, PortHeldExclusivelyElsewhereIsOpenErrorBusy)
{
    const int holder = ::open(pty.slavePath.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(holder, 0);
    ASSERT_EQ(::ioctl(holder, TIOCEXCL), 0);
    auto e = thrown<ECommError>([&] { port.OpenCommPort(); });
    EXPECT_TRUE(e) << "opened a port held elsewhere";
    EXPECT_EQ(e ? e->code() : 0xFF, ECommError::OpenError);
    EXPECT_EQ(e ? e->lastError() : 0, EBUSY);
    port.CloseCommPort();
    int flag = 0;
    ::ioctl(holder, TIOCGEXCL, &flag);
    EXPECT_EQ(flag, 1);
    ::close(holder);
}

TEST_F(TCommPortTest, ShortReadReturnsCountAndPutsNulAfterData)
{
    port.OpenCommPort();
    pty.send("abc");
    std::uint8_t buffer[10];
    std::fill(std::begin(buffer), std::end(buffer), 'x');
    EXPECT_EQ(port.ReadBytes(buffer, 10), 3u);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer), 3), "abc");
    EXPECT_EQ(buffer[3], 0);
    EXPECT_EQ(buffer[4], 'x');
}

TEST_F(TCommPortTest, RefusedSettingKeepsOldValueAndThrowsItsCode)
{
    port.OpenCommPort();
    EXPECT_EQ(codeOf([&] { port.SetBaudRate(12345); }), ECommError::BadBaudRate);
    EXPECT_EQ(port.GetBaudRate(), 19200u);
    EXPECT_EQ(codeOf([&] { port.SetByteSize(9); }), ECommError::BadByteSize);
    EXPECT_EQ(port.GetByteSize(), 8);
    EXPECT_EQ(codeOf([&] { port.SetParity(7); }), ECommError::BadParity);
    EXPECT_EQ(port.GetParity(), 0);
    EXPECT_EQ(codeOf([&] { port.SetStopBits(1); }), ECommError::BadStopBits);
    EXPECT_EQ(port.GetStopBits(), 0);
    port.SetBaudRate(9600);
    EXPECT_EQ(port.GetBaudRate(), 9600u);
}

TEST_F(TCommPortTest, BadBaudRateAtOpenIsSetCommStateError)
{
    port.SetBaudRate(12345);
    EXPECT_EQ(codeOf([&] { port.OpenCommPort(); }), ECommError::SetCommStateError);
    EXPECT_FALSE(port.GetConnected());
}

TEST(ECommErrorTable, CodesNameTheirTexts)
{
    EXPECT_EQ(ECommError::text(0), "Bad Serial Port!");
    EXPECT_EQ(ECommError::text(8), "Open Error!");
    EXPECT_EQ(ECommError::text(13), "Flush File Buffers Error!");
    EXPECT_EQ(ECommError::text(18), "Clear Comm Error!");
    EXPECT_EQ(ECommError::text(19), "");
}
