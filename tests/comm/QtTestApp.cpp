// The transports need a Qt application for socket events on the test thread.
#include <QCoreApplication>
#include <gtest/gtest.h>

namespace {
class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "kt930test";
        static char *argv[] = {name, nullptr};
        app = new QCoreApplication(argc, argv);
    }
    void TearDown() override { delete app; }
    QCoreApplication *app = nullptr;
};
const auto *environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);
}
