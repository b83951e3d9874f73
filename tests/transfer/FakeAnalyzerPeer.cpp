#include "FakeAnalyzerPeer.h"
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

FakeAnalyzerPeer::FakeAnalyzerPeer(const std::string &ip, Script script)
{
    m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    int yes = 1;
    setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(60601);
    inet_pton(AF_INET, ip.c_str(), &address.sin_addr);
    if (::bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0
        || ::listen(m_listener, 1) != 0)
        throw std::runtime_error("cannot listen on " + ip);
    m_thread = std::thread([this, script] { serve(script); });
}

FakeAnalyzerPeer::~FakeAnalyzerPeer()
{
    join();
    ::close(m_listener);
}

void FakeAnalyzerPeer::join()
{
    if (m_thread.joinable())
        m_thread.join();
}

void FakeAnalyzerPeer::serve(Script script)
{
    pollfd p {m_listener, POLLIN, 0};
    if (::poll(&p, 1, 10000) <= 0)
        return;
    int connection = ::accept(m_listener, nullptr, nullptr);
    if (connection < 0)
        return;
    m_connection = std::make_unique<TrawClient>(connection);
    script(*this);
    while (!read(4096).empty()) {
    }
    m_connection.reset();
}

std::string FakeAnalyzerPeer::read(std::size_t n)
{
    std::string out = m_connection->receive(n);
    received += out;
    return out;
}

void FakeAnalyzerPeer::send(const std::string &bytes)
{
    m_connection->send(bytes);
}
