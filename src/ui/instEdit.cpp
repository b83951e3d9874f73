#include "instEdit.h"
#include "ui_instEdit.h"
#include "AppDir.h"
#include "TdataSet.h"
#include "FieldSpec.h"
#include "OpCodeDefinitions.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "TcategoryEditorForm.h"
#include "TdeleteInstructionFrm.h"
#include "TguiMessageSink.h"
#include "TguiText.h"
#include "TcheckitemGrid.h"
#include "TcheckitemListModel.h"
#include "TinstGridDelegate.h"
#include "TinstGridHeader.h"
#include "TinstListingPrinter.h"
#include "TenterKey.h"
#include "TopeningClickGuard.h"
#include "TscreenFit.h"
#include "TtransferRunner.h"
#include "VAROAutoSeqEditor.h"
#include "instrpanel.h"
#include <QCloseEvent>
#include <QFileDialog>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPrintDialog>
#include <QPrinter>
#include <QStyle>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int GridColumns = 4;
constexpr int CellPadding = 10;
constexpr char NoCategory = ' ';
// The placement the panels are built with: width, top, left, row gap, label width.
constexpr int PanelWidth = 517, PanelTop = 25, PanelLeft = 10, PanelRowGap = 4, PanelLabelWidth = 56;

const char *const FatalCaption = "FATAL ERROR";
const std::string FatalAdvice =
    "\n\nIt appears that either the master checkitem database or the database files are corrupt.\n"
    "Please try re-starting the program.  If the problem persists, please contact your software vendor.\n\n"
    "DO NOT sync with the safety analyzer!";
const std::string FatalText = "Fatal Error - Invalid Checkitem" + FatalAdvice;
const std::string FatalUpdateText = "Fatal Error - Invalid checkitem" + FatalAdvice;

const char *const FilesCorruptText = "Warning!\nCheckitem Database Files Appear Corrupt!\nPlease restart program.\n"
                                     "If this problem persists, contact your software vendor.";
const char *const NoMemoryText = "System does not have enough memory resources!\nPlease restart program and shut "
                                 "down any other programs you may be running.";
const char *const DatabaseFullText =
    "Warning: checkitem database full!\nCheckitem cannot be added.\n\nPlease delete one or more existing checkitems.";
const char *const CannotEditCategoryText = "You cannot edit this category.\nPlease change the checkitem's category.";
const char *const ImportOverflowText =
    "WARNING!\n\nNot all checkitems could be imported because there\nwas insufficient space in the checkitem "
    "database to\ninsert all of the checkitems from the specified file.";

// The category list: index 0 is no category, 1..26 the letters "A" to "Z".
int categoryIndex(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 1 : 0;
}

// The debug trace of the op-code list, rewritten whenever a record is shown. It lands
// in whatever folder the program runs in, so it never follows a link and is written
// only into a regular file of the user's own; otherwise there is no trace.
void writeOpListTrace(const std::map<int, char> &revOpComboMap)
{
    std::string text = "revOpComboMap\n";
    char line[32];
    for (const auto &[index, opCode] : revOpComboMap) {
        std::snprintf(line, sizeof line, "  %d - %c\n", index, opCode);
        text += line;
    }
    const int fd = ::open("lstOpChange.log", O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0600);
    if (fd < 0)
        return;
    struct stat st {};
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == ::geteuid() && ::ftruncate(fd, 0) == 0) {
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
            if (n <= 0)
                break;
            done += static_cast<std::size_t>(n);
        }
    }
    ::close(fd);
}
}

template <class Handler> void TinstructionEditorForm::guarded(Handler handler)
{
    try {
        handler();
    } catch (const TinstructionEditorFormException &) {
        // The FATAL ERROR box has been shown; the edit stays as far as it got.
    }
}

TinstructionEditorForm::TinstructionEditorForm(QWidget *owner, bool checklistMode, TPluginHostInfo *hostData,
                                               TInstrDatabase *database, MessageSink *sink)
    : QDialog(owner), ui(new Ui::TinstructionEditorForm), m_sink(sink ? *sink : TguiMessageSink::defaultSink()),
      m_checklistMode(checklistMode), m_hostData(hostData), m_db(database), m_appDir(TappDir::applicationFolder())
{
    setUpControls();
    buildPanels();
    buildOpList();
    TInstrDatabase::setNames(m_opInfoMap);
    loadCategories();
    TscreenFit::fit(this);

    if (!m_db) {
        makeDegenerate();
        return;
    }
    m_list->refilter();
    fillGrid(0);
}

