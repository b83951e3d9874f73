#include "TpluginState.h"
#include "TpluginIdentity.h"

std::int32_t TpluginState::setup(TPluginHostInfo *hostData, void *hostData2)
{
    if (!hostData || !hostData2)
        return -1;
    m_hostData = hostData;
    m_hostData2 = hostData2;
    return 0;
}

Tkt930Frame *TpluginState::makeFrame() const
{
    return pluginIdentity().makeFrame(m_hostData, m_hostData2);
}
