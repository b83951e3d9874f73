#pragma once
// The real kt930sim started for a test, with its stderr log read back, and a
// minimal raw client for its TCP port or pseudo-terminal.
#include <string>
#include <vector>

class TsimProcess {
public:
    explicit TsimProcess(const std::vector<std::string> &arguments);
    ~TsimProcess();
    TsimProcess(const TsimProcess &) = delete;
    TsimProcess &operator=(const TsimProcess &) = delete;

    // Reads the log until a line contains text; false if the process ended or 10 s passed.
    bool waitForLog(const std::string &text);
    // SIGTERM and wait; returns the exit status (or -1 when killed by a signal).
    int stop();
    // Waits for a process that ends on its own; returns its exit status.
    int waitExit();
    const std::string &log() const { return m_log; }

private:
    int m_pid = -1;
    int m_stderr = -1;
    std::string m_log;
    std::size_t m_searched = 0;
};

class TrawClient {
public:
    static TrawClient connectTcp(const std::string &address, int port);
    static TrawClient openPty(const std::string &path);
    TrawClient(TrawClient &&other) noexcept;
    ~TrawClient();

    bool isOpen() const { return m_fd >= 0; }
    void send(const std::string &bytes);
    // Exactly count bytes; fewer when the peer closed or 10 s passed.
    std::string receive(std::size_t count);
    // True when the peer has closed (end of stream) within 10 s.
    bool waitClosed();
    // Bytes already pending, without waiting.
    std::string pending();

private:
    explicit TrawClient(int fd) : m_fd(fd) {}
    int m_fd;
};
