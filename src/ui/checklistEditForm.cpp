#include "checklistEditForm.h"
#include "MessageSink.h"
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include "TautosequenceCall.h"
#include "TchecklistPrinter.h"
#include "TchecklistReport.h"
#include "TguiText.h"
#include "TitemList.h"
#include "TlistTexts.h"
#include "TscreenFit.h"
#include "Twindows1252Validator.h"
#include "ui_checklistEditForm.h"
#include <QPrinter>
#include <ctime>

TchecklistEditor::TchecklistEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database,
                                   TTestProcList &checklists, std::size_t index,
                                   const std::vector<Tautosequence> &inspections,
                                   const std::vector<TuserTester> &testers, std::function<void()> save,
                                   MessageSink *sink)
    : TstepListEditor(owner, hostData, database, std::move(save), true, sink), ui(new Ui::TchecklistEditor),
      m_checklists(checklists), m_index(index), m_inspections(inspections), m_testers(testers)
{
    ui->setupUi(this);
    setModal(true);
    connect(ui->btnPrint, &QPushButton::clicked, this, &TchecklistEditor::btnPrintClick);
    connect(ui->btnHelp, &QPushButton::clicked, this, &TchecklistEditor::btnHelpClick);
    connect(ui->btnOk, &QPushButton::clicked, this, &TchecklistEditor::btnOkClick);
    TscreenFit::fit(this);
    // An unused checklist starts with an empty title, not its marker.
    const TTestProc *edited = checklist();
    std::string title = !edited || edited->isUnused() ? std::string() : edited->titleText();
    title.erase(title.find_last_not_of(' ') + 1);
    ui->titletxt->setText(TguiText::fromBytes(title));
    new Twindows1252Validator(ui->titletxt);
    bindLists({ui->instList, ui->asList, ui->btnAdd, ui->btnRemove, ui->btnClear, ui->btnTop, ui->btnUp, ui->btnDown,
               ui->btnBottom, ui->btnFilter, ui->btnEditInst});
}

TchecklistEditor::~TchecklistEditor() = default;

TTestProc *TchecklistEditor::checklist() const
{
    return m_checklists.at(m_index);
}

std::span<std::uint16_t> TchecklistEditor::steps()
{
    TTestProc *edited = checklist();
    return edited ? std::span<std::uint16_t>(edited->items) : std::span<std::uint16_t>();
}

bool TchecklistEditor::recordAfterSave()
{
    if (checklist())
        return true;
    m_gone = true;
    m_sink.warning("Checklist Not Found",
                   "Checklist " + std::to_string(m_index + 1) +
                       " is no longer in the data file.\nThe checklist editor closes without saving it.");
    reject();
    return false;
}

void TchecklistEditor::reportFull()
{
    m_sink.warning("Checklist Full", "The selected checkitem cannot be added because\nthe checklist is full.");
}

std::string TchecklistEditor::stepCommand(const TInstr &record, const std::string &shown) const
{
    return record.opCode == 'A' ? TautosequenceCall::runsText(record.commandText(), m_inspections, m_testers) : shown;
}

// A blank title on a checklist without steps leaves it unused.
void TchecklistEditor::applyTitle(TTestProc &target) const
{
    const std::string typed = TguiText::toBytes(ui->titletxt->text());
    if (TlistTexts::trim(typed).empty() && TitemList::count(target.items) == 0) {
        const TTestProc steps = target;
        target.makeUnused();
        target.setting = steps.setting;
        return;
    }
    target.setTitle(typed);
}

void TchecklistEditor::btnPrintClick()
{
    const TTestProc *edited = checklist();
    if (!edited)
        return;
    TTestProc shown = *edited;
    applyTitle(shown);
    if (shown.isUnused()) {
        m_sink.show({"Empty Checklist", "Checklist is unused.\nPrint operation not initiated.", MsgIcon::Information});
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!preparePrinter(printer))
        return;
    static const TInstrDatabase noCheckitems;
    const TchecklistReport report = TchecklistReport::make(shown, m_db ? *m_db : noCheckitems, m_descriptors,
                                                           m_inspections, m_testers, std::time(nullptr));
    if (!TchecklistPrinter::print(printer, {report}))
        m_sink.error("Printing Error", "An error occurred while printing.\nPrint operation aborted.");
}

void TchecklistEditor::btnHelpClick()
{
    showHelp("TestProcedureEditor.qch", "checklistEditor.html");
}

void TchecklistEditor::btnOkClick()
{
    if (TTestProc *edited = checklist())
        applyTitle(*edited);
    accept();
}

void TchecklistEditor::done(int result)
{
    TTestProc *edited = m_gone ? nullptr : checklist();
    if (result != QDialog::Accepted && edited && edited->isUnused() && TitemList::count(edited->items) > 0)
        applyTitle(*edited);
    TstepListEditor::done(result);
}
