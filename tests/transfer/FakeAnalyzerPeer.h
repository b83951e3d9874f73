#pragma once
// The analyzer's side of a TCP link, played by a test script on its own thread.
// Listens on ip:60601 at construction; the script runs once a client connects.
// After the script the peer waits for the client to close before it closes.
#include "TrawClient.h"
#include <functional>
#include <memory>
#include <string>
#include <thread>

class FakeAnalyzerPeer {
public:
    using Script = std::function<void(FakeAnalyzerPeer &)>;
    FakeAnalyzerPeer(const std::string &ip, Script script);
    ~FakeAnalyzerPeer();

    // Reads exactly n bytes (fewer when the client closes or 10 s pass).
    std::string read(std::size_t n);
    void send(const std::string &bytes);
    // Everything the client sent, in order; complete after join().
    std::string received;
    void join();

private:
    void serve(Script script);
    int m_listener = -1;
    std::unique_ptr<TrawClient> m_connection;
    std::thread m_thread;
};
