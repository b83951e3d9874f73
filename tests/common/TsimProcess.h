#pragma once
// The real kt930sim started for a test, with its stderr log read back.
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
