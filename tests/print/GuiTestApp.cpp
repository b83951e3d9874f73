// Fonts and the PDF engine need a GUI application; the offscreen platform gives
// one without a display.
#include <QGuiApplication>
#include <gtest/gtest.h>

namespace {
class GuiEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "kt930test";
        static char *argv[] = {name, nullptr};
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        app = new QGuiApplication(argc, argv);
    }
    void TearDown() override { delete app; }
    QGuiApplication *app = nullptr;
};
const auto *environment = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);
}
