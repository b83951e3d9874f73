#include "TCommPort.h"
#include "PtyPair.h"
#include "Thrown.h"
#include <gtest/gtest.h>
#include <sys/ioctl.h>

namespace {
// The code and errno an ECommError carries.
template <typename F> std::pair<int, int> failure(F f)
{
    auto e = thrown<ECommError>(f);
    return e ? std::pair(int(e->code()), e->lastError()) : std::pair(0xFF, 0);
}
template <typename F> int codeOf(F f)
{
    return failure(f).first;
}
class TCommPortTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        TCommPort::setPortOverrides({{200, pty.slavePath}});
        port.SetCommPort("COM200");
        port.SetBaudRate(19200);
    }
    void TearDown() override { TCommPort::setPortOverrides({}); }
    // Waits (up to 5 s) until count bytes are pending: the pty hands them over in pieces.
    void waitPending(std::size_t count)
    {
        for (int i = 0; i < 500 && port.BytesAvailable() < count; ++i)
            port.WaitReadable(10);
    }
    std::string read(std::size_t n, std::size_t expected)
    {
        std::string buffer(n + 1, 'x'); // one byte more, to see what a read leaves there
        EXPECT_EQ(port.ReadBytes(reinterpret_cast<std::uint8_t *>(buffer.data()), n), expected);
        return buffer;
    }

    PtyPair pty;
    TCommPort port;
};
} // namespace

TEST_F(TCommPortTest, NamesResolveClosedPortRefusesIoMissingDeviceIsOpenErrorOpenPortRefusesRename)
{
    TCommPort::setPortOverrides({{3, "/tmp/port3"}}); // overrides win over the device families
    EXPECT_EQ((std::vector{TCommPort::resolve("COM3"), TCommPort::resolve("COM4"), TCommPort::resolve("/dev/pts/7")}),
              (std::vector<std::string>{"/tmp/port3", "/dev/ttyS3", "/dev/pts/7"}));
    std::uint8_t buffer[4];
    EXPECT_EQ(codeOf([&] { port.ReadBytes(buffer, 4); }), ECommError::PortNotOpen);
    EXPECT_EQ(codeOf([&] { port.WriteBuffer(buffer, 4); }), ECommError::PortNotOpen);
    EXPECT_EQ(codeOf([&] { port.BytesAvailable(); }), ECommError::PortNotOpen);
    TCommPort::setPortOverrides({{200, "/nonexistent/tty"}});
    EXPECT_EQ(failure([&] { port.OpenCommPort(); }), std::pair(int(ECommError::OpenError), ENOENT));
    TCommPort::setPortOverrides({{200, pty.slavePath}});
    port.OpenCommPort();
    ASSERT_TRUE(port.GetConnected());
    EXPECT_EQ(codeOf([&] { port.SetCommPort("COM2"); }), ECommError::PortAlreadyOpen);
}

// A short read returns its count and puts a 0 after the data.
TEST_F(TCommPortTest, QueuedBytesComeFirstShortReadsEndInNulAndCloseDropsThem)
{
    port.OpenCommPort();
    pty.send("first");
    waitPending(5);
    pty.send("second");
    EXPECT_EQ(read(11, 11), "firstsecondx");
    pty.send("abc");
    waitPending(3);
    EXPECT_EQ(read(10, 3), std::string("abc") + '\0' + std::string(7, 'x'));
    pty.send("stale");
    waitPending(5);
    port.CloseCommPort();
    port.OpenCommPort();
    EXPECT_EQ(port.BytesAvailable(), 0u);
}

// A port another program holds exclusively does not open, even for a privileged
// process, and keeps its holder's mark; our own mark would stay after close unless taken off.
TEST_F(TCommPortTest, ExclusiveUseIsTakenGivenUpOnCloseAndRespectedElsewhere)
{
    port.OpenCommPort();
    EXPECT_EQ(pty.exclusiveMark(), 1);
    port.CloseCommPort();
    EXPECT_EQ(pty.exclusiveMark(), 0);
    const int holder = ::open(pty.slavePath.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(::ioctl(holder, TIOCEXCL), 0);
    EXPECT_EQ(failure([&] { port.OpenCommPort(); }), std::pair(int(ECommError::OpenError), EBUSY));
    port.CloseCommPort();
    EXPECT_EQ(pty.exclusiveMark(), 1);
    ::close(holder);
}

TEST_F(TCommPortTest, RefusedSettingKeepsOldValueAndThrowsItsCodeAndFailsAnOpen)
{
    port.SetBaudRate(12345);
    EXPECT_EQ(codeOf([&] { port.OpenCommPort(); }), ECommError::SetCommStateError);
    EXPECT_FALSE(port.GetConnected());
    port.SetBaudRate(19200);
    port.OpenCommPort();
    const auto settings = [&] {
        return std::tuple(port.GetBaudRate(), port.GetByteSize(), port.GetParity(), port.GetStopBits());
    };
    const auto before = settings();
    EXPECT_EQ(codeOf([&] { port.SetBaudRate(12345); }), ECommError::BadBaudRate);
    EXPECT_EQ(codeOf([&] { port.SetByteSize(9); }), ECommError::BadByteSize);
    EXPECT_EQ(codeOf([&] { port.SetParity(7); }), ECommError::BadParity);
    EXPECT_EQ(codeOf([&] { port.SetStopBits(1); }), ECommError::BadStopBits);
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(std::get<0>(before), 19200u);
    port.SetBaudRate(9600);
    EXPECT_EQ(port.GetBaudRate(), 9600u);
}
