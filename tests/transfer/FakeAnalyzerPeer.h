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

// The images an in-test analyzer answers "GUIN\r", "GASQ\r", "GTSP\r" with, and
// what it was sent by "PUIN\r", "PASQ\r", "PTSP\r". Optional faults for the put side.
struct AnalyzerImages {
    std::string checkitems, autosequences, checklists;
    std::string putCheckitems, putAutosequences, putChecklists;
    std::string commands; // the 5-byte commands in arrival order
    int wrongAckAtBlock = -1; // answer this block of the first put with "*\r"
};
// Serves commands until the client closes.
void runAnalyzer(FakeAnalyzerPeer &peer, AnalyzerImages &images);
