#pragma once
// SIGINT / SIGTERM turned into a readable pipe, so every wait of the simulator
// (poll on a socket, pacing pause, block time-out) also wakes up to stop.
class TstopSignal {
public:
    static void install();
    static int fd();          // read end, readable once a stop was asked for
    static bool requested();
};
