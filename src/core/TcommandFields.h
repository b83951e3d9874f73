#pragma once
// A checkitem's command text read field by field against its op code's definition
// file, each value with the labels the parameter panel gives it, e.g.
// "Test (EB/IR/LC)=EB, Low limit=0 ohm/MOhm/uA". Texts are 8-bit Windows-1252.
#include "CommandCodec.h"
#include "TInstr.h"
#include "TautoSequenceTypes.h"
#include <filesystem>
#include <map>
#include <string>
#include <vector>

struct TnamedValue {
    std::string label; // the field's left label
    std::string value; // as the codec reads it: trailing blanks gone, upper-case fields raised
    std::string unit;  // the field's right label, often empty
    bool operator==(const TnamedValue &) const = default;
};

struct TnamedCommand {
    std::vector<TnamedValue> values; // the values that fit, up to the first that does not
    std::string misfit;              // why the text does not fit its fields; empty when it does
    // "label=value unit, label=value" (no unit: no blank after the value).
    std::string text() const;
};

class TcommandFields {
public:
    // The fields of every definition file of dataFolder (first file wins a letter, as
    // the op-code table loads them). A corrupt file leaves its letter unknown.
    static TcommandFields load(const std::filesystem::path &dataFolder);

    // An autosequence checkitem ("A", text "PHY03") reads as its type and number.
    TnamedCommand name(const TInstr &record) const;

    // What load reads from one file: its lines after the two header lines.
    void setFields(char opCode, const std::vector<std::string> &fieldLines);
    void setAutosequenceTypes(std::vector<TautoSequenceType> types);

private:
    TnamedCommand nameAutosequence(const std::string &text) const;

    std::map<char, TcommandCodec> m_codecs;
    std::map<char, std::string> m_broken; // op code -> why its definition file has no usable fields
    std::vector<TautoSequenceType> m_autoTypes;
};
