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
        const std::string line = (temp / "analyzer-tty").string();
        simulatorOptions.insert(simulatorOptions.end(), {"--pty", line, "--appdir", KT930_TEST_APPDIR, "--memory",
                                                         (temp / "memory.bin").string()});
        sim = std::make_unique<TsimProcess>(simulatorOptions);
        ASSERT_TRUE(sim->waitForLog("ready")) << sim->log();
        chip = std::make_unique<EmulatedFtdiChip>();
        chip->plug(product, line, faults);
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
