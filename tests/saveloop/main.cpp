// Saves the full data set into APPDIR/Data over and over, alternating two variants,
// until it is killed (with --once: one save, then exit). Prints "ready" before the
// first save; exits 1 after a failed save.
#include "FullDataSet.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::cerr << "Usage: kt930saveloop APPDIR [--once]\n";
        return 2;
    }
    const bool once = argc > 2 && std::string(argv[2]) == "--once";
    RecordingMessageSink sink;
    TdataSet set(argv[1], sink);
    std::cout << "ready" << std::endl;
    for (int i = 0;; ++i) {
        FullDataSet::fill(set, i % 2);
        set.backup();
        if (!sink.messages.empty()) {
            std::cerr << sink.messages.front().caption << ": " << sink.messages.front().text << "\n";
            return 1;
        }
        if (once)
            return 0;
    }
}
