#pragma once
// Message boxes for the GUI: a QMessageBox without parent, application modal.
// Workers may call show() from their own thread; the box is then shown on the
// GUI thread and the worker waits for the answer.
#include "MessageSink.h"

class TguiMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &message) override;

    // The sink the frame and its dialogs use unless one is injected: the GUI
    // sink, or whatever was installed (tests install a recorder).
    static MessageSink &defaultSink();
    static void setDefaultSink(MessageSink *sink); // nullptr restores the GUI sink

private:
    static MsgAnswer showHere(const Message &message);
};
