#pragma once
// "Return To Main Window" of the plug-in frames: save, then hide the frame and show
// the host's view with the host's container frozen meanwhile. The host's view comes
// back even when the save fails.
#include <functional>

class MessageSink;
class QWidget;
struct TPluginHostInfo;

class TreturnToHost {
public:
    static void run(QWidget *frame, const TPluginHostInfo *host, MessageSink &sink, const std::function<void()> &save);
};
