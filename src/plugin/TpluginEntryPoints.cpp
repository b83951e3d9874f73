// The exported entry points of every plug-in library. The host loads the library,
// reads the captions, hands over its record with setup, and asks for frames; what
// differs between the libraries comes from their pluginIdentity().
#include "TpluginIdentity.h"
#include "TpluginState.h"
#include "VAROAutoSeqEditor.h"
#include <atomic>

namespace {
TpluginState g_state;
std::atomic<int> g_initialized{0};
} // namespace

extern "C" {

KT930_EXPORT const char *KT930_STDCALL initialize(std::uint32_t)
{
    return pluginIdentity().name;
}

KT930_EXPORT std::int32_t KT930_STDCALL setup(TPluginHostInfo *hostData, void *hostData2)
{
    return g_state.setup(hostData, hostData2);
}

KT930_EXPORT const char *getMainButton()
{
    return pluginIdentity().buttonCaption;
}

KT930_EXPORT const char *getConfigButton()
{
    return nullptr;
}

KT930_EXPORT Tkt930Frame *getMainForm()
{
    return g_state.makeFrame();
}

KT930_EXPORT Tkt930Frame *getConfigForm()
{
    return nullptr;
}

KT930_EXPORT std::int32_t pshutdown()
{
    return 0;
}

// Nothing of ours needs set-up beyond static initialisation; both only count, so
// repeated calls are harmless.
KT930_EXPORT void Initialize()
{
    g_initialized.store(1);
}

KT930_EXPORT void Finalize()
{
    g_initialized.store(0);
}
}
