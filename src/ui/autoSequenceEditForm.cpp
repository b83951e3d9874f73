#include "autoSequenceEditForm.h"
#include "MessageSink.h"
#include "TInstrDatabase.h"
#include "Tautosequence.h"
#include "TguiText.h"
#include "TscreenFit.h"
#include "TsequencePrinter.h"
#include "TsequenceReport.h"
#include "Twindows1252.h"
#include "Twindows1252Validator.h"
#include "ui_autoSequenceEditForm.h"
#include <QPrinter>
#include <algorithm>
#include <ctime>

namespace {
QString rightTrimmed(const char (&title)[19])
{
    std::string text = Tautosequence::titleText(title);
    text.erase(text.find_last_not_of(' ') + 1);
    return TguiText::fromBytes(text);
}
} // namespace

TsequenceEditor::TsequenceEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database,
                                 Tautosequence &sequence, std::function<void()> save, bool offerCalls,
                                 MessageSink *sink)
    : TstepListEditor(owner, hostData, database, std::move(save), offerCalls, sink), ui(new Ui::TsequenceEditor),
      m_sequence(sequence)
{
    ui->setupUi(this);
    setModal(true);
    connect(ui->btnPrint, &QPushButton::clicked, this, &TsequenceEditor::btnPrintClick);
    connect(ui->btnHelp, &QPushButton::clicked, this, &TsequenceEditor::btnHelpClick);
    connect(ui->btnOk, &QPushButton::clicked, this, &TsequenceEditor::btnOkClick);
    // activated: only the user's choices, not the form's own settings of the lists.
    connect(ui->testerPortlst, &QComboBox::activated, this, &TsequenceEditor::testerPortlstChange);
    connect(ui->baudRatelst, &QComboBox::activated, this, &TsequenceEditor::baudRatelstChange);
    TscreenFit::fit(this);
    ui->title1txt->setText(rightTrimmed(m_sequence.title1));
    ui->title2txt->setText(rightTrimmed(m_sequence.title2));
    new Twindows1252Validator(ui->title1txt);
    new Twindows1252Validator(ui->title2txt);
    if (!bindLists({ui->instList, ui->asList, ui->btnAdd, ui->btnRemove, ui->btnClear, ui->btnTop, ui->btnUp,
                    ui->btnDown, ui->btnBottom, ui->btnFilter, ui->btnEditInst}))
        return;
    if (!TesterSetting::isValid(m_sequence.setting))
        m_sequence.setting = 0;
    showSetting();
}

TsequenceEditor::~TsequenceEditor() = default;

std::span<std::uint16_t> TsequenceEditor::steps()
{
    return m_sequence.items;
}

void TsequenceEditor::reportFull()
{
    m_sink.warning("Autosequence Full", "The selected checkitem cannot be added because\nthe autosequence is full.");
}

// ---- port and baud rate

void TsequenceEditor::showSetting()
{
    const std::uint16_t word = m_sequence.setting;
    // A port the list does not have (7) selects nothing.
    ui->testerPortlst->setCurrentIndex(word ? TesterSetting::port(word) : 0);
    ui->baudRatelst->setCurrentIndex(word ? TesterSetting::baudIndex(word) : -1);
}

// With no port entry selected (a stored port 7) nothing was chosen: the word stays.
void TsequenceEditor::writeSetting()
{
    const int port = ui->testerPortlst->currentIndex();
    if (port < 0)
        return;
    m_sequence.setting = TesterSetting::make(port, std::max(ui->baudRatelst->currentIndex(), 0));
}

void TsequenceEditor::testerPortlstChange()
{
    if (ui->testerPortlst->currentIndex() == 0)
        ui->baudRatelst->setCurrentIndex(-1);
    else if (ui->baudRatelst->currentIndex() < 0)
        ui->baudRatelst->setCurrentIndex(0);
    writeSetting();
}

void TsequenceEditor::baudRatelstChange()
{
    writeSetting();
}

// ---- print, help

void TsequenceEditor::btnPrintClick()
{
    if (m_sequence.isUnused()) {
        m_sink.show(
            {"Empty Autosequence", "Autosequence is unused.\nPrint operation not initiated.", MsgIcon::Information});
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!preparePrinter(printer))
        return;
    // The titles as the form shows them, as OK would store them.
    Tautosequence shown = m_sequence;
    applyTitles(shown);
    static const TInstrDatabase noCheckitems;
    const TsequenceReport report =
        TsequenceReport::make(shown, m_db ? *m_db : noCheckitems, m_descriptors, std::time(nullptr));
    if (!TsequencePrinter::print(printer, {report}))
        m_sink.error("Printing Error", "An error occurred while printing.\nPrint operation aborted.");
}

void TsequenceEditor::btnHelpClick()
{
    showHelp("AUTOSEQUENCEEDITOR.qch", "sequenceEditor.html");
}

// ---- OK

// "(unused)" as typed leaves title 1 as it is.
void TsequenceEditor::applyTitles(Tautosequence &target) const
{
    const QString title1 = ui->title1txt->text();
    if (title1 != QLatin1String("(unused)"))
        Tautosequence::setTitle(target.title1, Twindows1252::toUpper(TguiText::toBytes(title1)));
    Tautosequence::setTitle(target.title2, Twindows1252::toUpper(TguiText::toBytes(ui->title2txt->text())));
}

void TsequenceEditor::btnOkClick()
{
    applyTitles(m_sequence);
    writeSetting();
    accept();
}