TinstructionEditorForm::TinstructionEditorForm()
    : QDialog(nullptr), ui(new Ui::TinstructionEditorForm), m_sink(TguiMessageSink::defaultSink()),
      m_appDir(TappDir::applicationFolder())
{
    m_sink.warning("Error 0001 - TinstructionEditorForm::TinstructionEditorForm()",
                   "Fatal Error - Please contact your software vendor immediately!");
    setUpControls();
    makeDegenerate();
}

TinstructionEditorForm::~TinstructionEditorForm() = default;

void TinstructionEditorForm::setUpControls()
{
    ui->setupUi(this);
    new TopeningClickGuard(this);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                   | Qt::WindowCloseButtonHint);

    m_list = new TcheckitemListModel(m_db, m_categoryDescriptors, m_checklistMode,
                                     TcheckitemListModel::EmptyList::BlankRow, this);
    ui->instList->setList(m_list);
    ui->instList->setItemDelegate(new TinstGridDelegate(ui->instList));
    ui->instList->setTextElideMode(Qt::ElideNone);
    ui->instList->verticalHeader()->setDefaultSectionSize(ui->instList->fontMetrics().height() + 6);
    QPalette rows = ui->instList->palette();
    rows.setColor(QPalette::Base, QColor(255, 255, 255));
    rows.setColor(QPalette::AlternateBase, QColor(236, 242, 250));
    ui->instList->setPalette(rows);
    const int designWidths[GridColumns] = {27, 162, 146, 162};
    for (int c = 0; c < GridColumns; ++c)
        ui->instList->setColumnWidth(c, designWidths[c]);

    ui->btnUpdate->setIcon(style()->standardIcon(QStyle::SP_DialogApplyButton));
    ui->btnCancel->setIcon(style()->standardIcon(QStyle::SP_DialogCancelButton));
    // Hidden between edits without moving the fields below them.
    for (QToolButton *button : {ui->btnUpdate, ui->btnCancel}) {
        QSizePolicy policy = button->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        button->setSizePolicy(policy);
    }

    instTableOpenDlg = new QFileDialog(this);
    instTableOpenDlg->setObjectName(QStringLiteral("instTableOpenDlg"));
    instTableOpenDlg->setOption(QFileDialog::DontUseNativeDialog);
    instTableOpenDlg->setAcceptMode(QFileDialog::AcceptOpen);
    instTableOpenDlg->setFileMode(QFileDialog::AnyFile);
    instTableOpenDlg->setDefaultSuffix(QStringLiteral("csv"));
    instTableOpenDlg->setNameFilter(QStringLiteral("Comma Separated Files (*.csv)"));
    instTableOpenDlg->setWindowTitle(QStringLiteral("Import Checkitems"));

    auto on = [this](QAbstractButton *button, void (TinstructionEditorForm::*handler)()) {
        connect(button, &QAbstractButton::clicked, this, [this, handler] { guarded([&] { (this->*handler)(); }); });
    };
    on(ui->btnNewCat, &TinstructionEditorForm::btnNewCatClick);
    on(ui->btnEditCat, &TinstructionEditorForm::btnEditCatClick);
    on(ui->btnFilter, &TinstructionEditorForm::btnFilterClick);
    on(ui->btnEditInst, &TinstructionEditorForm::btnEditInstClick);
    on(ui->btnNewInst, &TinstructionEditorForm::btnNewInstClick);
    on(ui->btnDelete, &TinstructionEditorForm::btnDeleteClick);
    on(ui->btnExport, &TinstructionEditorForm::btnExportClick);
    on(ui->btnImport, &TinstructionEditorForm::btnImportClick);
    on(ui->btnSync, &TinstructionEditorForm::btnSyncClick);
    on(ui->btnHelp, &TinstructionEditorForm::btnHelpClick);
    on(ui->btnOk, &TinstructionEditorForm::btnOkClick);
    on(ui->btnUpdate, &TinstructionEditorForm::btnUpdateClick);
    on(ui->btnCancel, &TinstructionEditorForm::btnCancelClick);
    on(ui->btnPrint, &TinstructionEditorForm::btnPrintClick);
    // activated: only the user's choices, not the form's own settings of the lists.
    connect(ui->lstOp, &QComboBox::activated, this, [this] { guarded([this] { lstOpChange(); }); });
    connect(ui->lstCat, &QComboBox::activated, this, [this] { guarded([this] { lstCatChange(); }); });
    connect(ui->instList, &TcheckitemGrid::currentCellChanged, this, [this] { guarded([this] { instListClick(); }); });
    connect(ui->instList, &TcheckitemGrid::doubleClicked, this, [this] { guarded([this] { instListDblClick(); }); });
    // Edit and Delete act on the current row: Ctrl+click must not leave it unselected.
    connect(ui->instList->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        TcheckitemGrid *grid = ui->instList;
        if (!grid->selectionModel()->hasSelection() && grid->currentRow() >= 0)
            grid->selectRow(grid->currentRow());
    });
    connect(ui->instList->sortHeader(), &QHeaderView::sectionPressed, this,
            [this](int column) { guarded([this, column] { instListMouseDown(column); }); });
}

