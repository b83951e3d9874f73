#pragma once
// Accepts the links to the PC: one TCP client at a time and one pseudo-terminal,
// and hands their input to a protocol session each.
#include "TsimLink.h"
#include "TsimMemory.h"
#include "TsimOptions.h"
#include "TsimSession.h"
#include <memory>
#include <string>

class TsimServer {
public:
    TsimServer(const TsimOptions &options, TsimMemory &memory);
    ~TsimServer();
    TsimServer(const TsimServer &) = delete;
    TsimServer &operator=(const TsimServer &) = delete;

    // Opens the listening socket and the pseudo-terminal; false (with why) on failure.
    bool start(std::string &why);
    // Serves until SIGINT / SIGTERM.
    void run();

private:
    struct Channel {
        int fd = -1;
        std::unique_ptr<TsimLink> link;
        std::unique_ptr<TsimSession> session;
    };
    bool openPty(std::string &why);
    void closePty();
    void acceptClient();
    void attach(Channel &channel, int fd, const std::string &name);
    void detach(Channel &channel);
    void serve(Channel &channel, bool isPty);

    const TsimOptions &m_options;
    TsimMemory &m_memory;
    TsimSession::Settings m_settings;
    int m_listenFd = -1;
    int m_ptySlaveFd = -1; // held open so the master survives the PC closing its side
    std::string m_ptySlaveName;
    Channel m_client;
    Channel m_pty;
};
