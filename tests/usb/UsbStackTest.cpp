// The real USB stack (libftdi1, libusb, kt930ctl and the transfer workers) against
// the analyzer's chip emulated under umockdev, with kt930sim behind the chip.
#include "EmulatedFtdiChip.h"
#include "ProgramRun.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TempDir.h"
#include "JobRun.h"
#include "TsimProcess.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
namespace fs = std::filesystem;

namespace {
constexpr const char *Plus = "Brennix Systems KT930 Plus";
const std::vector<std::string> DataFiles {"mit.dat",         "inspection.asq",  "usertester1.asq", "usertester2.asq",
                                          "usertester3.asq", "usertester4.asq", "usertester5.asq", "testProc.asq"};
// One open and close: the serial driver gives the chip up for the claim and gets it
// back on release; the latency timer is the only setting made.
const std::vector<std::string> OneSession {"detach ftdi_sio", "claim", "vendor request 09 value 0002 index 0001",
                                           "release", "attach ftdi_sio"};

enum class Attached { Nothing, Analyzer, SilentChip };
enum class PcData { OpCodesOnly, MitDat, DataSet }; // besides the op code files

class UsbStackTest : public ::testing::Test {
protected:
    static fs::path demoData() { return fs::path(KT930_TEST_APPDIR) / "Data"; }

    // The simulator before the testbed, so that it never sees it; a fresh memory
    // from the demo data set each time.
    void attach(Attached attached, const std::string &product, ChipFaults faults = {},
                std::vector<std::string> simulator = {})
    {
        chip.reset();
        sim.reset();
        fs::remove(temp / "memory.bin");
        const std::string line = (temp / "analyzer-tty").string();
        if (attached == Attached::Analyzer) {
            simulator.insert(simulator.end(), {"--pty", line, "--appdir", KT930_TEST_APPDIR, "--memory",
                                               (temp / "memory.bin").string()});
            sim = std::make_unique<TsimProcess>(simulator);
            ASSERT_TRUE(sim->waitForLog("ready")) << sim->log();
        }
        chip = std::make_unique<EmulatedFtdiChip>();
        if (attached != Attached::Nothing)
            chip->plug(product, attached == Attached::SilentChip ? "/dev/null" : line, faults);
    }

    void givePc(PcData data)
    {
        fs::remove_all(temp / "pc");
        fs::create_directories(temp / "pc/Data");
        for (const auto &entry : fs::directory_iterator(demoData()))
            if (entry.path().extension() == ".in" || data == PcData::DataSet
                || (data == PcData::MitDat && entry.path().filename() == "mit.dat"))
                fs::copy(entry.path(), temp / "pc/Data" / entry.path().filename());
    }

    std::string pcFiles() const
    {
        std::string all;
        for (const std::string &name : DataFiles)
            all += name + (fs::exists(temp / "pc/Data" / name) ? ": " + TempDir::read(temp / "pc/Data" / name) : "-");
        return all;
    }

    TempDir temp;
    std::unique_ptr<TsimProcess> sim;
    std::unique_ptr<EmulatedFtdiChip> chip;
};
}