// Without a database the form can only be closed.
void TinstructionEditorForm::makeDegenerate()
{
    for (QWidget *control : listControls())
        control->setEnabled(control == ui->btnOk);
    ui->btnExport->setEnabled(false);
}

// ---- construction

void TinstructionEditorForm::buildPanels()
{
    const std::vector<std::filesystem::path> files = OpCodeDefinitions::listFiles(TappDir::dataFolder(m_appDir));
    if (files.empty()) {
        m_sink.error("ERROR!", OpCodeDefinitions::noFilesText(OpCodeDefinitions::Wording::CheckitemDatabase));
        return;
    }
    try {
        for (const std::filesystem::path &file : files) {
            std::unique_ptr<TInstrPanel> panel;
            TinstStruct info;
            try {
                panel = std::make_unique<TInstrPanel>(ui->pnlInst, file, PanelWidth, PanelTop, PanelLeft,
                                                      PanelRowGap, PanelLabelWidth);
                panel->initAuto();
                panel->Hide();
                panel->Disable();
                info = OpCodeDefinitions::readHeader(file);
            } catch (const TopCodeFileCorrupt &) {
                reportCorruptFile(file);
            } catch (const TInstrPanelError &) {
                // A field line that breaks the grammar: carrying on without this op code
                // would let the display rule rewrite every checkitem of it.
                reportCorruptFile(file);
            }
            if (info.opCode == 'A' && !m_checklistMode)
                continue;
            // Two files for one letter: the first one keeps it.
            if (!m_opPanelMap.emplace(info.opCode, panel.get()).second)
                continue;
            static_cast<void>(panel.release()); // the map holds it from now on
            m_opInfoMap.emplace(info.opCode, info);
            m_opOrderMap.emplace(info.opCode, info.listOrder);
        }
    } catch (const TinstructionEditorFormException &) {
        throw;
    } catch (const std::runtime_error &) {
        // A file the stream cannot read.
        m_sink.error("ERROR!", FilesCorruptText);
    } catch (const std::bad_alloc &) {
        m_sink.error("SYSTEM ERROR!", NoMemoryText);
    }
    setEditTabOrder();
    // Room for the tallest panel, so the grid does not jump when the op code changes.
    int tallest = 0;
    for (const auto &[opCode, panel] : m_opPanelMap)
        tallest = std::max(tallest, panel->sizeHint().height());
    ui->pnlInst->setMinimumHeight(ui->pnlInst->minimumSizeHint().height() + tallest
                                  + ui->pnlInstLayout->spacing());
}

void TinstructionEditorForm::reportCorruptFile(const std::filesystem::path &file)
{
    m_sink.error("ERROR", OpCodeDefinitions::corruptFileText(file.string()));
    throw TinstructionEditorFormException("Corrupt checkitem definition file", __LINE__);
}

// The panels come to life after the form's own controls, which would put their fields
// last for the Tab key. An edit goes: op code, category, the fields of the panel on
// show (the hidden ones are skipped), the tick, the cross, then the category buttons.
void TinstructionEditorForm::setEditTabOrder()
{
    QWidget *previous = ui->lstCat;
    for (const auto &[opCode, panel] : m_opPanelMap)
        for (QWidget *field : panel->findChildren<QWidget *>())
            if (field->focusPolicy() & Qt::TabFocus) {
                QWidget::setTabOrder(previous, field);
                previous = field;
            }
    for (QWidget *next : {static_cast<QWidget *>(ui->btnUpdate), static_cast<QWidget *>(ui->btnCancel),
                          static_cast<QWidget *>(ui->btnNewCat), static_cast<QWidget *>(ui->btnEditCat)}) {
        QWidget::setTabOrder(previous, next);
        previous = next;
    }
}

