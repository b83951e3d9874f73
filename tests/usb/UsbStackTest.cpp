// The real USB stack (libftdi1, libusb, kt930ctl and the transfer workers) against
// the analyzer's chip emulated under umockdev, with kt930sim behind the chip.
#include "EmulatedFtdiChip.h"
#include "ProgramRun.h"
#include "PtyPair.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TempDir.h"
#include "TransferWorkers.h"
#include "TsimProcess.h"
#include "../transfer/TransferFixtures.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <libusb.h>
#include <memory>
#include <thread>
#include <QDeadlineTimer>
namespace fs = std::filesystem;

namespace {
constexpr const char *Plus = "Brennix Systems KT930 Plus";
constexpr const char *Final = "Brennix Systems Kt930 Final";
const std::vector<std::string> DataFiles {"mit.dat",         "inspection.asq",  "usertester1.asq", "usertester2.asq",
                                          "usertester3.asq", "usertester4.asq", "usertester5.asq", "testProc.asq"};
const std::string DownloadStages = "Initializing\nInitiating Handshake\nGetting Checkitems\nGetting Autosequences\n"
                                   "Getting Checklists\nCompleted!\n";
// One open and close of the chip: the serial driver is detached for the claim and
// attached again on release; the latency timer is the only setting made.
const std::vector<std::string> OneSession {"detach ftdi_sio", "claim", "vendor request 09 value 0002 index 0001",
                                           "release", "attach ftdi_sio"};

// Another program that has opened the analyzer and claimed its interface.
struct AnotherProgramsHandle {
    AnotherProgramsHandle()
    {
        libusb_init(&context);
        handle = libusb_open_device_with_vid_pid(context, 0x0403, 0x6001);
        if (handle)
            libusb_set_auto_detach_kernel_driver(handle, 1);
        EXPECT_EQ(handle ? libusb_claim_interface(handle, 0) : -1, 0);
    }
    ~AnotherProgramsHandle()
    {
        if (handle) {
            libusb_release_interface(handle, 0);
            libusb_close(handle);
        }
        libusb_exit(context);
    }
    libusb_context *context = nullptr;
    libusb_device_handle *handle = nullptr;
};

class UsbStackTest : public ::testing::Test {
protected:
    UsbStackTest()
    {
        fs::create_directories(temp / "pc/Data");
        for (const auto &entry : fs::directory_iterator(demoData()))
            if (entry.path().extension() == ".in")
                fs::copy(entry.path(), temp / "pc/Data" / entry.path().filename());
    }

    static fs::path demoData() { return fs::path(KT930_TEST_APPDIR) / "Data"; }

    // The simulator first, so that it never sees the testbed, then the chip in front of it.
    void plugAnalyzer(const std::string &product, EmulatedFtdiChip::Faults faults = {},
                      std::vector<std::string> simulatorOptions = {})
    {
        chip.reset();
        sim.reset();
        fs::remove(temp / "memory.bin"); // the simulator starts from the demo data set
        const std::string line = (temp / "analyzer-tty").string();
        simulatorOptions.insert(simulatorOptions.end(), {"--pty", line, "--appdir", KT930_TEST_APPDIR, "--memory",
                                                         (temp / "memory.bin").string()});
        sim = std::make_unique<TsimProcess>(simulatorOptions);
        ASSERT_TRUE(sim->waitForLog("ready")) << sim->log();
        chip = std::make_unique<EmulatedFtdiChip>();
        chip->plug(product, line, faults);
    }

    enum class Attached { Nothing, Analyzer, SilentChip, Held };
    void attach(Attached attached, ChipFaults faults)
    {
        if (attached == Attached::Analyzer || attached == Attached::Held) {
            plugAnalyzer(Plus, faults);
            return;
        }
        chip.reset();
        sim.reset();
        chip = std::make_unique<EmulatedFtdiChip>();
        if (attached == Attached::SilentChip)
            chip->plug(Plus, "/dev/null");
    }

    void givePcTheDemoDataSet()
    {
        for (const std::string &name : DataFiles)
            fs::copy(demoData() / name, temp / "pc/Data" / name, fs::copy_options::overwrite_existing);
    }

    ProgramRun ctl(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.end(), {"--usb", "--appdir", (temp / "pc").string()});
        return ProgramRun::run("kt930ctl", std::move(arguments), temp.path());
    }

    std::string pcFiles() const
    {
        std::string all;
        for (const std::string &name : DataFiles)
            all += name + (fs::exists(temp / "pc/Data" / name) ? ": " + TempDir::read(temp / "pc/Data" / name) : "-");
        return all;
    }

    std::string demoFiles() const
    {
        std::string all;
        for (const std::string &name : DataFiles)
            all += name + ": " + TempDir::read(demoData() / name);
        return all;
    }

    TempDir temp;
    std::unique_ptr<TsimProcess> sim;
    std::unique_ptr<EmulatedFtdiChip> chip;
};
}

TEST_F(UsbStackTest, DownloadsThroughEitherProductNameAndAStallLosesNoByte)
{
    const struct {
        const char *product;
        EmulatedFtdiChip::Faults faults;
    } cases[] = {
        {Plus, {}},
        {Final, {}},
        // The chip goes quiet for 300 ms with a transfer half filled.
        {Plus, {10000, 300}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.product) + (c.faults.stallMs ? ", stall" : ""));
        fs::remove_all(temp / "pc/Data/mit.dat");
        plugAnalyzer(c.product, c.faults);
        const ProgramRun run = ctl({"download"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.err, DownloadStages);
        EXPECT_TRUE(pcFiles() == demoFiles());
        EXPECT_EQ(chip->events(), OneSession);
    }
}

