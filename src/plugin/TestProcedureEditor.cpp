// The checklist plug-in: its names and its frame; the entry points are the shared ones.
#include "TestProcedureEditorFrame.h"
#include "TpluginIdentity.h"

const TpluginIdentity &pluginIdentity()
{
    static const TpluginIdentity identity{"Test Procedures", "Test Procedures",
                                          &TpluginIdentity::frameOf<TTestProcEditFrame>};
    return identity;
}
