#pragma once
// Everything the user is told goes through a message sink: the GUI shows a
// QMessageBox, the CLI prints, tests record. Texts are passed exactly as the
// system words them (with their \r and \n); only a renderer may reformat.
#include <string>

enum class MsgIcon { Stop, Exclamation, Question, Information };
enum class MsgButtons { Ok, YesNo };
enum class MsgModality { Task, System };
enum class MsgAnswer { Ok, Yes, No };

struct Message {
    std::string caption;
    std::string text;
    MsgIcon icon = MsgIcon::Stop;
    MsgButtons buttons = MsgButtons::Ok;
    MsgModality modality = MsgModality::Task;
};

class MessageSink {
public:
    virtual ~MessageSink() = default;
    // Blocks until the user answered; returns the pressed button.
    virtual MsgAnswer show(const Message &message) = 0;

    // Shorthands for the common boxes.
    void error(const std::string &caption, const std::string &text,
               MsgModality modality = MsgModality::Task) {
        show({caption, text, MsgIcon::Stop, MsgButtons::Ok, modality});
    }
    void warning(const std::string &caption, const std::string &text) {
        show({caption, text, MsgIcon::Exclamation, MsgButtons::Ok, MsgModality::Task});
    }
    bool confirm(const std::string &caption, const std::string &text) {
        return show({caption, text, MsgIcon::Question, MsgButtons::YesNo, MsgModality::Task}) != MsgAnswer::No;
    }
};
