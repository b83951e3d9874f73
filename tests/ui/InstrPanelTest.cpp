// The parameter panel on its own: built from definition files written here (and
// the demo folder's autoseq.in), driven through its boxes and lists.
#include "FieldSpec.h"
#include "OpCodeDefinitions.h"
#include "ProgramRun.h"
#include "TInstr.h"
#include "TempDir.h"
#include "UiTestSupport.h"
#include "instrpanel.h"
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace {
const char *const NumberAndDecimal = "M - Measure\nN 9\n"
                                     "\"Voltage\"\t\"V\"\t\"N0,10\"\n"
                                     "\"Limit\"\t\"\xB5" "A\"\t\"F-1.5,2.5\"\n";
// A field of each type: whole number, decimal, upper-case text, text.
const char *const AllTypes = "R - Remote\nN\n\"N\"\t\"\"\t\"N\"\n\"F\"\t\"\"\t\"F\"\n\"U\"\t\"\"\t\"U\"\n\"A\"\t\"\"\t\"A\"\n";

struct ApplicationFirst {
    ApplicationFirst() { ensureApplication(); }
};

class InstrPanelTest : public ::testing::Test {
protected:

    TInstrPanel &build(const std::string &definition)
    {
        panel = std::make_unique<TInstrPanel>(&owner, temp.write("op.in", definition), 517, 25, 10, 4, 56);
        return *panel;
    }
    QLineEdit *box(int field) const { return panel->findChild<QLineEdit *>(QStringLiteral("field%1").arg(field)); }
    QComboBox *combo(const char *name) const { return panel->findChild<QComboBox *>(QString::fromLatin1(name)); }
    // The 44 bytes a record must hold after GetInstr: text padded to 41, then 0.
    static std::string recordBytes(char category, char opCode, const std::string &text)
    {
        std::string bytes{category, opCode};
        bytes += text + std::string(41 - text.size(), ' ') + '\0';
        return bytes;
    }
    static QString paste(QLineEdit *box, const QString &text)
    {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
        return box->text();
    }

    ApplicationFirst application; // before the widgets
    TempDir temp;
    QWidget owner;
    std::unique_ptr<TInstrPanel> panel;
};

int errorCode(const std::function<void()> &action, std::string *file = nullptr)
{
    try {
        action();
    } catch (const TInstrPanelError &e) {
        EXPECT_GT(e.line, 0);
        if (file)
            *file = e.file;
        return e.code;
    }
    return 0;
}

bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}
} // namespace

// --- Building from the definition file -------------------------------------------

TEST_F(InstrPanelTest, OneRowOfLabelsAndBoxPerFieldLine)
{
    TInstrPanel &p = build(std::string(NumberAndDecimal) + "\"Unit\"\t\"\"\t\"U\"\n\"Note\"\t\"\"\t\"A\"\n");
    EXPECT_EQ(p.opCode(), 'M');
    ASSERT_EQ(p.fieldCount(), 4);
    EXPECT_EQ(p.findChild<QLabel *>("leftLabel0")->text(), "Voltage");
    EXPECT_EQ(p.findChild<QLabel *>("rightLabel1")->text(), QString::fromUtf8("\xC2\xB5" "A")); // Windows-1252 0xB5
    EXPECT_EQ(p.findChild<QLabel *>("leftLabel3")->text(), "Note");
    EXPECT_NE(box(3), nullptr);
    EXPECT_EQ(box(4), nullptr);

    EXPECT_EQ(p.typeTag(0), TInstrPanel::WholeNumber);
    EXPECT_EQ(p.typeTag(1), TInstrPanel::DecimalNumber);
    EXPECT_EQ(p.typeTag(2), TInstrPanel::UpperCaseText);
    EXPECT_EQ(p.typeTag(3), TInstrPanel::FreeText);
    EXPECT_EQ(p.range(1).hasRange, 1);
    EXPECT_DOUBLE_EQ(p.range(1).minimum, -1.5);
    EXPECT_DOUBLE_EQ(p.range(1).maximum, 2.5);
    EXPECT_EQ(p.range(3).hasRange, 0);
}

