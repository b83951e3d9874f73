#pragma once
// A checkitem's command text against its op code's fields: one value per field in
// field order, one tab between values, blanks up to 41 characters. Reading checks
// each value against its field's type; writing clamps numbers into their range.
#include "FieldSpec.h"
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class TcommandCodec {
public:
    static constexpr std::size_t CommandLength = 41;

    TcommandCodec() = default;
    explicit TcommandCodec(std::vector<TfieldSpec> fields) : m_fields(std::move(fields)) {}
    // The field lines of a definition file (after its two header lines), each read
    // once. Throws TInstrPanelError 6 for a line that breaks the grammar.
    static TcommandCodec fromFieldLines(const std::vector<std::string> &lines);

    const std::vector<TfieldSpec> &fields() const { return m_fields; }

    using ValueSink = std::function<void(std::size_t field, const std::string &value)>;
    // Hands each value to accept as soon as it passed its check (trailing blanks
    // gone, upper-case fields raised), so a caller shows the values before a bad one.
    // Throws TInstrPanelError 2 (more values than fields), 4 (a value that breaks
    // its field's type) or 3 (fewer values than fields).
    void parse(const std::string &text, const ValueSink &accept) const;
    std::vector<std::string> parse(const std::string &text) const;

    // The command text of values in field order. A number outside its field's range
    // becomes the nearer bound, in values too, so the caller can show it.
    std::string compose(std::vector<std::string> &values) const;

    // Whether value may stand in a field of typeTag; an upper-case field's value is
    // raised ("a" to "z" only) on the way.
    static bool fitsType(int typeTag, std::string &value);
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    // Blanks up to 41 characters; a longer text stays as it is.
    static std::string padded(std::string text);

private:
    std::vector<TfieldSpec> m_fields;
};
