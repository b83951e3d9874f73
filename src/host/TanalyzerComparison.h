#pragma once
// "Compare With KT930...": the settings form, the progress dialog while the
// analyzer's data set is read into memory, then the differences with the data
// set on disk. Nothing on disk changes.
#include <filesystem>

class MessageSink;
class QWidget;
struct TPluginHostInfo;

class TanalyzerComparison {
public:
    // host gives the Ethernet transfer value; messages shows the loaders' and the
    // transfer's boxes. Returns false when the user cancelled or the read failed
    // (the transfer has said why).
    static bool run(const std::filesystem::path &appDir, const TPluginHostInfo &host, MessageSink &messages,
                    QWidget *parent);
};