TEST_F(InstrPanelTest, FieldLinesBreakingTheGrammarThrowCode6)
{
    for (const char *line : {"\"a\"\t\"b\"", "\"a\"\t\"b\"\t\"N10,5\"", "\"a\"\t\"b\"\t\"X\"", "a\t\"b\"\t\"N\"", ""}) {
        std::string file;
        EXPECT_EQ(errorCode([&] { build(std::string("M - Measure\nN\n") + line + "\n"); }, &file), 6) << line;
        EXPECT_TRUE(endsWith(file, "FieldSpec.cpp")) << file;
    }
}

TEST_F(InstrPanelTest, MoreFieldLinesThanThePanelHasPixelsThrowCode2)
{
    std::string definition = "M - Measure\nN\n";
    for (int i = 0; i <= TInstrPanel::PanelHeight; ++i)
        definition += "\"a\"\t\"b\"\t\"A\"\n";
    std::string file;
    EXPECT_EQ(errorCode([&] { build(definition); }, &file), 2);
    EXPECT_TRUE(endsWith(file, "instrpanel.cpp")) << file;
}

TEST_F(InstrPanelTest, MissingFileIsReportedAsUnreadable)
{
    EXPECT_THROW(TInstrPanel(&owner, temp / "absent.in", 517, 25, 10, 4, 56), TopCodeFileCorrupt);
    EXPECT_THROW(build("M\n"), TopCodeFileCorrupt); // no second line
}

// --- Record to boxes ----------------------------------------------------------------

TEST_F(InstrPanelTest, SetInstrPutsEachValueIntoItsBox)
{
    build(std::string(NumberAndDecimal) + "\"Unit\"\t\"\"\t\"U\"\n");
    panel->SetInstr(TInstr('B', 'M', "12\t-3.5\tmohm   "));
    EXPECT_EQ(box(0)->text(), "12");
    EXPECT_EQ(box(1)->text(), "-3.5");
    EXPECT_EQ(box(2)->text(), "MOHM"); // upper case, trailing blanks gone
}

TEST_F(InstrPanelTest, SetInstrRejectsRecordsThatDoNotFitWithTheirCodes)
{
    build(NumberAndDecimal);
    struct Case {
        char opCode;
        const char *text;
        int code;
    };
    for (Case c : {Case{'L', "1\t2", 1}, Case{'M', "1\t2\t3", 2}, Case{'M', "1", 3}, Case{'M', "", 3},
                   Case{'M', "1a\t2", 4}, Case{'M', "-1\t2", 4}, Case{'M', "1\t1-2", 4}, Case{'M', "1\t1.2.3", 4},
                   Case{'M', "1\t--1", 4}, Case{'M', "1\t2e3", 4}, Case{'M', "10\t-.5", 0}})
        EXPECT_EQ(errorCode([&] { panel->SetInstr(TInstr('B', c.opCode, c.text)); }), c.code) << c.opCode << c.text;
}

// --- Boxes to record ---------------------------------------------------------------

TEST_F(InstrPanelTest, GetInstrJoinsTheBoxesWithTabsPaddedTo41)
{
    build(std::string(NumberAndDecimal) + "\"Note\"\t\"\"\t\"A\"\n");
    panel->SetInstr(TInstr('C', 'M', "7\t2\tcaf\xE9"));
    TInstr record('C', 'L', "old text");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('C', 'M', "7\t2\tcaf\xE9"));
}

TEST_F(InstrPanelTest, GetInstrClampsNumbersToTheNearerBoundAndShowsIt)
{
    build(std::string(NumberAndDecimal) + "\"Count\"\t\"\"\t\"N\"\n");
    panel->SetInstr(TInstr('A', 'M', "15\t-7.25\t99999"));
    TInstr record('A', 'M', "");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', 'M', "10\t-1.5\t99999"));
    EXPECT_EQ(box(0)->text(), "10");
    EXPECT_EQ(box(1)->text(), "-1.5");

    box(1)->setText("3");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', 'M', "10\t2.5\t99999"));
    box(1)->setText("-"); // not a number yet: left for the user to finish
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', 'M', "10\t-\t99999"));
}

