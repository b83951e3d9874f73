// The plug-in library as the host sees it: loaded with dlopen from the
// application folder, its exports called in the host's order.
#include "UiTestSupport.h"
#include "VAROAutoSeqEditor.h"
#include <dlfcn.h>

namespace {
template <class T> T resolve(void *library, const char *name)
{
    void *address = dlsym(library, name);
    EXPECT_NE(address, nullptr) << name;
    return reinterpret_cast<T>(address);
}
} // namespace

TEST(PluginExports, CallingOrderResultsAndStoredHostPointers)
{
    AppDirScope appDir;
    appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
    void *library = dlopen(KT930_TEST_APPDIR "/Plugins/libVAROAutoSeqEditor.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();

    auto Initialize = resolve<TpackageProc>(library, "Initialize");
    Initialize();
    Initialize(); // idempotent
    EXPECT_STREQ(resolve<TinitializeProc>(library, "initialize")(0), "Inspections and User Testers");
    EXPECT_STREQ(resolve<TtextProc>(library, "getMainButton")(), "Inspections and\nUser Testers");
    EXPECT_EQ(resolve<TtextProc>(library, "getConfigButton")(), nullptr);
    EXPECT_EQ(resolve<TformProc>(library, "getConfigForm")(), nullptr);

    auto setup = resolve<TsetupProc>(library, "setup");
    auto getMainForm = resolve<TformProc>(library, "getMainForm");
    QWidget view1, view2, container;
    TPluginHostInfo first, second;
    first.mainView = &view1;
    first.container = &container;
    second.mainView = &view2;
    second.container = &container;
    int opaque = 0;
    EXPECT_EQ(setup(&first, &opaque), 0);
    EXPECT_EQ(setup(nullptr, &opaque), -1);
    EXPECT_EQ(setup(&second, nullptr), -1);

    // The frame returns to the view of the record that was in force when it was made.
    Tkt930Frame *frameA = getMainForm();
    Tkt930Frame *frameB = getMainForm();
    ASSERT_NE(frameA, nullptr);
    ASSERT_NE(frameB, nullptr);
    EXPECT_NE(frameA, frameB);
    EXPECT_EQ(setup(&second, &opaque), 0);
    Tkt930Frame *frameC = getMainForm();
    view1.hide();
    view2.hide();
    frameA->findChild<QPushButton *>("BtnExit")->click();
    EXPECT_FALSE(view1.isHidden());
    EXPECT_TRUE(view2.isHidden());
    frameC->findChild<QPushButton *>("BtnExit")->click();
    EXPECT_FALSE(view2.isHidden());
    // ReloadData through the contract's virtual: the reloaded frame shows what is
    // on disk now, the other keeps its working copy.
    auto firstRow = [](Tkt930Frame *frame) { return frame->findChild<QListWidget *>("lstIP")->item(0)->text(); };
    EXPECT_EQ(firstRow(frameA), "EARTH - BOND");
    appDir.writeData("inspection.asq", asqBytes("Physical Inspections", "", {sequence("INSULATION", "500 V", {2})}));
    frameA->ReloadData();
    EXPECT_EQ(firstRow(frameA), "INSULATION - 500 V");
    EXPECT_EQ(firstRow(frameB), "EARTH - BOND");

    EXPECT_EQ(*resolve<void **>(library, "_AutoSeqEditFrame"), nullptr);
    EXPECT_EQ(resolve<TshutdownProc>(library, "pshutdown")(), 0);
    delete frameA;
    delete frameB;
    delete frameC;
    resolve<TpackageProc>(library, "Finalize")();
    resolve<TpackageProc>(library, "Finalize")();
}