// Op codes in their list order; equal numbers in letter order.
void TinstructionEditorForm::buildOpList()
{
    ui->lstOp->clear();
    m_opComboMap.clear();
    m_revOpComboMap.clear();
    std::vector<std::pair<int, char>> order;
    for (const auto &[opCode, number] : m_opOrderMap)
        order.emplace_back(number, opCode);
    std::sort(order.begin(), order.end());
    for (const auto &[number, opCode] : order) {
        if (opCode == 'A' && !m_checklistMode)
            continue;
        const int index = ui->lstOp->count();
        ui->lstOp->addItem(TguiText::fromBytes(m_opInfoMap[opCode].name));
        m_opComboMap[opCode] = index;
        m_revOpComboMap[index] = opCode;
    }
}

void TinstructionEditorForm::loadCategories()
{
    const std::filesystem::path file = TappDir::dataFolder(m_appDir) / "catdes.dat";
    const int loaded = CategoryDescriptors::load(file, m_categoryDescriptors);
    m_savedCategoryDescriptors = m_categoryDescriptors;
    if (loaded == 0)
        rebuildCategoryList();
    else
        m_sink.error(CategoryDescriptors::loadErrorCaption(), CategoryDescriptors::loadErrorText());
}

void TinstructionEditorForm::rebuildCategoryList()
{
    const int selected = ui->lstCat->currentIndex();
    ui->lstCat->clear();
    ui->lstCat->addItem(QString(QChar(NoCategory)));
    for (char letter = 'A'; letter <= 'Z'; ++letter)
        ui->lstCat->addItem(categoryText(letter));
    ui->lstCat->setCurrentIndex(selected);
}

QString TinstructionEditorForm::categoryText(char letter) const
{
    return TguiText::fromBytes(CategoryDescriptors::displayText(m_categoryDescriptors, letter));
}

// ---- the grid

void TinstructionEditorForm::fillGrid(int selectRow)
{
    TcheckitemGrid *grid = ui->instList;
    {
        const QSignalBlocker quiet(grid);
        m_list->recordsChanged();
        sizeColumns();
        grid->setCurrentRow(selectRow);
    }
    if (!m_list->shownItems().empty())
        showRecord(grid->currentRow());
}

// Every column but the last as wide as its widest text and a margin; the header
// also makes room for the sort picture. The last column takes the rest.
void TinstructionEditorForm::sizeColumns()
{
    TcheckitemGrid *grid = ui->instList;
    const QFontMetrics cells(grid->font());
    const QFontMetrics captions(grid->sortHeader()->font());
    for (int c = 0; c < GridColumns - 1; ++c) {
        int width = captions.horizontalAdvance(m_list->headerData(c, Qt::Horizontal).toString()) + CellPadding
                    + TinstGridHeader::sortPictureWidth();
        for (int r = 0; r < m_list->rowCount(); ++r)
            width = std::max(width, cells.horizontalAdvance(m_list->index(r, c).data().toString()) + CellPadding);
        grid->setColumnWidth(c, width);
    }
}

int TinstructionEditorForm::selectedRow() const
{
    return std::max(ui->instList->currentRow(), 0);
}

TInstr &TinstructionEditorForm::selectedRecord()
{
    return (*m_db)[m_list->shownItems().at(std::size_t(selectedRow()))];
}

void TinstructionEditorForm::showRecord(int row)
{
    writeOpListTrace(m_revOpComboMap);
    for (const auto &[opCode, panel] : m_opPanelMap)
        panel->Hide();
    const std::uint32_t index = m_list->shownItems().at(std::size_t(row));
    TInstr &record = (*m_db)[index];
    auto found = m_opPanelMap.find(record.opCode);
    if (found == m_opPanelMap.end()) {
        if (m_opPanelMap.empty())
            reportFatal(FatalText, __LINE__);
        // Silently repaired to the first op code with a blank command.
        found = m_opPanelMap.begin();
        record.opCode = found->first;
        std::memset(record.command, ' ', sizeof record.command - 1);
        record.command[sizeof record.command - 1] = 0;
        m_list->recordsChanged();
    }
    TInstrPanel &panel = *found->second;
    panel.Show();
    try {
        panel.SetInstr(record);
    } catch (const TInstrPanelError &error) {
        // The panel starts empty rather than with another record's values; the
        // command stays as it is until the user types new values.
        panel.Clear();
        reportUnfitCommand(index, record, error.code);
    }
    ui->lstOp->setCurrentIndex(m_opComboMap.contains(record.opCode) ? m_opComboMap[record.opCode] : -1);
    ui->lstCat->setCurrentIndex(categoryIndex(record.category));
}