// The panel reads a range as the definition parser does: "+5" is 5, not a failed 0.
TEST_F(InstrPanelTest, RangesReadAsTheDefinitionParserReadsThem)
{
    build("D - Delay\nN 6\n\"Wait\"\t\"s\"\t\"N+5,10\"\n");
    panel->SetInstr(TInstr(' ', 'D', "2"));
    TInstr record(' ', 'D', "");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes(' ', 'D', "5"));
}

TEST_F(InstrPanelTest, AClampedBoundIsWrittenSoTheRecordShowsAgain)
{
    // Bounds a whole-number box cannot hold as they stand: a fraction, and a number
    // whose shortest form has an exponent.
    build("M - Measure\nN 9\n\"Steps\"\t\"\"\t\"N0.5,10.5\"\n"
          "\"Huge\"\t\"\"\t\"N0,100000000000000000000\"\n\"Tiny\"\t\"\"\t\"F0.00001,1\"\n");
    panel->SetInstr(TInstr('A', 'M', "11\t999999999999999999999\t0"));
    TInstr record('A', 'M', "");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', 'M', "10\t100000000000000000000\t0.00001"));
    panel->SetInstr(TInstr('A', 'M', "0\t5\t0.5"));
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', 'M', "1\t5\t0.5"));
    EXPECT_EQ(errorCode([&] { panel->SetInstr(record); }), 0);

    // A maximum of "-0000" is no sign to write into a box of digits.
    build("M - Measure\nN 9\n\"Volts\"\t\"\"\t\"N0,-0000\"\n");
    panel->SetInstr(TInstr('A', 'M', "1500"));
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', 'M', "0"));
}

// --- The key filter, with real key presses -----------------------------------------

TEST_F(InstrPanelTest, TypedKeysFollowTheFieldType)
{
    build(AllTypes);
    QTest::keyClicks(box(0), "1a2.-3 x");
    EXPECT_EQ(box(0)->text(), "123"); // digits only
    QLineEdit *decimal = box(1);
    QTest::keyClicks(decimal, "1.5.-2x");
    EXPECT_EQ(decimal->text(), "1.52"); // one point
    QTest::keyClick(decimal, Qt::Key_Home);
    QTest::keyClicks(decimal, "--");
    EXPECT_EQ(decimal->text(), "-1.52"); // one leading minus
    QTest::keyClicks(box(2), "ab-1.");
    EXPECT_EQ(box(2)->text(), "AB-1.");
    QTest::keyClicks(box(3), "ab-1.");
    EXPECT_EQ(box(3)->text(), "ab-1.");
}

TEST_F(InstrPanelTest, EditingKeysKeepWorkingInFilteredBoxes)
{
    build(NumberAndDecimal);
    QLineEdit *number = box(0);
    QTest::keyClicks(number, "1234");
    QTest::keyClick(number, Qt::Key_Home);
    QTest::keyClick(number, Qt::Key_Delete);
    EXPECT_EQ(number->text(), "234");
    QTest::keyClick(number, Qt::Key_End);
    QTest::keyClick(number, Qt::Key_Backspace);
    QTest::keyClick(number, Qt::Key_Left);
    QTest::keyClicks(number, "9");
    EXPECT_EQ(number->text(), "293");
    QTest::keyClick(number, Qt::Key_A, Qt::ControlModifier); // select all, then type over it
    QTest::keyClicks(number, "5");
    EXPECT_EQ(number->text(), "5");
}

TEST_F(InstrPanelTest, PastedTextObeysTheSameRulesAsKeys)
{
    build(AllTypes);
    EXPECT_EQ(paste(box(0), "1a2"), "");
    EXPECT_EQ(paste(box(0), "12"), "12");
    EXPECT_EQ(paste(box(1), "1.5.2"), "");
    EXPECT_EQ(paste(box(1), "-1.5"), "-1.5");
    EXPECT_EQ(paste(box(2), "ab"), "AB");
    EXPECT_EQ(paste(box(3), "ab"), "ab");
}

