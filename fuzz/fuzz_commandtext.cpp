// The command text of a checkitem against its definition file's fields: the field
// lines (the grammar), a command text read into values (the value checks), values
// typed over them, and the command text written back with its ranges applied.
//   input: definition file bytes, a 0 byte, the command text, a 0 byte, typed values
//   (one per field, tab-separated). The record written back must read again. The
//   "A" file's autosequence types go through their own grammar.
#include "CommandCodec.h"
#include "FuzzInput.h"
#include "OpCodeDefinitions.h"
#include "TInstr.h"
#include "TautoSequenceTypes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t first = input.find('\0');
    const std::size_t second = first == std::string::npos ? first : input.find('\0', first + 1);
    const std::string definition = input.substr(0, first);
    const std::string command = first == std::string::npos ? "" : input.substr(first + 1, second - first - 1);
    const std::string typed = second == std::string::npos ? "" : input.substr(second + 1);

    TcommandCodec codec;
    try {
        std::vector<std::string> lines = OpCodeDefinitions::readLines(FuzzInput::write("field.in", data, definition.size()));
        if (lines.size() < 2 || lines[0].size() < 2)
            return 0;
        const std::vector<std::string> fieldLines(lines.begin() + 2, lines.end());
        if (lines[0][0] == 'A') { // autosequence types instead of fields
            std::vector<TautoSequenceType> types;
            TautoSequenceTypes::parse(fieldLines, types);
            return 0;
        }
        codec = TcommandCodec::fromFieldLines(fieldLines);
    } catch (const TInstrPanelError &) {
        return 0;
    } catch (const TopCodeFileCorrupt &) {
        return 0;
    }
    std::vector<std::string> values(codec.fields().size());
    try {
        codec.parse(TInstr(' ', 'M', command).commandText(),
                    [&values](std::size_t field, const std::string &value) { values[field] = value; });
    } catch (const TInstrPanelError &) {
    }
    // A field takes only what fits its type, as the panel's boxes do.
    const std::vector<std::string> over = TfieldSpec::splitAtTabs(typed);
    for (std::size_t k = 0; k < values.size() && k < over.size(); ++k) {
        std::string value = over[k];
        if (TcommandCodec::fitsType(codec.fields()[k].typeTag, value))
            values[k] = value;
    }
    const TInstr record(' ', 'M', codec.compose(values));
    // What is written must read again: every value passes its field's check (a cut
    // to 41 characters may lose fields, codes 2 and 3, never break a value).
    try {
        codec.parse(record.commandText());
    } catch (const TInstrPanelError &e) {
        if (e.code == 4)
            __builtin_trap();
    }
    return 0;
}
