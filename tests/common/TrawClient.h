#pragma once
// A minimal raw client of a TCP port or pseudo-terminal: the bytes as they are,
// with a 10 s guard on every wait.
#include <string>

class TrawClient {
public:
    static TrawClient connectTcp(const std::string &address, int port);
    static TrawClient openPty(const std::string &path);
    // Takes over a connected descriptor (an accepted socket).
    explicit TrawClient(int fd) : m_fd(fd) {}
    TrawClient(TrawClient &&other) noexcept;
    ~TrawClient();

    void send(const std::string &bytes);
    // Exactly count bytes; fewer when the peer closed or 10 s passed.
    std::string receive(std::size_t count);
    // True when the peer has closed (end of stream) within 10 s.
    bool waitClosed();
    // Bytes already pending, without waiting.
    std::string pending();

private:
    int m_fd;
};