TEST_F(InstrPanelTest, BoxesTakeOnlyWhatTheCommandTextCanHold)
{
    build("R - Remote\nN\n\"U\"\t\"\"\t\"U\"\n\"N\"\t\"\"\t\"N\"\n\"A\"\t\"\"\t\"A\"\n");
    // A tab would split the value in two; a character outside Windows-1252 would be saved as a blank.
    EXPECT_EQ(paste(box(2), QString::fromUtf8("a\tb\u03A9\u00FC\u20AC")), QString::fromUtf8("a b\u00FC\u20AC"));
    for (QChar c : QString::fromUtf8("\u03A9x"))
        QTest::sendKeyEvent(QTest::Click, box(0), Qt::Key_unknown, QString(c), Qt::NoModifier);
    EXPECT_EQ(box(0)->text(), "X");

    // 41 characters with the two tabs: "X", "a bü€" and 2 tabs leave 33 for the number.
    QTest::keyClicks(box(1), QString(40, QLatin1Char('7')));
    EXPECT_EQ(box(1)->text(), QString(33, QLatin1Char('7')));
    TInstr record(' ', 'R', "");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes(' ', 'R', "X\t" + std::string(33, '7') + "\ta b\xFC\x80"));

    // Full: a paste keeps nothing, a shorter value makes room again.
    EXPECT_EQ(paste(box(0), "YZ"), "X");
    box(1)->setText("7");
    EXPECT_EQ(paste(box(0), QString(40, QLatin1Char('y'))), "X" + QString(32, QLatin1Char('Y')));

    // Showing a record is not limited by the values of the one shown before.
    panel->SetInstr(TInstr(' ', 'R', std::string(36, 'Q') + "\t1\tz"));
    EXPECT_EQ(box(0)->text(), QString(36, QLatin1Char('Q')));
    EXPECT_EQ(box(2)->text(), "z");
}

// --- The "A" panel -------------------------------------------------------------------

class AutoPanelTest : public InstrPanelTest {
protected:
    AutoPanelTest()
    {
        panel = std::make_unique<TInstrPanel>(&owner, std::string(KT930_TEST_APPDIR) + "/Data/autoseq.in", 517, 25,
                                              10, 4, 56);
    }
};

TEST_F(AutoPanelTest, ListsTheTypesAndTheFirstTypesNumbers)
{
    EXPECT_EQ(panel->opCode(), 'A');
    EXPECT_EQ(panel->fieldCount(), 0);
    EXPECT_EQ(panel->findChild<QLabel *>("labelAutoType")->text(), "Autosequence Type:");
    EXPECT_EQ(panel->findChild<QLabel *>("labelAutoNum")->text(), "Number:");
    EXPECT_EQ(comboTexts(combo("comboAutoType")), QStringList({"Physical Inspection", "User Tester 1", "User Tester 2",
                                                          "User Tester 3", "User Tester 4", "User Tester 5"}));
    EXPECT_EQ(combo("comboAutoType")->currentIndex(), 0);
    EXPECT_EQ(comboTexts(combo("comboAutoNum")), numberTexts(18));
    EXPECT_EQ(combo("comboAutoNum")->currentIndex(), 0);
}


TEST_F(AutoPanelTest, RecordsConvertToTypeCodeAndTwoDigitNumber)
{
    panel->SetInstr(TInstr(' ', 'A', "UT307"));
    EXPECT_EQ(combo("comboAutoType")->currentText(), "User Tester 3");
    EXPECT_EQ(combo("comboAutoNum")->currentText(), "7");
    TInstr record(' ', 'A', "");
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes(' ', 'A', "UT307"));

    combo("comboAutoType")->setCurrentIndex(0);
    combo("comboAutoNum")->setCurrentIndex(17);
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes(' ', 'A', "PHY18"));
}

TEST_F(AutoPanelTest, ShortUnknownOrOutOfRangeTextsFallBackToTheFirstEntries)
{
    struct Case {
        const char *text;
        int type, number;
    };
    for (Case c : {Case{"UT3", 0, 0}, Case{"XYZ05", 0, 4}, Case{"UT113", 1, 0}, Case{"UT100", 1, 0}}) {
        panel->SetInstr(TInstr(' ', 'A', "UT205"));
        panel->SetInstr(TInstr(' ', 'A', c.text));
        EXPECT_EQ(combo("comboAutoType")->currentIndex(), c.type) << c.text;
        EXPECT_EQ(combo("comboAutoNum")->currentIndex(), c.number) << c.text;
    }
    EXPECT_EQ(errorCode([&] { panel->SetInstr(TInstr(' ', 'M', "PHY01")); }), 1);
}

