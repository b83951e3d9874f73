// The real USB stack (libftdi1, libusb, kt930ctl and the transfer workers) against
// the analyzer's chip emulated under umockdev, with kt930sim behind the chip.
#include "EmulatedFtdiChip.h"
#include "JobRun.h"
#include "ProgramRun.h"
#include "TempDir.h"
#include "TsimProcess.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
namespace fs = std::filesystem;

namespace {
// One open and close: the serial driver gives the chip up for the claim and back; the latency timer is the only
// setting.
const std::vector<std::string> OneSession{"detach ftdi_sio", "claim", "vendor request 09 value 0002 index 0001",
                                          "release", "attach ftdi_sio"};

enum class Attached { Nothing, Analyzer, FallbackNamed, SilentChip }; // the analyzer under its second product name
using enum Attached;
enum class PcData { OpCodesOnly, MitDat, DataSet }; // besides the op code files

class UsbStackTest : public ::testing::Test {
protected:
    // The simulator before the testbed, so that it never sees it; a fresh memory from the demo data set each time.
    void attach(Attached attached, ChipFaults faults = {})
    {
        chip.reset();
        sim.reset();
        fs::remove(temp / "memory.bin");
        const std::string line = (temp / "analyzer-tty").string();
        if (attached == Analyzer || attached == FallbackNamed) {
            sim = std::make_unique<TsimProcess>(std::vector<std::string>{"--pty", line, "--appdir", KT930_TEST_APPDIR,
                                                                         "--memory", (temp / "memory.bin").string()});
            ASSERT_TRUE(sim->waitForLog("ready")) << sim->log();
        }
        chip = std::make_unique<EmulatedFtdiChip>();
        if (attached != Nothing)
            chip->plug(attached == FallbackNamed ? "Brennix Systems Kt930 Final" : "Brennix Systems KT930 Plus",
                       attached == SilentChip ? "/dev/null" : line, faults);
    }
    void givePc(PcData data)
    {
        fs::remove_all(temp / "pc");
        fs::create_directories(temp / "pc/Data");
        for (const auto &entry : fs::directory_iterator(fs::path(KT930_TEST_APPDIR) / "Data"))
            if (entry.path().extension() == ".in" || data == PcData::DataSet ||
                (data == PcData::MitDat && entry.path().filename() == "mit.dat"))
                fs::copy(entry.path(), temp / "pc/Data" / entry.path().filename());
    }
    std::string pcFiles() const { return TempDir::readDataFiles(temp / "pc/Data"); }

    TempDir temp;
    std::unique_ptr<TsimProcess> sim;
    std::unique_ptr<EmulatedFtdiChip> chip;
};
} // namespace