TEST_F(UsbStackTest, Kt930ctlThroughTheChip)
{
    const std::string pc = (temp / "pc/Data").string();
    const std::string download = "Initializing\nInitiating Handshake\nGetting Checkitems\nGetting Autosequences\n"
                                 "Getting Checklists\nCompleted!\n";
    const std::string upload = "Initializing\nInitiating Handshake\nPutting Checkitems\nPutting Autosequences\n"
                               "Putting Checklists\nCompleted!\n";
    const std::string syncStart = "Requesting USB Handle\nInitializing USB Connection\n";
    const std::string syncUnderWay = syncStart + "Sending Handshake\nHandshake Valid - Beginning Download\n"
                                                 "Sending Request for Data\n";
    const std::string notDetected = "Initializing\nInitiating Handshake\nError\nDevice Not Detected.\nPlease check "
                                    "connection.\n\nOperation Canceled.\nException\nCould not initialize "
                                    "connection.\nOperation Canceled.\n";
    const std::string tried = "USB device tried: 0403:6001 \"Brennix Systems KT930 Plus\"\n";
    const std::string noDevice = "no USB device of vendor 0403 was found\n";
    const std::string unplugged = "Error\nNo Deviced Attached.\nOperation Canceled.\n";
    const struct {
        const char *name;
        Attached attached;
        const char *product;
        ChipFaults faults;
        std::vector<std::string> simulator, command;
        PcData before, after;
        int exitCode;
        std::string out, err;
    } cases[] = {
        {"download", Attached::Analyzer, Plus, {}, {}, {"download"}, PcData::OpCodesOnly, PcData::DataSet, 0,
         "Downloaded the data set into " + pc + "\n", download},
        {"fallback name", Attached::Analyzer, "Brennix Systems Kt930 Final", {}, {}, {"download"}, PcData::OpCodesOnly,
         PcData::DataSet, 0, "Downloaded the data set into " + pc + "\n", download},
        // The chip goes quiet for 300 ms with a transfer half filled.
        {"stall", Attached::Analyzer, Plus, {10000, 300}, {}, {"download"}, PcData::OpCodesOnly, PcData::DataSet, 0,
         "Downloaded the data set into " + pc + "\n", download},
        {"upload", Attached::Analyzer, Plus, {}, {}, {"upload", "--verify"}, PcData::DataSet, PcData::DataSet, 0,
         "Uploaded the data set of " + pc + "\nVerified: the analyzer's memory equals what was sent\n",
         upload + download},
        {"stored wrong", Attached::Analyzer, Plus, {}, {"--fault", "wrong-store=3"}, {"upload", "--verify"},
         PcData::DataSet, PcData::DataSet, 3, "Uploaded the data set of " + pc + "\n",
         upload + download + "kt930ctl upload --verify: the analyzer holds something else than was sent, first at "
                             "checkitem 19 (byte 792 of the checkitem area)\n"},
        {"sync", Attached::Analyzer, Plus, {}, {}, {"sync"}, PcData::OpCodesOnly, PcData::MitDat, 0,
         "Saved the analyzer's checkitem database as " + pc + "/mit.dat\n", syncUnderWay + "Transfer Complete\n"},
        {"no device", Attached::Nothing, Plus, {}, {}, {"download"}, PcData::OpCodesOnly, PcData::OpCodesOnly, 1, "",
         notDetected + "kt930ctl download: " + noDevice},
        {"no device, sync", Attached::Nothing, Plus, {}, {}, {"sync"}, PcData::OpCodesOnly, PcData::OpCodesOnly, 1, "",
         syncStart + "Device Not Detected\nA Safety Analyzer could not be found\nPlease check the connection.\n\n"
                     "Operation Canceled.\nkt930ctl sync: " + noDevice},
        {"held by another program", Attached::Analyzer, Plus, {.claimedElsewhere = true}, {}, {"download"}, PcData::DataSet,
         PcData::DataSet, 1, "", notDetected + "kt930ctl download: " + tried
             + "the device is in use by another program (its interface is claimed): close that program and try "
               "again\n"},
        {"unplugged in a download", Attached::Analyzer, Plus, {.unplugAfterIn = 50000}, {}, {"download"},
         PcData::DataSet, PcData::DataSet, 1, "",
         "Initializing\nInitiating Handshake\nGetting Checkitems\nGetting Autosequences\n" + unplugged
             + "kt930ctl download: " + tried},
        {"unplugged in an upload", Attached::Analyzer, Plus, {.unplugAfterOut = 50000}, {}, {"upload"},
         PcData::DataSet, PcData::DataSet, 1, "",
         "Initializing\nInitiating Handshake\nPutting Checkitems\nPutting Autosequences\n" + unplugged
             + "kt930ctl upload: " + tried},
        {"unplugged in a sync", Attached::Analyzer, Plus, {.unplugAfterIn = 20000}, {}, {"sync"}, PcData::DataSet,
         PcData::DataSet, 1, "",
         syncUnderWay + "Invalid Handshake Received.\nA communications error occurred.\n\nOperation Canceled.\n"
                        "kt930ctl sync: " + tried},
        // Attached, but nothing answers (only status packets, or not even those): the
        // handshake's time-out of 2 s, not many times it.
        {"silent chip", Attached::SilentChip, Plus, {}, {}, {"download"}, PcData::DataSet, PcData::DataSet, 1, "",
         "Initializing\nInitiating Handshake\nError\nTimeout Error.\nOperation Canceled.\nkt930ctl download: "
             + tried},
        {"stalled chip", Attached::SilentChip, Plus, {0, 60000}, {}, {"download"}, PcData::DataSet, PcData::DataSet,
         1, "", "Initializing\nInitiating Handshake\nError\nTimeout Error.\nOperation Canceled.\nkt930ctl download: "
             + tried},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        givePc(c.after);
        const std::string expectedFiles = pcFiles();
        givePc(c.before);
        attach(c.attached, c.product, c.faults, c.simulator);
        std::vector<std::string> arguments = c.command;
        arguments.insert(arguments.end(), {"--usb", "--appdir", (temp / "pc").string()});
        const auto start = std::chrono::steady_clock::now();
        const ProgramRun run = ProgramRun::run("kt930ctl", arguments, temp.path());
        if (c.exitCode == 1)
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.err, c.err);
        EXPECT_TRUE(pcFiles() == expectedFiles);
        if (c.exitCode == 1)
            continue;
        std::vector<std::string> sessions = OneSession;
        if (std::count(c.command.begin(), c.command.end(), "--verify")) // and the read-back
            sessions.insert(sessions.end(), OneSession.begin(), OneSession.end());
        EXPECT_EQ(chip->events(), sessions);
    }
}

// The worker in this process, the user cancelling from another thread while the
// chip has stopped sending in the middle of a download.
TEST_F(UsbStackTest, CancelReleasesTheChipWithinAPoll)
{
    attach(Attached::Analyzer, Plus, {.stallAfterIn = 1000, .stallMs = 60000});
    JobRun run;
    RecordingProgressSink &progress = run.progress;
    std::chrono::steady_clock::time_point cancelled;
    progress.hookAtStage = "Getting Checkitems";
    std::thread user;
    progress.hook = [&] {
        user = std::thread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            cancelled = std::chrono::steady_clock::now();
            progress.setCancelled();
        });
    };
    EXPECT_EQ(run.run({.kind = TtransferJob::Kind::Download, .method = TcommMethod::USB}), TtransferJob::Outcome::Failed);
    user.join();
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
    // The flag is seen after the USB call under way, which lasts one poll at most.
    EXPECT_LT(chip->lastRelease() - cancelled, std::chrono::milliseconds(100));
    EXPECT_EQ(chip->events(), OneSession);
}
