// The parameter panel's wiring: records into the boxes and back, typed and pasted text, the "A" lists.
#include "FieldSpec.h"
#include "ProgramRun.h"
#include "TInstr.h"
#include "Thrown.h"
#include "UiTestSupport.h"
#include "instrpanel.h"
#include <sstream>

namespace {
struct InstrPanelTest : ::testing::Test {
    const bool applicationFirst = (ensureApplication(), true); // before the widgets
    void build(const std::filesystem::path &file)
    {
        panel = std::make_unique<TInstrPanel>(&owner, file, 517, 25, 10, 4, 56);
    }
    QLineEdit *box(int field) const { return panel->findChild<QLineEdit *>(QStringLiteral("field%1").arg(field)); }
    QComboBox *combo(const char *name) const { return child<QComboBox>(panel.get(), name); }
    TempDir temp;
    QWidget owner;
    std::unique_ptr<TInstrPanel> panel;
};

const char *const AllTypes = "M - Measure\nN\n\"Volts\"\t\"V\"\t\"N0,10\"\n\"Limit\"\t\"\xB5" "A\"\t\"F\"\n"
                             "\"Unit\"\t\"\"\t\"U\"\n\"Note\"\t\"\"\t\"A\"\n";

std::string recordBytes(char op, const std::string &text)
{
    return std::string{'\0', op} + text + std::string(41 - text.size(), ' ') + '\0';
}
} // namespace

TEST_F(InstrPanelTest, ShowsARecordInItsRowsWritesItBackClampedAndItsBoxesFollowTypeAndLength)
{
    build(temp.write("m.in", AllTypes));
    EXPECT_EQ(panel->findChild<QLabel *>("rightLabel1")->text(), QString::fromUtf8("\xC2\xB5" "A"));
    panel->SetInstr(TInstr(' ', 'M', "15\t-3.5\tmohm\tnote"));
    EXPECT_EQ(box(2)->text(), "MOHM");
    TInstr record;
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record) + box(0)->text().toStdString(), recordBytes('M', "10\t-3.5\tMOHM\tnote") + "10");
    for (auto [opCode, text, code] :
         {std::tuple{'L', "1\t2\t3\t4", 1}, {'M', "1\t2\t3\t4\t5", 2}, {'M', "x\t2\t3\t4", 4}})
        EXPECT_EQ(thrown<TInstrPanelError>([&] { panel->SetInstr(TInstr(' ', opCode, text)); }).value().code, code);
    QString rows = QString("\"a\"\t\"b\"\t\"A\"\n").repeated(TInstrPanel::PanelHeight + 1);
    EXPECT_EQ(thrown<TInstrPanelError>([&] { build(temp.write("rows.in", "M - Measure\nN\n" + rows.toStdString())); })
                  .value()
                  .code,
              2);

    // Keys and pasted text follow the field type and the command length.
    build(temp.write("m.in", AllTypes));
    for (auto [field, typed, shown] : {std::tuple{0, "1a2.-3", "123"}, {1, "1.5.-2x", "1.52"}, {2, "ab-1.", "AB-1."},
                                       {3, "ab-1.", "ab-1."}}) {
        QTest::keyClicks(box(field), typed);
        EXPECT_EQ(box(field)->text(), shown) << field;
    }
    QGuiApplication::clipboard()->setText(QString::fromUtf8("x\t\u03A9") + QString(40, QLatin1Char('y')));
    box(3)->clear();
    box(3)->paste();
    EXPECT_EQ(box(3)->text(), "x " + QString(24, QLatin1Char('y'))); // what the other values and the tabs leave
    box(1)->paste();
    EXPECT_EQ(box(1)->text(), "1.52");
}

TEST_F(InstrPanelTest, TheAutosequencePanelConvertsTypeAndNumber)
{
    EXPECT_EQ(thrown<TInstrPanelError>([&] { build(temp.write("a.in", "A - Autosequence\nN\nPHY\tPhysical\t100\n")); })
                  .value()
                  .code,
              6);
    build(std::string(KT930_TEST_APPDIR) + "/Data/autoseq.in");
    panel->SetInstr(TInstr(' ', 'A', "UT307"));
    EXPECT_EQ(combo("comboAutoType")->currentText() + "|" + combo("comboAutoNum")->currentText(), "User Tester 3|7");
    EXPECT_EQ(comboTexts(combo("comboAutoNum")), numberTexts(12));
    combo("comboAutoNum")->setCurrentIndex(11);
    TInstr record;
    panel->GetInstr(record);
    EXPECT_EQ(bytesOf(record), recordBytes('A', "UT312"));
    panel->SetInstr(TInstr(' ', 'A', "UT3")); // too short: the first entries
    EXPECT_EQ(combo("comboAutoType")->currentIndex() + combo("comboAutoNum")->currentIndex(), 0);
}

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
    EXPECT_EQ(others,
              (std::set<std::string>{"Finalize", "Initialize", "_AutoSeqEditFrame", "getConfigButton", "getConfigForm",
                                     "getMainButton", "getMainForm", "initialize", "pshutdown", "setup"}));
    for (const char *member : {"TInstrPanel(QWidget*, std::filesystem::__cxx11::path const&, int, int, int, int, int)",
                               "~TInstrPanel()", "SetInstr(TInstr const&)", "GetInstr(TInstr&)", "Show()", "Hide()",
                               "Enable()", "Disable()", "Clear()", "initAuto()", "createAutoNumList()",
                               "comboAutoChange()", "calcChar(QObject*, char&)", "ValidFloat(char&, QLineEdit*)",
                               "staticMetaObject"})
        EXPECT_EQ(panelSymbols.count(std::string("TInstrPanel::") + member), 1u) << member;
    EXPECT_EQ(panelSymbols.count("vtable for TInstrPanel"), 1u);
}
