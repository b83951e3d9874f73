#include "TstepListEditor.h"
#include "AppDir.h"
#include "MessageSink.h"
#include "OpCodeDefinitions.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "TcheckitemGrid.h"
#include "TcheckitemListModel.h"
#include "TenterKey.h"
#include "TfocusCellDelegate.h"
#include "TguiMessageSink.h"
#include "TguiText.h"
#include "TinstGridHeader.h"
#include "TinstGridText.h"
#include "TinstListingPrinter.h"
#include "TitemList.h"
#include "instEdit.h"
#include <QAbstractButton>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPrintDialog>
#include <QPrinter>
#include <QTableWidget>
#include <algorithm>

namespace {
constexpr int GridColumns = 4;

// The selected row, -1 for none. The current row alone does not count: the user can
// take the selection away from it and keep the focus there.
int selectedRow(const QTableView *grid)
{
    const QModelIndexList rows = grid->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}
} // namespace

TstepListEditor::TstepListEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database,
                                 std::function<void()> save, bool offerCalls, MessageSink *sink)
    : QDialog(owner), m_sink(sink ? *sink : TguiMessageSink::defaultSink()), m_hostData(hostData), m_db(database),
      m_appDir(TappDir::applicationFolder()), m_save(std::move(save)), m_offerCalls(offerCalls)
{
}

TstepListEditor::~TstepListEditor() = default;

std::uint8_t TstepListEditor::sortMode() const
{
    return m_list->sortState().number();
}

const std::vector<std::uint32_t> &TstepListEditor::displayList() const
{
    return m_list->shownItems();
}

bool TstepListEditor::bindLists(const TstepControls &controls)
{
    m_controls = controls;
    m_list = new TcheckitemListModel(m_db, m_descriptors, m_offerCalls, TcheckitemListModel::EmptyList::NoRows, this);
    controls.instList->setList(m_list);
    QTableWidget *asList = controls.asList;
    asList->horizontalHeader()->setSectionsClickable(false);
    asList->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (QTableView *grid : {static_cast<QTableView *>(controls.instList), static_cast<QTableView *>(asList)}) {
        grid->setItemDelegate(new TfocusCellDelegate(grid));
        grid->setTextElideMode(Qt::ElideNone);
        grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    }
    const auto wire = [this](QWidget *button, void (TstepListEditor::*slot)()) {
        connect(static_cast<QAbstractButton *>(button), &QAbstractButton::clicked, this, slot);
    };
    wire(controls.btnAdd, &TstepListEditor::btnAddClick);
    wire(controls.btnRemove, &TstepListEditor::btnRemoveClick);
    wire(controls.btnClear, &TstepListEditor::btnClearClick);
    wire(controls.btnTop, &TstepListEditor::btnTopClick);
    wire(controls.btnUp, &TstepListEditor::btnUpClick);
    wire(controls.btnDown, &TstepListEditor::btnDownClick);
    wire(controls.btnBottom, &TstepListEditor::btnBottomClick);
    wire(controls.btnFilter, &TstepListEditor::btnFilterClick);
    wire(controls.btnEditInst, &TstepListEditor::btnEditInstClick);
    connect(controls.instList->sortHeader(), &QHeaderView::sectionPressed, this, &TstepListEditor::instListMouseDown);
    controls.instList->installEventFilter(this);

    if (!loadDefinitions())
        return false;
    loadDescriptors();
    m_list->refilter();
    fillInstList(0);
    fillAsList(0);
    m_usable = true;
    return true;
}

