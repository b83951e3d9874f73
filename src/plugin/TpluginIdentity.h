#pragma once
// What makes one plug-in library differ from another: its names and its frame.
// Each library defines pluginIdentity() once; the shared entry points ask it.
#include "VAROAutoSeqEditor.h"

struct TpluginIdentity {
    const char *name;          // what initialize answers
    const char *buttonCaption; // what getMainButton answers
    Tkt930Frame *(*makeFrame)(TPluginHostInfo *hostData, void *hostData2);

    // A frame of the given class with the host's pointers; null when its construction threw.
    template <class Frame> static Tkt930Frame *frameOf(TPluginHostInfo *hostData, void *hostData2)
    {
        try {
            return new Frame(nullptr, hostData, hostData2);
        } catch (...) {
            return nullptr;
        }
    }
};

const TpluginIdentity &pluginIdentity();
