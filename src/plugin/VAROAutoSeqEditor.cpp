// The inspections and user testers plug-in: its names and its frame; the entry
// points are the shared ones.
#include "VAROAutoSeqEditor.h"
#include "AutoSequenceEditorFrame.h"
#include "TpluginIdentity.h"

extern "C" {
// Part of the exported interface for hosts that look it up by name; never assigned.
KT930_EXPORT TAutoSeqEditFrame *_AutoSeqEditFrame = nullptr;
}

const TpluginIdentity &pluginIdentity()
{
    static const TpluginIdentity identity{"Inspections and User Testers", "Inspections and\nUser Testers",
                                          &TpluginIdentity::frameOf<TAutoSeqEditFrame>};
    return identity;
}