// Said once per checkitem, and only while browsing: after a change of op code in an
// edit the old command is expected not to fit. A blank command is simply empty fields.
void TinstructionEditorForm::reportUnfitCommand(std::uint32_t index, const TInstr &record, int code)
{
    if (ui->btnUpdate->isEnabled() || record.commandText().find_first_not_of(' ') == std::string::npos
        || !m_unfitReported.insert(index).second)
        return;
    const char *reason = code == 2   ? "it has more values than the op code has fields"
                         : code == 3 ? "it has fewer values than the op code has fields"
                                     : "a value does not suit the type of its field";
    m_sink.warning("Command Does Not Fit", "The command of checkitem " + std::to_string(index + 1)
                                               + " does not fit the fields of \"" + m_opInfoMap[record.opCode].name
                                               + "\": " + reason + ".\nThe command is kept as it is. To replace it, "
                                               + "type new values into the fields and press Update.");
}

void TinstructionEditorForm::instListClick()
{
    if (!m_list->shownItems().empty())
        showRecord(selectedRow());
}

void TinstructionEditorForm::instListDblClick()
{
    if (!m_list->shownItems().empty())
        btnEditInstClick();
}

void TinstructionEditorForm::instListMouseDown(int column)
{
    m_list->pressHeader(column);
    fillGrid(0);
}

// After an import or a sync: database order, no filter.
void TinstructionEditorForm::resetListOrder()
{
    m_list->resetOrder();
    fillGrid(0);
}

// ---- the two states

void TinstructionEditorForm::setEditing()
{
    for (QWidget *control : listControls())
        control->setEnabled(false);
    for (QWidget *control : editControls())
        control->setEnabled(true);
    ui->btnUpdate->show();
    ui->btnCancel->show();
    ui->pnlInst->setEnabled(true);
}

void TinstructionEditorForm::setBrowsing()
{
    for (QWidget *control : listControls())
        control->setEnabled(true);
    ui->btnEditInst->setEnabled(!m_list->shownItems().empty());
    ui->btnDelete->setEnabled(!m_list->shownItems().empty());
    for (QWidget *control : editControls())
        control->setEnabled(false);
    ui->btnUpdate->hide();
    ui->btnCancel->hide();
}

void TinstructionEditorForm::disablePanels()
{
    for (const auto &[opCode, panel] : m_opPanelMap)
        panel->Disable();
    ui->pnlInst->setEnabled(false);
}

std::vector<QWidget *> TinstructionEditorForm::listControls() const
{
    return {ui->btnSync, ui->btnHelp, ui->btnOk, ui->btnImport, ui->btnDelete,
            ui->btnNewInst, ui->btnEditInst, ui->btnFilter, ui->instList, ui->btnPrint};
}

std::vector<QWidget *> TinstructionEditorForm::editControls() const
{
    return {ui->lblOp, ui->lstOp, ui->lblCat, ui->lstCat, ui->btnNewCat, ui->btnEditCat, ui->btnUpdate, ui->btnCancel};
}

char TinstructionEditorForm::selectedOpCode() const
{
    auto found = m_revOpComboMap.find(ui->lstOp->currentIndex());
    return found != m_revOpComboMap.end() ? found->second : 0;
}

char TinstructionEditorForm::selectedCategory() const
{
    const int index = ui->lstCat->currentIndex();
    return index > 0 ? char('A' + index - 1) : NoCategory;
}

TInstrPanel &TinstructionEditorForm::selectedOpPanel(const std::string &fatalText, int line)
{
    auto found = m_opPanelMap.find(selectedOpCode());
    if (found == m_opPanelMap.end())
        reportFatal(fatalText, line);
    return *found->second;
}

void TinstructionEditorForm::reportFatal(const std::string &text, int line)
{
    m_sink.warning(FatalCaption, text);
    throw TinstructionEditorFormException(text.substr(0, text.find('\n')), line);
}

// ---- editing

