#include "autoSequenceEditForm.h"
#include "ui_autoSequenceEditForm.h"
#include "AppDir.h"
#include "MessageSink.h"
#include "OpCodeDefinitions.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "Tautosequence.h"
#include "TenterKey.h"
#include "TfocusCellDelegate.h"
#include "TguiMessageSink.h"
#include "TguiText.h"
#include "TcheckitemGrid.h"
#include "TcheckitemListModel.h"
#include "TinstGridHeader.h"
#include "TinstGridText.h"
#include "TinstListingPrinter.h"
#include "TitemList.h"
#include "TsequencePrinter.h"
#include "TscreenFit.h"
#include "TsequenceReport.h"
#include "Twindows1252.h"
#include "Twindows1252Validator.h"
#include "instEdit.h"
#include <QItemSelectionModel>
#include <QPrintDialog>
#include <QPrinter>
#include <algorithm>
#include <ctime>

namespace {
constexpr int GridColumns = 4;

QString rightTrimmed(const char (&title)[19])
{
    std::string text = Tautosequence::titleText(title);
    text.erase(text.find_last_not_of(' ') + 1);
    return TguiText::fromBytes(text);
}
}

TsequenceEditor::TsequenceEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database,
                                 Tautosequence &sequence, std::function<void()> save, bool offerCalls,
                                 MessageSink *sink)
    : QDialog(owner), ui(new Ui::TsequenceEditor), m_sink(sink ? *sink : TguiMessageSink::defaultSink()),
      m_hostData(hostData), m_db(database), m_sequence(sequence), m_save(std::move(save)), m_offerCalls(offerCalls),
      m_appDir(TappDir::applicationFolder())
{
    setUpControls();
    TscreenFit::fit(this);
    ui->title1txt->setText(rightTrimmed(m_sequence.title1));
    ui->title2txt->setText(rightTrimmed(m_sequence.title2));
    new Twindows1252Validator(ui->title1txt);
    new Twindows1252Validator(ui->title2txt);
    if (!loadDefinitions())
        return;
    loadDescriptors();

    if (!TesterSetting::isValid(m_sequence.setting))
        m_sequence.setting = 0;
    showSetting();

    m_list->refilter();
    fillInstList(0);
    fillAsList(0);
    m_usable = true;
}

TsequenceEditor::~TsequenceEditor() = default;

std::uint8_t TsequenceEditor::sortMode() const
{
    return m_list->sortState().number();
}

const std::vector<std::uint32_t> &TsequenceEditor::displayList() const
{
    return m_list->shownItems();
}

void TsequenceEditor::setUpControls()
{
    ui->setupUi(this);
    setModal(true);
    m_list = new TcheckitemListModel(m_db, m_descriptors, m_offerCalls, TcheckitemListModel::EmptyList::NoRows, this);
    ui->instList->setList(m_list);
    ui->asList->horizontalHeader()->setSectionsClickable(false);
    ui->asList->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (QTableView *grid : {static_cast<QTableView *>(ui->instList), static_cast<QTableView *>(ui->asList)}) {
        grid->setItemDelegate(new TfocusCellDelegate(grid));
        grid->setTextElideMode(Qt::ElideNone);
        grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    }

    connect(ui->btnAdd, &QPushButton::clicked, this, &TsequenceEditor::btnAddClick);
    connect(ui->btnRemove, &QPushButton::clicked, this, &TsequenceEditor::btnRemoveClick);
    connect(ui->btnClear, &QPushButton::clicked, this, &TsequenceEditor::btnClearClick);
    connect(ui->btnTop, &QToolButton::clicked, this, &TsequenceEditor::btnTopClick);
    connect(ui->btnUp, &QToolButton::clicked, this, &TsequenceEditor::btnUpClick);
    connect(ui->btnDown, &QToolButton::clicked, this, &TsequenceEditor::btnDownClick);
    connect(ui->btnBottom, &QToolButton::clicked, this, &TsequenceEditor::btnBottomClick);
    connect(ui->btnFilter, &QPushButton::clicked, this, &TsequenceEditor::btnFilterClick);
    connect(ui->btnEditInst, &QPushButton::clicked, this, &TsequenceEditor::btnEditInstClick);
    connect(ui->btnPrint, &QPushButton::clicked, this, &TsequenceEditor::btnPrintClick);
    connect(ui->btnHelp, &QPushButton::clicked, this, &TsequenceEditor::btnHelpClick);
    connect(ui->btnOk, &QPushButton::clicked, this, &TsequenceEditor::btnOkClick);
    // activated: only the user's choices, not the form's own settings of the lists.
    connect(ui->testerPortlst, &QComboBox::activated, this, &TsequenceEditor::testerPortlstChange);
    connect(ui->baudRatelst, &QComboBox::activated, this, &TsequenceEditor::baudRatelstChange);
    connect(ui->instList->sortHeader(), &QHeaderView::sectionPressed, this, &TsequenceEditor::instListMouseDown);
    ui->instList->installEventFilter(this);
}

