#include "CommandCodec.h"
#include "Thrown.h"
#include <gtest/gtest.h>

namespace {
// Fields of the given type specifications ("N0,10", "F", "U" ...).
TcommandCodec codec(const std::vector<const char *> &types)
{
    std::vector<std::string> lines;
    for (const char *type : types)
        lines.push_back(std::string("\"label\"\t\"unit\"\t\"") + type + "\"");
    return TcommandCodec::fromFieldLines(lines);
}

int errorCode(const TcommandCodec &fields, const std::string &text)
{ return thrown<TInstrPanelError>([&] { fields.parse(text); }).value_or(TInstrPanelError(0, "", 0)).code; }

std::string padded(const std::string &text) { return text + std::string(41 - text.size(), ' '); }
} // namespace

TEST(CommandCodec, ReadsOneCheckedValuePerField)
{
    EXPECT_EQ(codec({"N", "F", "U", "A"}).parse("12\t-3.5\tmohm   \tcaf\xE9 "),
              (std::vector<std::string>{"12", "-3.5", "MOHM", "caf\xE9"}));
    const TcommandCodec numbers = codec({"N0,10", "F-1.5,2.5"});
    struct Case { const char *text; int code; };
    for (Case c : {Case{"10\t-.5", 0}, Case{"1\t2\t3", 2}, Case{"1", 3}, Case{"", 3}, Case{"1a\t2", 4},
                   Case{"-1\t2", 4}, Case{"1\t1-2", 4}, Case{"1\t1.2.3", 4}, Case{"1\t--1", 4}, Case{"1\t2e3", 4}})
        EXPECT_EQ(errorCode(numbers, c.text), c.code) << c.text;
    EXPECT_EQ(thrown<TInstrPanelError>([] { codec({"N", "X"}); }).value().code, 6);
    std::vector<std::string> accepted; // a caller shows the values before a bad one
    auto keep = [&accepted](std::size_t, const std::string &value) { accepted.push_back(value); };
    EXPECT_EQ(thrown<TInstrPanelError>([&] { numbers.parse("7\tx", keep); }).value().code, 4);
    EXPECT_EQ(accepted, std::vector<std::string>{"7"});
}

TEST(CommandCodec, WritesValuesWithTabsPaddedAndNumbersClampedToTheNearerBound)
{
    struct Case { std::vector<const char *> types; std::vector<std::string> values; const char *text; };
    for (const Case &c : std::vector<Case>{
             {{"N0,10", "F-1.5,2.5", "N"}, {"15", "-7.25", "99999"}, "10\t-1.5\t99999"},
             {{"N0,10", "F-1.5,2.5", "A"}, {"7", "2", "caf\xE9"}, "7\t2\tcaf\xE9"},
             {{"F-1.5,2.5", "F-1.5,2.5"}, {"3", "-"}, "2.5\t-"}, // "-" is no number yet
             {{"N+5,10"}, {"2"}, "5"},
             // Bounds written so that they read again: whole, in fixed notation, without "-0".
             {{"N0.5,10.5", "N0.5,10.5"}, {"11", "0"}, "10\t1"},
             {{"N0,100000000000000000000"}, {"999999999999999999999"}, "100000000000000000000"},
             {{"F0.00001,1"}, {"0"}, "0.00001"},
             {{"N0,-0000"}, {"1500"}, "0"},
         }) {
        std::vector<std::string> values = c.values;
        const TcommandCodec fields = codec(c.types);
        EXPECT_EQ(fields.compose(values), padded(c.text)) << c.text;
        EXPECT_EQ(fields.parse(padded(c.text)), values) << c.text;
    }
}