TEST_F(UsbStackTest, UploadVerifiesAndSyncSavesTheAnalyzersDatabase)
{
    givePcTheDemoDataSet();
    const struct {
        std::vector<std::string> command, simulatorOptions;
        int exitCode;
        std::string out, errEnd;
    } cases[] = {
        {{"upload", "--verify"}, {}, 0,
         "Uploaded the data set of " + (temp / "pc/Data").string()
             + "\nVerified: the analyzer's memory equals what was sent\n",
         "Completed!\n"},
        {{"upload", "--verify"}, {"--fault", "wrong-store=3"}, 3,
         "Uploaded the data set of " + (temp / "pc/Data").string() + "\n",
         "kt930ctl upload --verify: the analyzer holds something else than was sent, first at checkitem 19 (byte 792 "
         "of the checkitem area)\n"},
        {{"sync"}, {}, 0, "Saved the analyzer's checkitem database as " + (temp / "pc/Data/mit.dat").string() + "\n",
         "Transfer Complete\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.command.front() + (c.simulatorOptions.empty() ? "" : " " + c.simulatorOptions.back()));
        plugAnalyzer(Plus, {}, c.simulatorOptions);
        const ProgramRun run = ctl(c.command);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        EXPECT_EQ(run.out, c.out);
        EXPECT_TRUE(run.err.ends_with(c.errEnd)) << run.err;
        EXPECT_TRUE(pcFiles() == demoFiles());
    }
}

TEST_F(UsbStackTest, FailuresSayWhatHappenedAndChangeNoFile)
{
    givePcTheDemoDataSet();
    const std::string tried = "USB device tried: 0403:6001 \"Brennix Systems KT930 Plus\"\n";
    const std::string noDevice = "no USB device of vendor 0403 was found\n";
    const struct {
        const char *name;
        Attached attached;
        ChipFaults faults;
        std::string command, err;
    } cases[] = {
        {"no device", Attached::Nothing, {}, "download",
         "Initializing\nInitiating Handshake\nError\nDevice Not Detected.\nPlease check connection.\n\nOperation "
         "Canceled.\nException\nCould not initialize connection.\nOperation Canceled.\nkt930ctl download: " + noDevice},
        {"no device, sync", Attached::Nothing, {}, "sync",
         "Requesting USB Handle\nInitializing USB Connection\nDevice Not Detected\nA Safety Analyzer could not be "
         "found\nPlease check the connection.\n\nOperation Canceled.\nkt930ctl sync: " + noDevice},
        {"held by another program", Attached::Held, {}, "download",
         "Initializing\nInitiating Handshake\nError\nDevice Not Detected.\nPlease check connection.\n\nOperation "
         "Canceled.\nException\nCould not initialize connection.\nOperation Canceled.\nkt930ctl download: " + tried},
        {"unplugged in a download", Attached::Analyzer, {.unplugAfterIn = 50000}, "download",
         "Initializing\nInitiating Handshake\nGetting Checkitems\nGetting Autosequences\nError\nNo Deviced "
         "Attached.\nOperation Canceled.\nkt930ctl download: " + tried},
        {"unplugged in an upload", Attached::Analyzer, {.unplugAfterOut = 50000}, "upload",
         "Initializing\nInitiating Handshake\nPutting Checkitems\nPutting Autosequences\nError\nNo Deviced "
         "Attached.\nOperation Canceled.\nkt930ctl upload: " + tried},
        {"unplugged in a sync", Attached::Analyzer, {.unplugAfterIn = 20000}, "sync",
         "Requesting USB Handle\nInitializing USB Connection\nSending Handshake\nHandshake Valid - Beginning "
         "Download\nSending Request for Data\nInvalid Handshake Received.\nA communications error occurred.\n\n"
         "Operation Canceled.\nkt930ctl sync: " + tried},
        // Attached but nothing answers: the handshake's time-out, not many times it.
        {"silent chip", Attached::SilentChip, {}, "download",
         "Initializing\nInitiating Handshake\nError\nTimeout Error.\nOperation Canceled.\nkt930ctl download: " + tried},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        attach(c.attached, c.faults);
        std::unique_ptr<AnotherProgramsHandle> holder;
        if (c.attached == Attached::Held)
            holder = std::make_unique<AnotherProgramsHandle>();
        const std::string before = pcFiles();
        const auto start = std::chrono::steady_clock::now();
        const ProgramRun run = ctl({c.command});
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, c.err);
        EXPECT_TRUE(pcFiles() == before);
    }
}

// The worker in this process, the user cancelling from another thread during a
// download on a line paced at 9600 baud.
TEST_F(UsbStackTest, CancelReleasesTheChipWithinAPoll)
{
    plugAnalyzer(Plus, {}, {"--baud", "9600"});
    DataSet set;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
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
    auto record = std::make_unique<TdownloadCommStruct>(&set.checkitems, &set.checklists, &set.testers,
                                                        &set.inspections);
    record->data.selection = SelectAll;
    record->settings().method = std::uint8_t(TcommMethod::USB);
    int context = 0;
    TdownloadThread worker(&context, &progress, &messages, record.get());
    worker.start();
    ASSERT_TRUE(worker.wait(QDeadlineTimer(20000)));
    user.join();
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
    // The flag is seen after the USB call under way, which lasts one poll at most.
    EXPECT_LT(chip->lastRelease() - cancelled, std::chrono::milliseconds(100));
    EXPECT_EQ(chip->events(), OneSession);
}