void TinstructionEditorForm::btnEditInstClick()
{
    if (m_list->shownItems().empty())
        return;
    m_savedOpIndex = ui->lstOp->currentIndex();
    m_savedCatIndex = ui->lstCat->currentIndex();
    setEditing();
    TInstrPanel &panel = selectedOpPanel(FatalText, __LINE__);
    panel.Enable();
    // Typing goes to the first parameter at once.
    for (QWidget *field : panel.findChildren<QWidget *>())
        if (field->focusPolicy() & Qt::TabFocus) {
            field->setFocus();
            break;
        }
}

void TinstructionEditorForm::lstOpChange()
{
    selectedRecord().opCode = selectedOpCode();
    showRecord(selectedRow());
    selectedOpPanel(FatalText, __LINE__).Enable();
    for (QToolButton *button : {ui->btnUpdate, ui->btnCancel}) {
        button->show();
        button->setEnabled(true);
    }
}

void TinstructionEditorForm::lstCatChange()
{
    selectedRecord().category = selectedCategory();
}

void TinstructionEditorForm::btnUpdateClick()
{
    m_lastRow = selectedRow();
    setBrowsing();
    TInstrPanel &panel = selectedOpPanel(FatalUpdateText, __LINE__);
    panel.Disable();
    TInstr &record = selectedRecord();
    // Untouched fields never change the command, also not one the panel could not show.
    if (panel.fieldsEdited() || ui->lstOp->currentIndex() != m_savedOpIndex) {
        TInstr fresh;
        panel.GetInstr(fresh);
        record.assign(fresh);
    }
    disablePanels();
    record.opCode = selectedOpCode();
    record.category = selectedCategory();
    fillGrid(m_lastRow);
}

void TinstructionEditorForm::btnCancelClick()
{
    m_lastRow = selectedRow();
    TInstr &record = selectedRecord();
    auto savedOp = m_revOpComboMap.find(m_savedOpIndex);
    if (savedOp != m_revOpComboMap.end())
        record.opCode = savedOp->second;
    record.category = m_savedCatIndex > 0 ? char('A' + m_savedCatIndex - 1) : NoCategory;
    setBrowsing();
    disablePanels();
    fillGrid(m_lastRow);
}

void TinstructionEditorForm::btnNewInstClick()
{
    const int slot = m_db->findFreeSlot(-1);
    if (slot < 0 || slot >= int(TInstrDatabase::EditableSlots)) {
        m_sink.warning("Checkitem Database Full", DatabaseFullText);
        return;
    }
    m_list->append(std::uint32_t(slot));
    (*m_db)[std::size_t(slot)].assign(NoCategory, m_opPanelMap.empty() ? 0 : m_opPanelMap.begin()->first, "");
    fillGrid(int(m_list->shownItems().size()) - 1);
    btnEditInstClick();
}

void TinstructionEditorForm::btnDeleteClick()
{
    if (m_list->shownItems().empty())
        return;
    const int row = selectedRow();
    const std::uint32_t index = m_list->shownItems()[std::size_t(row)];
    if (!TdeleteInstructionFrm::confirmDeletion(std::uint16_t(index + 1), m_appDir, this))
        return;
    (*m_db)[index].clear();
    m_list->refilter();
    fillGrid(row);
    if (m_list->shownItems().empty()) {
        ui->btnEditInst->setEnabled(false);
        ui->btnDelete->setEnabled(false);
    }
}

// ---- categories and filter

void TinstructionEditorForm::btnNewCatClick()
{
    TcategoryEditorForm::run(&m_categoryDescriptors, char('@' + ui->lstCat->currentIndex()),
                             TcategoryEditorForm::NewCategory, this);
    rebuildCategoryList();
}

void TinstructionEditorForm::btnEditCatClick()
{
    const int index = ui->lstCat->currentIndex();
    if (index <= 0) {
        m_sink.warning("Cannot Edit Category", CannotEditCategoryText);
        return;
    }
    TcategoryEditorForm::run(&m_categoryDescriptors, char('@' + index), TcategoryEditorForm::EditCategory, this);
    rebuildCategoryList();
}

void TinstructionEditorForm::btnFilterClick()
{
    if (m_db && ui->instList->chooseFilter(m_opInfoMap, m_categoryDescriptors))
        fillGrid(0);
}

// ---- files, printing, help

void TinstructionEditorForm::btnExportClick()
{
    m_db->exportText("instList.csv"); // silent, as the export always was
}

