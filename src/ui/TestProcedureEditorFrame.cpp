#include "TestProcedureEditorFrame.h"
#include "AppDir.h"
#include "THelpWindow.h"
#include "TdataSet.h"
#include "TdataStatusLabel.h"
#include "TenterKey.h"
#include "TframeButtons.h"
#include "TguiMessageSink.h"
#include "TguiText.h"
#include "TlistRowDelegate.h"
#include "TlistTexts.h"
#include "TreturnToHost.h"
#include "TtransferRunner.h"
#include "checklistEditForm.h"
#include "instEdit.h"
#include "ui_TestProcedureEditorFrame.h"
#include <QCoreApplication>
#include <QKeyEvent>

namespace {
const char *const ClearQuestion = "Are you sure you want to clear this Checklist?\nThis operation cannot be undone.";
static_assert(TTestProcEditFrame::EditedParts == (TdataSet::Checkitems | TdataSet::Checklists));
} // namespace

TTestProcEditFrame::TTestProcEditFrame(QWidget *owner, TPluginHostInfo *hostData, void *hostData2, MessageSink *sink)
    : Tkt930Frame(owner), ui(new Ui::TTestProcEditFrame), m_sink(sink ? *sink : TguiMessageSink::defaultSink()),
      m_hostData(hostData), m_hostData2(hostData2),
      m_data(std::make_unique<TdataSet>(TappDir::applicationFolder(), m_sink))
{
    ui->setupUi(this);
    TframeButtons::decorate(ui->BtnUpload, ui->BtnDownload, ui->BtnHelp, ui->BtnExit);
    QFont small = font();
    small.setPixelSize(13);
    ui->lstTP->setFont(small);
    ui->BtnInstEd->setFont(small);
    QFont title = font();
    title.setPixelSize(16);
    title.setBold(true);
    ui->Label1->setFont(title);
    m_dataStatus = new TdataStatusLabel(this);
    ui->frameLayout->addWidget(m_dataStatus);
    ui->lstTP->setItemDelegate(new TlistRowDelegate(ui->lstTP));
    ui->lstTP->installEventFilter(this);

    connect(ui->BtnTPEdit, &QPushButton::clicked, this, &TTestProcEditFrame::BtnTPEditClick);
    connect(ui->lstTP, &QListWidget::itemDoubleClicked, this, &TTestProcEditFrame::BtnTPEditClick);
    connect(ui->BtnTPClear, &QPushButton::clicked, this, &TTestProcEditFrame::BtnTPClearClick);
    connect(ui->BtnInstEd, &QPushButton::clicked, this, &TTestProcEditFrame::BtnInstEdClick);
    connect(ui->BtnUpload, &QPushButton::clicked, this, &TTestProcEditFrame::BtnUploadClick);
    connect(ui->BtnDownload, &QPushButton::clicked, this, &TTestProcEditFrame::BtnDownloadClick);
    connect(ui->BtnHelp, &QPushButton::clicked, this, &TTestProcEditFrame::BtnHelpClick);
    connect(ui->BtnExit, &QPushButton::clicked, this, &TTestProcEditFrame::BtnExitClick);

    m_data->loadAll();
    refreshList();
}

TTestProcEditFrame::~TTestProcEditFrame()
{
    // Directly, not deferred: the plug-in may be unloaded before the event loop runs again.
    delete m_helpWindow.data();
}

void TTestProcEditFrame::ReloadData()
{
    // The host may have opened another data folder since the last read.
    if (const std::filesystem::path folder = TappDir::applicationFolder(); folder != m_data->appDir())
        m_data = std::make_unique<TdataSet>(folder, m_sink);
    m_data->reloadData();
    ui->lstTP->setCurrentRow(-1);
    refreshList();
}

void TTestProcEditFrame::save()
{
    m_data->save(EditedParts);
    refreshList();
}

void TTestProcEditFrame::refreshList()
{
    const int selected = selectedChecklist();
    ui->lstTP->clear();
    for (const TTestProc &checklist : m_data->checklists.items)
        ui->lstTP->addItem(TguiText::forDisplay(TlistTexts::checklistRow(checklist)));
    ui->lstTP->setCurrentRow(selected >= 0 && selected < ui->lstTP->count() ? selected : -1);
    ui->lstTP->viewport()->update();
    m_dataStatus->showWarnings(*m_data);
}

// Focus alone gives the list a current row: only a selection counts.
int TTestProcEditFrame::selectedChecklist() const
{
    const QList<QListWidgetItem *> selected = ui->lstTP->selectedItems();
    return selected.isEmpty() ? -1 : ui->lstTP->row(selected.first());
}

// The editor works on the checklist in place; whatever it left there is saved.
void TTestProcEditFrame::BtnTPEditClick()
{
    const int row = selectedChecklist();
    if (row < 0 || !m_data->checklists.at(std::size_t(row)))
        return;
    {
        TchecklistEditor editor(
            nullptr, m_hostData, &m_data->checkitems, m_data->checklists, std::size_t(row), m_data->inspections,
            m_data->userTesters, [this] { m_data->save(EditedParts); }, &m_sink);
        if (editor.usable())
            editor.exec();
    }
    save();
}

void TTestProcEditFrame::BtnTPClearClick()
{
    const int row = selectedChecklist();
    TTestProc *checklist = row < 0 ? nullptr : m_data->checklists.at(std::size_t(row));
    if (!checklist)
        return;
    if (m_sink.show({"Confirm", ClearQuestion, MsgIcon::Question, MsgButtons::YesNo, MsgModality::Task}) ==
        MsgAnswer::No)
        return;
    checklist->makeUnused();
    save();
}

// The editor changes the checkitems in place; they are saved whatever it ended with.
void TTestProcEditFrame::BtnInstEdClick()
{
    m_data->save(EditedParts);
    try {
        TinstructionEditorForm editor(nullptr, true, m_hostData, &m_data->checkitems, &m_sink);
        editor.exec();
        m_data->saveCheckitems();
    } catch (const TinstructionEditorFormException &) {
        // The editor has said what is wrong with the database files.
    } catch (const std::exception &e) {
        m_sink.error(QCoreApplication::applicationName().toStdString(), e.what());
    }
    refreshList();
}

void TTestProcEditFrame::BtnUploadClick()
{
    // What goes out is what is on disk.
    save();
    TtransferRunner::upload(*m_data, m_hostData, m_sink);
}

// The analyzer knows no smaller split: a download brings, and saves, all four parts.
void TTestProcEditFrame::BtnDownloadClick()
{
    TtransferRunner::download(*m_data, m_hostData, m_sink,
                              TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters |
                                  TdataSet::Checklists,
                              EditedParts, [this] { refreshList(); });
}

void TTestProcEditFrame::BtnHelpClick()
{
    THelpWindow::showTopic(m_helpWindow, TappDir::helpFolder() / "TestProcedureEditor.qch",
                           QStringLiteral("testProcedures.html"), nullptr, this);
}

void TTestProcEditFrame::BtnExitClick()
{
    TreturnToHost::run(this, m_hostData, m_sink, [this] { save(); });
}

// Enter edits as a double click does.
bool TTestProcEditFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->lstTP && TenterKey::pressed(event)) {
        BtnTPEditClick();
        return true;
    }
    return Tkt930Frame::eventFilter(watched, event);
}