// Enter on the available checkitems adds the selected one, as Add does.
bool TstepListEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_controls.instList && TenterKey::pressed(event)) {
        btnAddClick();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

// The op codes the grids name; "A" only when autosequence calls are offered.
bool TstepListEditor::loadDefinitions()
{
    TopCodeTable table;
    try {
        if (OpCodeDefinitions::load(TappDir::dataFolder(m_appDir), table, m_sink,
                                    OpCodeDefinitions::Wording::InstructionList) != 0)
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

void TstepListEditor::loadDescriptors()
{
    m_descriptors.clear();
    if (CategoryDescriptors::load(TappDir::dataFolder(m_appDir) / "catdes.dat", m_descriptors) != 0)
        m_sink.error(CategoryDescriptors::loadErrorCaption(), CategoryDescriptors::loadErrorText());
}

// ---- the grids

std::string TstepListEditor::stepCommand(const TInstr &, const std::string &shown) const
{
    return shown;
}

// A checkitem of the list; one beyond the database shows its number only.
void TstepListEditor::writeRow(int row, std::uint32_t index)
{
    std::array<std::string, GridColumns> texts{std::to_string(index + 1)};
    if (m_db && index < m_db->size()) {
        texts = TinstGridText::rowForEditor(*m_db, index, m_descriptors);
        texts[3] = stepCommand((*m_db)[index], texts[3]);
    }
    for (int c = 0; c < GridColumns; ++c)
        m_controls.asList->setItem(row, c, new QTableWidgetItem(TguiText::fromBytes(texts[std::size_t(c)])));
}

void TstepListEditor::fillInstList(int selectRow)
{
    TcheckitemGrid *grid = m_controls.instList;
    const QSignalBlocker quiet(grid);
    m_list->recordsChanged();
    // Room for the sort picture beside the captions.
    for (int c = 0; c < GridColumns - 1; ++c) {
        grid->resizeColumnToContents(c);
        grid->setColumnWidth(c,
                             grid->columnWidth(c) + TinstGridHeader::sortPictureWidth() + TinstGridHeader::CaptionGap);
    }
    grid->setCurrentRow(selectRow);
}

// An empty list has no row to select.
void TstepListEditor::fillAsList(int selectRow)
{
    QTableWidget *grid = m_controls.asList;
    const QSignalBlocker quiet(grid);
    const std::span<const std::uint16_t> used = TitemList::used(steps());
    const int rows = int(used.size());
    grid->clearContents();
    grid->setRowCount(rows);
    for (int r = 0; r < rows; ++r)
        writeRow(r, used[std::size_t(r)] - 1u);
    for (int c = 0; c < GridColumns - 1; ++c)
        grid->resizeColumnToContents(c);
    if (rows > 0)
        grid->setCurrentCell(std::clamp(selectRow, 0, rows - 1), 0);
}

int TstepListEditor::selectedStepRow()
{
    const int row = selectedRow(m_controls.asList);
    return row >= 0 && row < TitemList::count(steps()) ? row : -1;
}

void TstepListEditor::instListMouseDown(int column)
{
    m_list->pressHeader(column);
    fillInstList(0);
}

// ---- the item list

void TstepListEditor::btnAddClick()
{
    const int row = selectedRow(m_controls.instList);
    if (row < 0 || std::size_t(row) >= displayList().size())
        return;
    switch (TitemList(steps()).append(std::uint16_t(displayList()[std::size_t(row)] + 1))) {
    case TitemList::AppendResult::Full:
        reportFull();
        break;
    case TitemList::AppendResult::Added:
        fillAsList(m_controls.asList->currentRow());
        break;
    case TitemList::AppendResult::NoEnd: // no end mark to add at: left as it is
        break;
    }
}

// Each edit names the row to select afterwards, or -1 when it did nothing.
void TstepListEditor::showEditedSteps(int selectRow)
{
    if (selectRow >= 0)
        fillAsList(selectRow);
}

void TstepListEditor::btnRemoveClick()
{
    showEditedSteps(TitemList(steps()).removeAt(selectedStepRow()));
}

void TstepListEditor::btnClearClick()
{
    TitemList(steps()).clear();
    fillAsList(0);
}

void TstepListEditor::btnTopClick()
{
    showEditedSteps(TitemList(steps()).top(selectedStepRow()));
}

void TstepListEditor::btnUpClick()
{
    showEditedSteps(TitemList(steps()).up(selectedStepRow()));
}

void TstepListEditor::btnDownClick()
{
    showEditedSteps(TitemList(steps()).down(selectedStepRow()));
}

void TstepListEditor::btnBottomClick()
{
    showEditedSteps(TitemList(steps()).bottom(selectedStepRow()));
}

// ---- filter, checkitem database, print, help

void TstepListEditor::btnFilterClick()
{
    if (m_db && m_controls.instList->chooseFilter(m_opCodes, m_descriptors))
        fillInstList(0);
}

void TstepListEditor::btnEditInstClick()
{
    // The database editor looks for references to a checkitem in the files.
    if (m_save)
        m_save();
    if (!recordAfterSave())
        return;
    try {
        TinstructionEditorForm editor(nullptr, m_offerCalls, m_hostData, m_db, &m_sink);
        editor.exec();
    } catch (const TinstructionEditorFormException &) {
        // Reported by the editor; the lists are refreshed from what it left.
    }
    loadDefinitions();
    loadDescriptors();
    const int shownRow = m_controls.instList->currentRow();
    m_list->refilter();
    fillInstList(shownRow);
    fillAsList(m_controls.asList->currentRow());
}

bool TstepListEditor::choosePrinter(QPrinter &printer)
{
    QPrintDialog printDialog(&printer, this);
    printDialog.setObjectName(QStringLiteral("printDialog"));
    return printDialog.exec() == QDialog::Accepted;
}

bool TstepListEditor::preparePrinter(QPrinter &printer)
{
    if (!choosePrinter(printer))
        return false;
    if (printer.outputFormat() == QPrinter::PdfFormat)
        printer.setResolution(TinstListingPrinter::PdfResolution);
    return true;
}

void TstepListEditor::showHelp(const char *file, const char *topic)
{
    THelpWindow::showTopic(m_helpWindow, TappDir::helpFolder() / file, QString::fromLatin1(topic), this);
}
