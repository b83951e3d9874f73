// .asq bytes through the parser and on to every conversion the loaders use.
#include "AutosequenceConversions.h"
#include "autosequenceFileStructs.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    TautosequenceFile file;
    try {
        if (file.parse(std::string(reinterpret_cast<const char *>(data), size)) != 0)
            return 0;
    } catch (const TInvalidRead &) {
        return 0;
    }
    std::vector<Tautosequence> inspections;
    AutosequenceConversions::fileToInspections(file, inspections);
    TTestProcList checklists;
    AutosequenceConversions::fileToChecklists(file, checklists);
    std::vector<TuserTester> testers;
    AutosequenceConversions::filesToUserTesters({file}, testers);
    (void)file.serialize();
    return 0;
}
