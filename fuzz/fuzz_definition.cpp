// A Data/*.in file: the two header lines, then every field line through the field grammar.
#include "FieldSpec.h"
#include "FuzzInput.h"
#include "OpCodeDefinitions.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::filesystem::path file = FuzzInput::write("Data/op.in", data, size);
    try {
        OpCodeDefinitions::readHeader(file);
    } catch (const TopCodeFileCorrupt &) {
    }
    std::vector<std::string> lines = OpCodeDefinitions::readLines(file);
    for (std::size_t i = 2; i < lines.size(); ++i) {
        try {
            TfieldSpec field = TfieldSpec::parse(lines[i]);
            if (field.range.hasRange && field.range.maximum < field.range.minimum)
                __builtin_trap(); // the grammar forbids it
        } catch (const TInstrPanelError &) {
        }
    }
    return 0;
}
