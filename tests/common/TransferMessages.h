#pragma once
// The boxes a transfer worker shows: stop icon, OK, system modal.
#include "MessageSink.h"
#include <string>

inline Message transferBox(const std::string &caption, const std::string &text)
{
    return {caption, text, MsgIcon::Stop, MsgButtons::Ok, MsgModality::System};
}

inline const Message TimeoutError = transferBox("Error", "Timeout Error.\nOperation Canceled.");
inline const Message CommunicationsFailed =
    transferBox("Error", "Could not establish communications with analyzer.\nOperation Canceled.");
inline const Message OperationCancelled = transferBox("Error", "Operation Cancelled.");