TEST_F(UsbStackTest, Kt930ctlThroughTheChip)
{
    const std::string pc = (temp / "pc/Data").string(), downloaded = "Downloaded the data set into " + pc + "\n";
    const std::string start = "Initializing\nInitiating Handshake\n",
                      syncStart = "Requesting USB Handle\nInitializing USB Connection\n";
    const std::string download = start + "Getting Checkitems\nGetting Autosequences\nGetting Checklists\nCompleted!\n";
    const std::string upload = start + "Putting Checkitems\nPutting Autosequences\nPutting Checklists\nCompleted!\n";
    const std::string syncUnderWay =
        syncStart + "Sending Handshake\nHandshake Valid - Beginning Download\nSending Request for Data\n";
    const std::string notDetected = start +
                                    "Error\nDevice Not Detected.\nPlease check connection.\n\nOperation Canceled.\n"
                                    "Exception\nCould not initialize connection.\nOperation Canceled.\n";
    const std::string tried = "USB device tried: 0403:6001 \"Brennix Systems KT930 Plus\"\n",
                      noDevice = "no USB device of vendor 0403 was found\n";
    const std::string timedOut = start + "Error\nTimeout Error.\nOperation Canceled.\nkt930ctl download: " + tried,
                      unplugged = "Error\nNo Deviced Attached.\nOperation Canceled.\n";
    const std::string uploaded =
        "Uploaded the data set of " + pc + "\nVerified: the analyzer's memory equals what was sent\n";
    const std::string synced = "Saved the analyzer's checkitem database as " + pc + "/mit.dat\n";
    const std::string syncNoDevice = syncStart + "Device Not Detected\nA Safety Analyzer could not be found\n" +
                                     "Please check the connection.\n\nOperation Canceled.\nkt930ctl sync: " + noDevice;
    const std::string held = notDetected + "kt930ctl download: " + tried + "the device is in use by another program " +
                             "(its interface is claimed): close that program and try again\n";
    const std::string syncUnplugged = syncUnderWay + "Invalid Handshake Received.\nA communications error occurred." +
                                      "\n\nOperation Canceled.\nkt930ctl sync: " + tried;
    using enum PcData;
    const struct {
        const char *name;
        Attached attached;
        ChipFaults faults;
        std::vector<std::string> command;
        PcData before, after;
        int exitCode;
        std::string out, err;
    } cases[] = {
        // clang-format off
        {"download", Analyzer, {}, {"download"}, OpCodesOnly, DataSet, 0, downloaded, download},
        {"fallback name", FallbackNamed, {}, {"download"}, OpCodesOnly, DataSet, 0, downloaded, download},
        // The chip goes quiet for 300 ms with a transfer half filled.
        {"stall", Analyzer, {10000, 300}, {"download"}, OpCodesOnly, DataSet, 0, downloaded, download},
        {"upload", Analyzer, {}, {"upload", "--verify"}, DataSet, DataSet, 0, uploaded, upload + download},
        {"sync", Analyzer, {}, {"sync"}, OpCodesOnly, MitDat, 0, synced, syncUnderWay + "Transfer Complete\n"},
        {"no device", Nothing, {}, {"download"}, OpCodesOnly, OpCodesOnly, 1, "",
         notDetected + "kt930ctl download: " + noDevice},
        {"no device, sync", Nothing, {}, {"sync"}, OpCodesOnly, OpCodesOnly, 1, "", syncNoDevice},
        {"held by another program", Analyzer, {.claimedElsewhere = true}, {"download"}, DataSet, DataSet, 1, "", held},
        {"unplugged in a download", Analyzer, {.unplugAfterIn = 50000}, {"download"}, DataSet, DataSet, 1, "",
         start + "Getting Checkitems\nGetting Autosequences\n" + unplugged + "kt930ctl download: " + tried},
        {"unplugged in an upload", Analyzer, {.unplugAfterOut = 50000}, {"upload"}, DataSet, DataSet, 1, "",
         start + "Putting Checkitems\nPutting Autosequences\n" + unplugged + "kt930ctl upload: " + tried},
        {"unplugged in a sync", Analyzer, {.unplugAfterIn = 20000}, {"sync"}, DataSet, DataSet, 1, "", syncUnplugged},
        // Attached, but nothing answers (only status packets, or not even those): the handshake's 2 s, not many
        // times it.
        {"silent chip", SilentChip, {}, {"download"}, DataSet, DataSet, 1, "", timedOut},
        {"stalled chip", SilentChip, {0, 60000}, {"download"}, DataSet, DataSet, 1, "", timedOut},
        // clang-format on
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        givePc(c.after);
        const std::string expectedFiles = pcFiles();
        givePc(c.before);
        attach(c.attached, c.faults);
        std::vector<std::string> arguments = c.command;
        arguments.insert(arguments.end(), {"--usb", "--appdir", (temp / "pc").string()});
        const auto began = std::chrono::steady_clock::now();
        const ProgramRun run = ProgramRun::run("kt930ctl", arguments, temp.path());
        if (c.exitCode == 1) {
            EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(4));
        }
        EXPECT_EQ(std::tuple(run.exitCode, run.out, run.err), std::tuple(c.exitCode, c.out, c.err));
        EXPECT_TRUE(pcFiles() == expectedFiles);
        if (c.exitCode == 1)
            continue;
        std::vector<std::string> sessions = OneSession;
        if (c.command.back() == "--verify") // and the read-back
            sessions.insert(sessions.end(), OneSession.begin(), OneSession.end());
        EXPECT_EQ(chip->events(), sessions);
    }
}

// The worker in this process, the user cancelling from another thread while the
// chip has stopped sending in the middle of a download.
TEST_F(UsbStackTest, CancelReleasesTheChipWithinAPoll)
{
    attach(Attached::Analyzer, {.stallAfterIn = 1000, .stallMs = 60000});
    JobRun run;
    std::chrono::steady_clock::time_point cancelled;
    run.progress.hookAtStage = "Getting Checkitems";
    std::thread user;
    run.progress.hook = [&] {
        user = std::thread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            cancelled = std::chrono::steady_clock::now();
            run.progress.setCancelled();
        });
    };
    EXPECT_EQ(run.run({.kind = TtransferJob::Kind::Download, .method = TcommMethod::USB}),
              TtransferJob::Outcome::Failed);
    user.join();
    EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
    // The flag is seen after the USB call under way, which lasts one poll at most.
    EXPECT_LT(chip->lastRelease() - cancelled, std::chrono::milliseconds(100));
    EXPECT_EQ(chip->events(), OneSession);
}