void TinstructionEditorForm::btnImportClick()
{
    if (instTableOpenDlg->exec() == QDialog::Accepted && !instTableOpenDlg->selectedFiles().isEmpty()) {
        const std::filesystem::path file(instTableOpenDlg->selectedFiles().front().toStdString());
        int code = 0;
        try {
            code = m_db->importText(file);
        } catch (const TinstListOverflowException &) {
            m_sink.warning("OVERFLOW", ImportOverflowText);
        }
        if (code != 0) {
            char text[1024];
            std::snprintf(text, sizeof text,
                          "An error occurred while importing the checkitems.\nAn error code of %d was returned - %s.",
                          code, code == -1 ? "File I/O Error" : "Unhandled Exception");
            m_sink.error("ERROR", text);
            return;
        }
    }
    resetListOrder();
}

bool TinstructionEditorForm::choosePrinter(QPrinter &printer)
{
    QPrintDialog instPrintDialog(&printer, this);
    instPrintDialog.setObjectName(QStringLiteral("instPrintDialog"));
    return instPrintDialog.exec() == QDialog::Accepted;
}

void TinstructionEditorForm::btnPrintClick()
{
    QPrinter printer(QPrinter::HighResolution);
    if (!choosePrinter(printer))
        return;
    if (printer.outputFormat() == QPrinter::PdfFormat)
        printer.setResolution(TinstListingPrinter::PdfResolution);
    TinstListingPrinter::print(printer, *m_list);
}

void TinstructionEditorForm::btnHelpClick()
{
    const char *file = m_checklistMode ? "TestProcedureEditor.qch" : "AUTOSEQUENCEEDITOR.qch";
    THelpWindow::showTopic(m_helpWindow, TappDir::helpFolder() / file, QStringLiteral("InstructionEditor.html"), this);
}

// ---- sync

void TinstructionEditorForm::btnSyncClick()
{
    try {
        TdataSet synced(m_appDir, m_sink);
        TtransferJob::Parameters parameters;
        parameters.kind = TtransferJob::Kind::Sync;
        parameters.data = &synced;
        if (!TtransferRunner::chooseTransport(parameters, false, m_hostData, m_sink))
            return;
        TtransferJob job(parameters, m_sink);
        if (TtransferRunner::run(job, m_hostData) == 2)
            return;
        job.takeOver();
        *m_db = synced.checkitems;
        resetListOrder();
        // Saved as the set's sync, so the replaced database is kept as a restore point.
        job.save();
    } catch (const TinstructionEditorFormException &) {
        throw; // reported already
    } catch (const std::exception &) {
        m_sink.error("Error", TtransferRunner::internalErrorText());
    }
}

// ---- closing

void TinstructionEditorForm::btnOkClick()
{
    // Closing after a failed save would lose the names the user has just typed.
    const std::filesystem::path file = TappDir::dataFolder(m_appDir) / "catdes.dat";
    if (CategoryDescriptors::save(m_categoryDescriptors, file) != 0) {
        m_sink.error("File Error", "The category names could not be saved to " + file.string()
                                       + ".\nCheck that it is a file you may write to, then press OK again.");
        return;
    }
    accept();
}

bool TinstructionEditorForm::FormCloseQuery() const
{
    return ui->btnOk->isEnabled();
}

void TinstructionEditorForm::closeEvent(QCloseEvent *event)
{
    if (!FormCloseQuery()) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

// Category names are written only by OK: a renamed category is not dropped without asking.
void TinstructionEditorForm::reject()
{
    if (!FormCloseQuery())
        return;
    if (m_categoryDescriptors != m_savedCategoryDescriptors
        && m_sink.confirm("Checkitem Database", "Save the changed category names?")) {
        btnOkClick();
        return;
    }
    QDialog::reject();
}

// In the fields of an edit, Enter commits as the tick does and Escape cancels as the cross does.
void TinstructionEditorForm::keyPressEvent(QKeyEvent *event)
{
    QWidget *focus = focusWidget();
    const bool inFields = ui->btnUpdate->isEnabled() && focus && qobject_cast<TInstrPanel *>(focus->parentWidget());
    if (inFields && TenterKey::pressed(event)) {
        ui->btnUpdate->click();
        return;
    }
    if (inFields && event->key() == Qt::Key_Escape) {
        ui->btnCancel->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

void TinstructionEditorForm::FormShow()
{
    ui->btnNewInst->setFocus();
}

void TinstructionEditorForm::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    FormShow();
}