TEST_F(InstrPanelTest, AutoLinesNeedThreeTokensAndACount)
{
    for (auto [line, code] : {std::pair{"PHY\tPhysical Inspection", 6}, {"PHY\tPhysical Inspection\tmany", 6},
                              {"PHY\tPhysical Inspection\t100", 6}, {"PHY\tPhysical Inspection\t99", 0}})
        EXPECT_EQ(errorCode([&] { build(std::string("A - Autosequence\nN\n") + line + "\n"); }), code) << line;
}

// --- Showing and enabling ----------------------------------------------------------

TEST_F(InstrPanelTest, ShowHideEnableDisableAndClear)
{
    owner.show();
    build(NumberAndDecimal);
    panel->SetInstr(TInstr('B', 'M', "1\t2"));
    panel->Hide();
    EXPECT_FALSE(panel->isVisible());
    panel->Show();
    EXPECT_TRUE(panel->isVisible());
    panel->Disable();
    EXPECT_FALSE(box(0)->isEnabled());
    EXPECT_FALSE(box(1)->isEnabled());
    QTest::keyClicks(box(0), "5");
    EXPECT_EQ(box(0)->text(), "1");
    panel->Enable();
    EXPECT_TRUE(box(1)->isEnabled());
    panel->Clear();
    EXPECT_EQ(box(0)->text(), "");
    EXPECT_EQ(box(1)->text(), "");
}

TEST_F(AutoPanelTest, ChoosingATypeRebuildsTheNumbersAndDisableCoversBothLists)
{
    combo("comboAutoNum")->setCurrentIndex(15);
    combo("comboAutoType")->setCurrentIndex(2);
    EXPECT_EQ(comboTexts(combo("comboAutoNum")), numberTexts(12));
    EXPECT_EQ(combo("comboAutoNum")->currentIndex(), 0);
    panel->Disable();
    EXPECT_FALSE(combo("comboAutoType")->isEnabled());
    EXPECT_FALSE(combo("comboAutoNum")->isEnabled());
    panel->Enable();
    EXPECT_TRUE(combo("comboAutoNum")->isEnabled());
}

// --- The plug-in's export ------------------------------------------------------------

TEST(InstrPanelExport, PluginExportsThePanelAndNothingElseNew)
{
    TempDir scratch;
    ProgramRun nm = ProgramRun::runTool(
        "nm", {"-DC", "--defined-only", KT930_TEST_APPDIR "/Plugins/libVAROAutoSeqEditor.so"}, scratch.path());
    ASSERT_EQ(nm.exitCode, 0) << nm.err;
    std::set<std::string> panelSymbols, others;
    std::istringstream lines(nm.out);
    for (std::string line; std::getline(lines, line);) {
        std::string symbol = line.substr(line.find(' ', line.find(' ') + 1) + 1);
        (symbol.find("TInstrPanel") != std::string::npos ? panelSymbols : others).insert(symbol);
    }
    EXPECT_EQ(others, (std::set<std::string>{"Finalize", "Initialize", "_AutoSeqEditFrame", "getConfigButton",
                                             "getConfigForm", "getMainButton", "getMainForm", "initialize",
                                             "pshutdown", "setup"}));
    for (const char *member :
         {"TInstrPanel::TInstrPanel(QWidget*, std::filesystem::__cxx11::path const&, int, int, int, int, int)",
          "TInstrPanel::~TInstrPanel()", "TInstrPanel::SetInstr(TInstr const&)", "TInstrPanel::GetInstr(TInstr&)",
          "TInstrPanel::Show()", "TInstrPanel::Hide()", "TInstrPanel::Enable()", "TInstrPanel::Disable()",
          "TInstrPanel::Clear()", "TInstrPanel::initAuto()", "TInstrPanel::createAutoNumList()",
          "TInstrPanel::comboAutoChange()", "TInstrPanel::calcChar(QObject*, char&)",
          "TInstrPanel::ValidFloat(char&, QLineEdit*)", "TInstrPanel::staticMetaObject", "vtable for TInstrPanel"})
        EXPECT_EQ(panelSymbols.count(member), 1u) << member;
}