// Enter on the available checkitems adds the selected one, as Add does.
bool TsequenceEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->instList && TenterKey::pressed(event)) {
        btnAddClick();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

// The op codes the grids name; "A" only when autosequence calls are offered.
bool TsequenceEditor::loadDefinitions()
{
    TopCodeTable table;
    try {
        if (OpCodeDefinitions::load(TappDir::dataFolder(m_appDir), table, m_sink,
                                    OpCodeDefinitions::Wording::InstructionList)
            != 0)
            return false;
    } catch (const TopCodeFileCorrupt &) {
        return false; // reported by the loader
    }
    if (m_offerCalls)
        table.try_emplace('A', TinstStruct{"A - Autosequence", 'A', false, 1024});
    else
        table.erase('A');
    m_opCodes = std::move(table);
    TInstrDatabase::setNames(m_opCodes);
    return true;
}

void TsequenceEditor::loadDescriptors()
{
    m_descriptors.clear();
    if (CategoryDescriptors::load(TappDir::dataFolder(m_appDir) / "catdes.dat", m_descriptors) != 0)
        m_sink.error(CategoryDescriptors::loadErrorCaption(), CategoryDescriptors::loadErrorText());
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

// ---- the grids

// A checkitem of the sequence; one beyond the database shows its number only.
void TsequenceEditor::writeRow(int row, std::uint32_t index)
{
    std::array<std::string, GridColumns> texts{std::to_string(index + 1)};
    if (m_db && index < m_db->size())
        texts = TinstGridText::rowForEditor(*m_db, index, m_descriptors);
    for (int c = 0; c < GridColumns; ++c)
        ui->asList->setItem(row, c, new QTableWidgetItem(TguiText::fromBytes(texts[std::size_t(c)])));
}

void TsequenceEditor::fillInstList(int selectRow)
{
    TcheckitemGrid *grid = ui->instList;
    const QSignalBlocker quiet(grid);
    m_list->recordsChanged();
    // Room for the sort picture beside the captions.
    for (int c = 0; c < GridColumns - 1; ++c) {
        grid->resizeColumnToContents(c);
        grid->setColumnWidth(c, grid->columnWidth(c) + TinstGridHeader::sortPictureWidth()
                                    + TinstGridHeader::CaptionGap);
    }
    grid->setCurrentRow(selectRow);
}

// An empty sequence has no row to select.
void TsequenceEditor::fillAsList(int selectRow)
{
    QTableWidget *grid = ui->asList;
    const QSignalBlocker quiet(grid);
    const int rows = m_sequence.itemCount();
    grid->clearContents();
    grid->setRowCount(rows);
    for (int r = 0; r < rows; ++r)
        writeRow(r, m_sequence.items[r] - 1u);
    for (int c = 0; c < GridColumns - 1; ++c)
        grid->resizeColumnToContents(c);
    if (rows > 0)
        grid->setCurrentCell(std::clamp(selectRow, 0, rows - 1), 0);
}

// The selected row, -1 for none. The current row alone does not count: the user can
// take the selection away from it and keep the focus there.
static int selectedRow(const QTableView *grid)
{
    const QModelIndexList rows = grid->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

int TsequenceEditor::selectedSequenceRow() const
{
    const int row = selectedRow(ui->asList);
    return row >= 0 && row < m_sequence.itemCount() ? row : -1;
}

void TsequenceEditor::instListMouseDown(int column)
{
    m_list->pressHeader(column);
    fillInstList(0);
}

// ---- the item list

void TsequenceEditor::btnAddClick()
{
    const int row = selectedRow(ui->instList);
    if (row < 0 || std::size_t(row) >= displayList().size())
        return;
    switch (TitemList(m_sequence.items).append(std::uint16_t(displayList()[std::size_t(row)] + 1))) {
    case TitemList::AppendResult::Full:
        m_sink.warning("Autosequence Full",
                       "The selected checkitem cannot be added because\nthe autosequence is full.");
        break;
    case TitemList::AppendResult::Added:
        fillAsList(ui->asList->currentRow());
        break;
    case TitemList::AppendResult::NoEnd: // no end mark to add at: left as it is
        break;
    }
}

// Each edit names the row to select afterwards, or -1 when it did nothing.
void TsequenceEditor::showEditedSequence(int selectRow)
{
    if (selectRow >= 0)
        fillAsList(selectRow);
}

void TsequenceEditor::btnRemoveClick()
{
    showEditedSequence(TitemList(m_sequence.items).removeAt(selectedSequenceRow()));
}

void TsequenceEditor::btnClearClick()
{
    TitemList(m_sequence.items).clear();
    fillAsList(0);
}

void TsequenceEditor::btnTopClick()
{
    showEditedSequence(TitemList(m_sequence.items).top(selectedSequenceRow()));
}

void TsequenceEditor::btnUpClick()
{
    showEditedSequence(TitemList(m_sequence.items).up(selectedSequenceRow()));
}

void TsequenceEditor::btnDownClick()
{
    showEditedSequence(TitemList(m_sequence.items).down(selectedSequenceRow()));
}

void TsequenceEditor::btnBottomClick()
{
    showEditedSequence(TitemList(m_sequence.items).bottom(selectedSequenceRow()));
}

// ---- filter, checkitem database, print, help

void TsequenceEditor::btnFilterClick()
{
    if (m_db && ui->instList->chooseFilter(m_opCodes, m_descriptors))
        fillInstList(0);
}

void TsequenceEditor::btnEditInstClick()
{
    // The database editor looks for references to a checkitem in the files.
    if (m_save)
        m_save();
    try {
        TinstructionEditorForm editor(nullptr, m_offerCalls, m_hostData, m_db, &m_sink);
        editor.exec();
    } catch (const TinstructionEditorFormException &) {
        // Reported by the editor; the lists are refreshed from what it left.
    }
    loadDefinitions();
    loadDescriptors();
    const int shownRow = ui->instList->currentRow();
    m_list->refilter();
    fillInstList(shownRow);
    fillAsList(ui->asList->currentRow());
}

bool TsequenceEditor::choosePrinter(QPrinter &printer)
{
    QPrintDialog printDialog(&printer, this);
    printDialog.setObjectName(QStringLiteral("printDialog"));
    return printDialog.exec() == QDialog::Accepted;
}

void TsequenceEditor::btnPrintClick()
{
    if (m_sequence.isUnused()) {
        m_sink.show({"Empty Autosequence", "Autosequence is unused.\nPrint operation not initiated.",
                     MsgIcon::Information});
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!choosePrinter(printer))
        return;
    if (printer.outputFormat() == QPrinter::PdfFormat)
        printer.setResolution(TinstListingPrinter::PdfResolution);
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
    THelpWindow::showTopic(m_helpWindow, TappDir::helpFolder() / "AUTOSEQUENCEEDITOR.qch", QStringLiteral("sequenceEditor.html"), this);
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
