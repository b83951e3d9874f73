#include "RecordingMessageSink.h"
#include "TransferMessages.h"
#include "TtransferSession.h"
#include <gtest/gtest.h>
#include <stdexcept>

namespace {
template <typename E> Message reported(E exception, const std::string &unknownText)
{
    RecordingMessageSink sink;
    try {
        throw exception;
    } catch (...) {
        TtransferSession::reportFailure(sink, unknownText);
    }
    EXPECT_EQ(sink.messages.size(), 1u);
    return sink.messages.at(0);
}

const char Get[] = "Unknown Exception on Get Data Command";
const char InitText[] = "Could not initialize connection.\nOperation Canceled.";
const char ConfigText[] = "Invalid communications configuration.\nOperation Canceled.";
}

TEST(TransferFailureTable, EveryRowHasItsCaptionAndText)
{
    EXPECT_EQ(reported(TcommTimeoutException(), Get), TimeoutError);
    EXPECT_EQ(reported(TnoDeviceAttachedException(), Get), transferBox("Error", "No Deviced Attached.\nOperation Canceled."));
    EXPECT_EQ(reported(TinitializationException(), Get), transferBox("Error", InitText));
    EXPECT_EQ(reported(TbadInitializationException(), Get), transferBox("Bad Initialization", InitText));
    EXPECT_EQ(reported(TuninitializedCommModeException(), Get), transferBox("Uninitialized", InitText));
    EXPECT_EQ(reported(TinvalidCommModuleException(), Get), transferBox("Error", ConfigText));
    EXPECT_EQ(reported(TinvalidDataLengthException(), Get), transferBox("Bad Data Length", ConfigText));
    EXPECT_EQ(reported(ToperationCancelledException(), Get), OperationCancelled);
}

TEST(TransferFailureTable, OtherExceptionsGetTheCommandsUnknownText)
{
    EXPECT_EQ(reported(std::runtime_error("boom"), "Unknown Exception on Put Data Command"),
              transferBox("VCL Exception", "Unknown Exception on Put Data Command"));
    // A serial port failure carries a message, so it is a general exception here.
    EXPECT_EQ(reported(ECommError(ECommError::ReadError, 5), Get), transferBox("VCL Exception", Get));
    EXPECT_EQ(reported(42, "Unknown Exception on Handshake Command"),
              transferBox("Error", "Unknown Exception on Handshake Command"));
}
