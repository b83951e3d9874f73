#pragma once
// What each plug-in library keeps between the host's calls: the two pointers of
// the last successful setup, handed to the frames it makes afterwards.
#include "VAROAutoSeqEditor.h"

class TpluginState {
public:
    // -1 (and nothing stored) when either pointer is null, else 0.
    std::int32_t setup(TPluginHostInfo *hostData, void *hostData2);
    // A new frame of this library with the stored pointers; null when its construction threw.
    Tkt930Frame *makeFrame() const;

private:
    TPluginHostInfo *m_hostData = nullptr;
    void *m_hostData2 = nullptr;
};
