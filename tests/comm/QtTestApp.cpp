// The transports need a Qt application for socket events on the test thread.
#include <QCoreApplication>
#include <gtest/gtest.h>

namespace {
struct QtEnvironment : ::testing::Environment {
    void SetUp() override { app = std::make_unique<QCoreApplication>(argc, argv); }
    void TearDown() override { app.reset(); }
    int argc = 1;
    char name[10] = "kt930test", *argv[2] = {name, nullptr};
    std::unique_ptr<QCoreApplication> app;
};
const auto *environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);
}
