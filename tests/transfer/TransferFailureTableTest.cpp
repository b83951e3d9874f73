#include "RecordingMessageSink.h"
#include "TransferMessages.h"
#include "TtransferSession.h"
#include <gtest/gtest.h>
#include <stdexcept>

// A serial port failure carries a message, so it is a general exception here.
TEST(TransferFailureTable, EveryRowHasItsCaptionAndTextOthersTheCommandsUnknownText)
{
    const std::string get = "Unknown Exception on Get Data Command", put = "Unknown Exception on Put Data Command",
                      init = "Could not initialize connection.\nOperation Canceled.",
                      config = "Invalid communications configuration.\nOperation Canceled.";
    const std::tuple<std::exception_ptr, std::string, Message> rows[] = {
        {std::make_exception_ptr(TcommTimeoutException()), get, TimeoutError},
        {std::make_exception_ptr(TnoDeviceAttachedException()), get,
         transferBox("Error", "No Deviced Attached.\nOperation Canceled.")},
        {std::make_exception_ptr(TinitializationException()), get, transferBox("Error", init)},
        {std::make_exception_ptr(TbadInitializationException()), get, transferBox("Bad Initialization", init)},
        {std::make_exception_ptr(TuninitializedCommModeException()), get, transferBox("Uninitialized", init)},
        {std::make_exception_ptr(TinvalidCommModuleException()), get, transferBox("Error", config)},
        {std::make_exception_ptr(TinvalidDataLengthException()), get, transferBox("Bad Data Length", config)},
        {std::make_exception_ptr(ToperationCancelledException()), get, OperationCancelled},
        {std::make_exception_ptr(std::runtime_error("boom")), put, transferBox("VCL Exception", put)},
        {std::make_exception_ptr(ECommError(ECommError::ReadError, 5)), get, transferBox("VCL Exception", get)},
        {std::make_exception_ptr(42), "Unknown Exception on Handshake",
         transferBox("Error", "Unknown Exception on Handshake")},
    };
    for (const auto &[exception, unknownText, expected] : rows) {
        RecordingMessageSink sink;
        try {
            std::rethrow_exception(exception);
        } catch (...) {
            TtransferSession::reportFailure(sink, unknownText);
        }
        EXPECT_EQ(sink.messages, std::vector<Message>{expected});
    }
}
