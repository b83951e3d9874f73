// The editor's sync against the real simulator, its printout through the print
// seam to a PDF read back as text, and its help window.
#include "../e2e/SimulatorUnderTest.h"
#include "InstEditSupport.h"
#include "THelpWindow.h"
#include "TinstGridHeader.h"
#include "TinstListingPrinter.h"
#include <QPrinter>
#include <cstdio>

namespace {
// The editor with its print dialog answered by a PDF file.
class PdfEditor : public TinstructionEditorForm {
public:
    using TinstructionEditorForm::TinstructionEditorForm;
    std::filesystem::path pdf;

protected:
    bool choosePrinter(QPrinter &printer) override
    {
        TinstListingPrinter::preparePdf(printer, QString::fromStdString(pdf.string()));
        return true;
    }
};

// The text of a PDF with each run of blanks as one: the column padding is the
// listing printer's, what matters here is which rows come in which order.
std::string pdfText(const std::filesystem::path &pdf)
{
    std::string text;
    FILE *pipe = popen(("pdftotext -layout '" + pdf.string() + "' -").c_str(), "r");
    char buffer[4096];
    for (std::size_t n; pipe && (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, n);
    if (pipe)
        pclose(pipe);
    std::string words;
    for (char c : text)
        if (c != ' ' || (!words.empty() && words.back() != ' '))
            words.push_back(c);
    return words;
}

KnownImages analyzerMemory(const TInstrDatabase &checkitems)
{
    KnownImages memory = KnownDataSet::images(1);
    memory.checkitems = mitBytes(checkitems.slots());
    return memory;
}
} // namespace

TEST_F(EditorFixture, SyncReplacesTheDatabaseResetsTheOrderAndWritesTheBackup)
{
    TInstrDatabase analyzer;
    analyzer[0].assign('P', 'K', "Synced first");
    analyzer[3].assign(' ', 'D', "30");
    analyzer[700].assign('A', 'P', "Beyond the editor's slots");
    const KnownImages memory = analyzerMemory(analyzer);
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, memory);
    ASSERT_TRUE(sim.ready());
    auto editor = open();
    clickHeader(editor.get(), 0);
    connectByEthernet(sim.address());
    click(editor.get(), "btnSync");

    EXPECT_TRUE(sink.messages.empty());
    EXPECT_TRUE(mitBytes(db.slots()) == memory.checkitems);
    EXPECT_EQ(editor->sortState(), 0);
    EXPECT_EQ(header(editor.get())->sortColumn(), -1);
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "4"}));
    EXPECT_EQ(column(editor.get(), 1), (QStringList{"Operator prompts", ""}));
    EXPECT_TRUE(TempDir::read(appDir.data("mit.dat")) == memory.checkitems);
}

TEST_F(EditorFixture, CancelledOrFailedSyncChangesNothing)
{
    TInstrDatabase analyzer;
    analyzer[0].assign('P', 'K', "Never arrives");
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, analyzerMemory(analyzer), {"silent-after=GESI"});
    ASSERT_TRUE(sim.ready());
    const std::string before = mitBytes(db.slots());
    auto editor = open();
    clickHeader(editor.get(), 1);
    whenModal([](QWidget *selector) { click(selector, "btnCancel"); });
    click(editor.get(), "btnSync");
    connectByEthernet(sim.address());
    click(editor.get(), "btnSync");

    EXPECT_EQ(sink.messages, (std::vector<Message>{{"Data Timed Out.",
                                                    "A communications timeout occurred.\r\rOperation Canceled.",
                                                    MsgIcon::Stop, MsgButtons::Ok, MsgModality::System}}));
    EXPECT_TRUE(mitBytes(db.slots()) == before);
    EXPECT_EQ(editor->sortState(), 3);
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"2", "1", "5", "3"}));
    EXPECT_FALSE(std::filesystem::exists(appDir.data("mit.dat")));
}

TEST_F(EditorFixture, PrintWritesTheGridAsItStands)
{
    PdfEditor editor(nullptr, false, &host, &db, &sink);
    editor.pdf = appDir.dir().path() / "listing.pdf";
    editor.show();
    clickHeader(&editor, 0);
    click(&editor, "btnPrint");
    const std::string text = pdfText(editor.pdf);
    EXPECT_NE(text.find("KT930pc Instruction Listing"), std::string::npos) << text;
    const std::string header = "No. Category Op Code Command\n";
    const std::string first = "5 Functional checks C - Control AUX\xC2\xBB" "1\n";
    const std::string last = "1 Earth bond M - Measure EB\xC2\xBB" "0\xC2\xBB" "5\n";
    EXPECT_LT(text.find(header), text.find(first)) << text;
    EXPECT_LT(text.find(first), text.find(last)) << text;
    EXPECT_NE(text.find(last), std::string::npos) << text;
}

TEST_F(EditorFixture, HelpOpensTheEditorTopicOfTheModesHelpFileInAWindowOfTheEditor)
{
    for (const char *file : {"AUTOSEQUENCEEDITOR", "TestProcedureEditor"})
        std::filesystem::copy_file(std::string(KT930_TEST_APPDIR "/") + file + ".qch",
                                   appDir.dir().path() / (std::string(file) + ".qch"));
    for (bool checklistMode : {false, true}) {
        auto editor = open(checklistMode);
        click(editor.get(), "btnHelp");
        auto *window = editor->findChild<THelpWindow *>();
        ASSERT_NE(window, nullptr);
        EXPECT_TRUE(window->isWindow());
        EXPECT_TRUE(window->isVisible());
        EXPECT_TRUE(window->topicLoaded());
        EXPECT_EQ(window->windowTitle(), checklistMode ? "TestProcedureEditor Help" : "AUTOSEQUENCEEDITOR Help");
    }
}
