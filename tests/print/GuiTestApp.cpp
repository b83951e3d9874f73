// Fonts and the PDF engine need a GUI application; the offscreen platform (set by the test runner) gives one without a
// display.
#include <QGuiApplication>
#include <gtest/gtest.h>

namespace {
struct GuiEnvironment : ::testing::Environment {
    void SetUp() override { app = std::make_unique<QGuiApplication>(argc, argv); }
    void TearDown() override { app.reset(); }
    int argc = 1;
    char name[10] = "kt930test", *argv[2] = {name, nullptr};
    std::unique_ptr<QGuiApplication> app;
};
const auto *environment = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);
}
