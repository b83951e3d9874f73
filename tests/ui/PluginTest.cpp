// The plug-in library as the host sees it: loaded with dlopen, its exports called in the host's order.
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
    TPluginHostInfo first{&view1, &container}, second{&view2, &container};
    int opaque = 0;
    EXPECT_EQ((std::vector<int>{setup(&first, &opaque), setup(nullptr, &opaque), setup(&second, nullptr)}),
              (std::vector<int>{0, -1, -1}));

    // The frame returns to the view of the record that was in force when it was made.
    std::unique_ptr<Tkt930Frame> frameA(getMainForm()), frameB(getMainForm());
    ASSERT_TRUE(frameA && frameB && frameA != frameB);
    EXPECT_EQ(setup(&second, &opaque), 0);
    std::unique_ptr<Tkt930Frame> frameC(getMainForm());
    view1.hide();
    view2.hide();
    click(frameA.get(), "BtnExit");
    EXPECT_TRUE(!view1.isHidden() && view2.isHidden());
    click(frameC.get(), "BtnExit");
    EXPECT_FALSE(view2.isHidden());
    // ReloadData through the contract's virtual: the reloaded frame shows what is
    // on disk now, the other keeps its working copy.
    EXPECT_EQ(listTexts(frameA.get()), QStringList{"EARTH - BOND"});
    appDir.writeData("inspection.asq", asqBytes("Physical Inspections", "", {sequence("INSULATION", "500 V", {2})}));
    frameA->ReloadData();
    EXPECT_EQ(listTexts(frameA.get()) + listTexts(frameB.get()), (QStringList{"INSULATION - 500 V", "EARTH - BOND"}));

    EXPECT_EQ(*resolve<void **>(library, "_AutoSeqEditFrame"), nullptr);
    EXPECT_EQ(resolve<TshutdownProc>(library, "pshutdown")(), 0);
    frameA.reset(), frameB.reset(), frameC.reset();
    resolve<TpackageProc>(library, "Finalize")();
    resolve<TpackageProc>(library, "Finalize")();
}
