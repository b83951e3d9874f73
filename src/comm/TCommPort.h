#pragma once
// Serial port over termios. A port is named "COMn"; the number maps to a device as
// TserialPortMap says, with the overrides read from KT930pc.ini.
// Any other name is taken as a device path. Failures throw ECommError.
// The port keeps its own input queue of up to InputQueueSize bytes: a tty holds
// no more than about 4 KB, less than one 4224-byte sync chunk.
#include "ECommError.h"
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class TCommPort {
public:
    TCommPort() = default;
    ~TCommPort();
    TCommPort(const TCommPort &) = delete;
    TCommPort &operator=(const TCommPort &) = delete;

    void SetCommPort(const std::string &name);
    void SetBaudRate(std::uint32_t value);
    void SetByteSize(std::uint8_t value);
    void SetParity(std::uint8_t value);   // 0 none, 1 odd, 2 even
    void SetStopBits(std::uint8_t value); // 0 one, 2 two

    void OpenCommPort();
    void CloseCommPort();
    void WriteBuffer(const std::uint8_t *buffer, std::size_t n);
    // Reads up to n bytes within 1 ms per byte + 250 ms, giving up after a 15 ms
    // gap between bytes. A short read puts a NUL right after the last byte read.
    std::size_t ReadBytes(std::uint8_t *buffer, std::size_t n);
    // Bytes queued: the port's own input queue plus what the driver still holds.
    std::size_t BytesAvailable();
    // Waits up to periodMs for more input from the device; returns at once when
    // the device has something (or the input queue is full).
    void WaitReadable(int periodMs);

    bool GetConnected() const { return m_fd >= 0; }
    const std::string &GetCommPort() const { return m_name; }
    std::uint32_t GetBaudRate() const { return m_baudRate; }
    std::uint8_t GetByteSize() const { return m_byteSize; }
    std::uint8_t GetParity() const { return m_parity; }
    std::uint8_t GetStopBits() const { return m_stopBits; }

    // COMn -> device path overrides, shared by every port of the process.
    static void setPortOverrides(const std::map<int, std::string> &map);
    // The device of COMn (override first, then the fixed mapping); empty when none.
    static std::string devicePath(int n);
    // The device a port name opens: "COMn" through devicePath, anything else as is.
    static std::string resolve(const std::string &name);

    static constexpr int ReadIntervalMs = 15, ReadMultiplierMs = 1, ReadConstantMs = 250;
    static constexpr std::size_t InputQueueSize = 32768;

private:
    // Applies the four settings to the open device; false when the driver refuses.
    bool applySettings();
    template <typename T> void change(T &field, T value, std::uint8_t code);
    // Moves what the device has into the input queue, as far as the queue has room.
    void fillInputQueue();
    // Gives up exclusive use and closes the descriptor.
    static void closeDevice(int fd);

    std::string m_name = "COM1";
    std::uint32_t m_baudRate = 9600;
    std::uint8_t m_byteSize = 8;
    std::uint8_t m_parity = 0;
    std::uint8_t m_stopBits = 0;
    int m_fd = -1;
    std::vector<std::uint8_t> m_inputQueue;
};
