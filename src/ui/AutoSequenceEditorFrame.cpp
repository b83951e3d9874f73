#include "AutoSequenceEditorFrame.h"
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
#include "TseqTitleEditForm.h"
#include "TtransferRunner.h"
#include "TtreeNodeDelegate.h"
#include "autoSequenceEditForm.h"
#include "instEdit.h"
#include "ui_AutoSequenceEditorFrame.h"
#include <QApplication>
#include <QFontMetrics>
#include <QIcon>
#include <QLabel>
#include <QMouseEvent>
#include <QStyle>
#include <QTimer>
#include <stdexcept>

namespace {
const char *const ClearQuestion = "Are you sure you want to clear this Autosequence?\nThis operation cannot be undone.";

std::string applicationTitle()
{
    return QCoreApplication::applicationName().toStdString();
}
} // namespace

TAutoSeqEditFrame::TAutoSeqEditFrame(QWidget *owner)
    : Tkt930Frame(owner), ui(new Ui::TAutoSeqEditFrame), m_sink(TguiMessageSink::defaultSink()),
      m_data(std::make_unique<TdataSet>(TappDir::applicationFolder(), m_sink))
{
    setUpControls();
}

TAutoSeqEditFrame::TAutoSeqEditFrame(QWidget *owner, TPluginHostInfo *hostData, void *hostData2, MessageSink *sink)
    : Tkt930Frame(owner), ui(new Ui::TAutoSeqEditFrame), m_sink(sink ? *sink : TguiMessageSink::defaultSink()),
      m_data(std::make_unique<TdataSet>(TappDir::applicationFolder(), m_sink))
{
    m_hostData = hostData;
    m_hostData2 = hostData2;
    setUpControls();
    startUp();
}

TAutoSeqEditFrame::~TAutoSeqEditFrame()
{
    // Directly, not deferred: the plug-in may be unloaded before the event loop runs again.
    delete m_helpWindow.data();
}

void TAutoSeqEditFrame::setUpControls()
{
    ui->setupUi(this);
    TframeButtons::decorate(ui->BtnUpload, ui->BtnDownload, ui->BtnHelp, ui->BtnExit);

    QFont small = font();
    small.setPixelSize(13);
    for (QWidget *w : {static_cast<QWidget *>(ui->lstIP), static_cast<QWidget *>(ui->LstUTS),
                       static_cast<QWidget *>(ui->BtnInstEd), static_cast<QWidget *>(ui->BtnInstEd2)})
        w->setFont(small);
    QFont title = font();
    title.setPixelSize(16);
    title.setBold(true);
    ui->Label1->setFont(title);
    ui->Label2->setFont(title);

    m_dataStatus = new TdataStatusLabel(this);
    ui->frameLayout->addWidget(m_dataStatus);

    ui->lstIP->setItemDelegate(new TlistRowDelegate(ui->lstIP));
    ui->LstUTS->setItemDelegate(new TtreeNodeDelegate(ui->LstUTS));
    ui->LstUTS->viewport()->installEventFilter(this);
    ui->lstIP->installEventFilter(this);
    ui->LstUTS->installEventFilter(this);

    LstUTSTimer = new QTimer(this);
    LstUTSTimer->setObjectName(QStringLiteral("LstUTSTimer"));
    LstUTSTimer->setSingleShot(false);
    LstUTSTimer->setInterval(QApplication::doubleClickInterval());

    connect(ui->BtnRestore, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnRestoreClick);
    connect(ui->BtnBackup, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnBackupClick);
    connect(ui->BtnUpload, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnUploadClick);
    connect(ui->BtnDownload, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnDownloadClick);
    connect(ui->BtnHelp, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnHelpClick);
    connect(ui->BtnExit, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnExitClick);
    connect(ui->BtnIPClear, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnIPClearClick);
    connect(ui->BtnIPEdit, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnIPEditClick);
    connect(ui->lstIP, &QListWidget::itemDoubleClicked, this, &TAutoSeqEditFrame::lstIPDblClick);
    connect(ui->BtnUTSEdit, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnUTSEditClick);
    connect(ui->BtnUTSClear, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnUTSClearClick);
    connect(ui->BtnInstEd, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnInstEdClick);
    connect(ui->BtnInstEd2, &QPushButton::clicked, this, &TAutoSeqEditFrame::BtnInstEdClick);
    connect(LstUTSTimer, &QTimer::timeout, this, &TAutoSeqEditFrame::LstUTSTimerTimer);
}

void TAutoSeqEditFrame::startUp()
{
    m_data->loadAll();
    ui->LstUTS->clearSelection();
    ui->LstUTS->setCurrentItem(nullptr);
    ui->lstIP->setCurrentRow(-1);
    LstUTSTimer->stop();
    LstUTSTimer->setInterval(QApplication::doubleClickInterval());
    buildTree();
    refreshLists(2);
    refreshDataStatus();
}

void TAutoSeqEditFrame::refreshDataStatus()
{
    m_dataStatus->showWarnings(*m_data);
}

void TAutoSeqEditFrame::ReloadData()
{
    // The host may have opened another data folder since the last read.
    if (const std::filesystem::path folder = TappDir::applicationFolder(); folder != m_data->appDir())
        m_data = std::make_unique<TdataSet>(folder, m_sink);
    m_data->reloadData();
    ui->lstIP->setCurrentRow(-1);
    ui->LstUTS->clearSelection();
    ui->LstUTS->setCurrentItem(nullptr);
    refreshLists(2);
    refreshDataStatus();
}

void TAutoSeqEditFrame::BtnRestoreClick()
{
    m_data->loadAll();
    refreshLists(2);
    refreshDataStatus();
}

// A file another program changed may have been taken from the disk instead of saved.
void TAutoSeqEditFrame::BtnBackupClick()
{
    m_data->backup();
    refreshLists(2);
    refreshDataStatus();
}

void TAutoSeqEditFrame::saveAutosequences()
{
    m_data->save(TdataSet::Inspections | TdataSet::UserTesters);
}

// ---- lists

void TAutoSeqEditFrame::refreshLists(int selector)
{
    if (selector == 0 || selector == 2)
        refreshInspections();
    if (selector == 1 || selector == 2)
        refreshTesters();
}

void TAutoSeqEditFrame::refreshInspections()
{
    const int selected = selectedInspection();
    ui->lstIP->clear();
    for (const Tautosequence &sequence : m_data->inspections)
        ui->lstIP->addItem(TguiText::forDisplay(TlistTexts::inspectionRow(sequence)));
    ui->lstIP->setCurrentRow(selected >= 0 && selected < ui->lstIP->count() ? selected : -1);
    ui->lstIP->viewport()->update();
}

QString TAutoSeqEditFrame::testerRootText(int index)
{
    return TguiText::forDisplay(TlistTexts::testerRoot(index, m_data->userTesters[std::size_t(index)]));
}

void TAutoSeqEditFrame::buildTree()
{
    QTreeWidget *tree = ui->LstUTS;
    tree->setUpdatesEnabled(false);
    tree->clear();
    for (std::size_t i = 0; i < m_data->userTesters.size(); ++i) {
        auto *root = new QTreeWidgetItem(tree);
        root->setData(0, Qt::UserRole, int(i));
        const auto &sequences = m_data->userTesters[i].sequences;
        for (std::size_t j = 0; j < sequences.size(); ++j) {
            auto *child = new QTreeWidgetItem(root);
            child->setData(0, Qt::UserRole, int(j));
        }
    }
    tree->setUpdatesEnabled(true);
}

void TAutoSeqEditFrame::refreshTesters()
{
    QTreeWidget *tree = ui->LstUTS;
    const int roots = std::min(tree->topLevelItemCount(), int(m_data->userTesters.size()));
    for (int r = 0; r < roots; ++r) {
        QTreeWidgetItem *root = tree->topLevelItem(r);
        const int i = root->data(0, Qt::UserRole).toInt();
        root->setText(0, testerRootText(i));
        const auto &sequences = m_data->userTesters[std::size_t(i)].sequences;
        for (int c = 0; c < root->childCount(); ++c) {
            QTreeWidgetItem *child = root->child(c);
            const int j = child->data(0, Qt::UserRole).toInt();
            if (j >= int(sequences.size()))
                continue;
            const Tautosequence &sequence = sequences[std::size_t(j)];
            child->setText(0, TguiText::forDisplay(TlistTexts::testerChild(j, sequence)));
            child->setData(0, TtreeNodeDelegate::UnusedRole, sequence.isUnused());
        }
    }
    tree->viewport()->update();
}

// Focus alone gives the list a current row and the tree a current node, and
// Ctrl+click leaves them current after deselecting them: only a selection counts.
int TAutoSeqEditFrame::selectedInspection() const
{
    const QList<QListWidgetItem *> selected = ui->lstIP->selectedItems();
    return selected.isEmpty() ? -1 : ui->lstIP->row(selected.first());
}

QTreeWidgetItem *TAutoSeqEditFrame::selectedNode() const
{
    const QList<QTreeWidgetItem *> selected = ui->LstUTS->selectedItems();
    return selected.isEmpty() ? nullptr : selected.first();
}

void TAutoSeqEditFrame::BtnIPClearClick()
{
    const int row = selectedInspection();
    if (row < 0 || row >= int(m_data->inspections.size()))
        return;
    if (m_sink.show({"Confirm", ClearQuestion, MsgIcon::Question, MsgButtons::YesNo, MsgModality::Task}) ==
        MsgAnswer::No)
        return;
    m_data->inspections[std::size_t(row)].makeUnused();
    refreshLists(0);
}

void TAutoSeqEditFrame::BtnUTSClearClick()
{
    QTreeWidgetItem *node = selectedNode();
    if (!node || !node->parent())
        return;
    const auto i = std::size_t(node->parent()->data(0, Qt::UserRole).toInt());
    const auto j = std::size_t(node->data(0, Qt::UserRole).toInt());
    // The nodes are built once; a reload may have brought fewer sequences.
    if (i >= m_data->userTesters.size() || j >= m_data->userTesters[i].sequences.size())
        return;
    if (m_sink.show({"Confirm", ClearQuestion, MsgIcon::Question, MsgButtons::YesNo, MsgModality::Task}) ==
        MsgAnswer::No)
        return;
    m_data->userTesters[i].sequences[j].makeUnused();
    refreshLists(1);
}

// The editor works on the autosequence in place and keeps whatever it left there.
void TAutoSeqEditFrame::editSequence(Tautosequence &sequence)
{
    TsequenceEditor editor(
        nullptr, m_hostData, &m_data->checkitems, sequence, [this] { saveAutosequences(); }, false, &m_sink);
    if (editor.usable())
        editor.exec();
}

void TAutoSeqEditFrame::editInspection(bool save)
{
    const int row = selectedInspection();
    if (row >= 0 && row < int(m_data->inspections.size()))
        editSequence(m_data->inspections[std::size_t(row)]);
    refreshLists(0);
    if (save)
        BtnBackupClick();
}

void TAutoSeqEditFrame::lstIPDblClick()
{
    editInspection(false);
}

void TAutoSeqEditFrame::BtnIPEditClick()
{
    editInspection(true);
}

void TAutoSeqEditFrame::editTreeNode(bool setCaptions)
{
    QTreeWidgetItem *node = selectedNode();
    if (!node)
        return;
    if (node->parent()) {
        const auto i = std::size_t(node->parent()->data(0, Qt::UserRole).toInt());
        const auto j = std::size_t(node->data(0, Qt::UserRole).toInt());
        // The nodes are built once; a reload may have brought fewer sequences.
        if (i >= m_data->userTesters.size() || j >= m_data->userTesters[i].sequences.size())
            return;
        editSequence(m_data->userTesters[i].sequences[j]);
    } else {
        const auto i = std::size_t(node->data(0, Qt::UserRole).toInt());
        if (i >= m_data->userTesters.size())
            return;
        std::string &name = m_data->userTesters[i].name;
        TseqTitleEditForm form(nullptr, TguiText::fromBytes(name));
        if (setCaptions) {
            form.setWindowTitle(QStringLiteral("Tester Name Editor"));
            form.setLabelText(QStringLiteral("Tester Name"));
        }
        if (form.exec() == QDialog::Accepted)
            name = TlistTexts::testerName(TguiText::toBytes(form.text()));
    }
    refreshLists(1);
    if (setCaptions)
        BtnBackupClick();
}

void TAutoSeqEditFrame::LstUTSDblClick()
{
    LstUTSTimer->stop();
    editTreeNode(false);
}

void TAutoSeqEditFrame::BtnUTSEditClick()
{
    editTreeNode(true);
}

// The editor changes the checkitems in place; they are saved whatever it ended with.
void TAutoSeqEditFrame::BtnInstEdClick()
{
    BtnBackupClick();
    try {
        TinstructionEditorForm editor(nullptr, false, m_hostData, &m_data->checkitems, &m_sink);
        editor.exec();
        m_data->saveCheckitems();
    } catch (const TinstructionEditorFormException &) {
        // The editor has said what is wrong with the database files.
    } catch (const std::exception &e) {
        m_sink.error(applicationTitle(), e.what());
    }
}

void TAutoSeqEditFrame::LstUTSMouseDown(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressOnItem = onNodeLabel(event->position().toPoint());
    LstUTSTimer->start();
}

void TAutoSeqEditFrame::LstUTSTimerTimer()
{
    LstUTSTimer->stop();
    m_pressOnItem = false;
}

// The label of a node: its text and the margins around it, not the rest of the row.
bool TAutoSeqEditFrame::onNodeLabel(const QPoint &at) const
{
    QTreeWidgetItem *node = ui->LstUTS->itemAt(at);
    if (!node)
        return false;
    QRect label = ui->LstUTS->visualItemRect(node);
    const int margin = ui->LstUTS->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, ui->LstUTS) + 1;
    const int textWidth = QFontMetrics(ui->LstUTS->font()).horizontalAdvance(node->text(0));
    label.setWidth(std::min(label.width(), textWidth + 2 * margin));
    return label.contains(at);
}

bool TAutoSeqEditFrame::LstUTSExpanding() const
{
    return !m_pressOnItem;
}

bool TAutoSeqEditFrame::LstUTSCollapsing() const
{
    return !m_pressOnItem;
}

// The window that holds the frame may be closed while the frame shows edits that
// only Return To Main Window would save (a double-click edit saves nothing).
void TAutoSeqEditFrame::showEvent(QShowEvent *event)
{
    window()->installEventFilter(this);
    Tkt930Frame::showEvent(event);
}

bool TAutoSeqEditFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == window() && event->type() == QEvent::Close && isVisible())
        BtnBackupClick();
    // Enter edits as a double click does, and like it saves nothing.
    if (watched == ui->lstIP && TenterKey::pressed(event)) {
        lstIPDblClick();
        return true;
    }
    if (watched == ui->LstUTS && TenterKey::pressed(event)) {
        LstUTSDblClick();
        return true;
    }
    if (watched == ui->LstUTS->viewport()) {
        if (event->type() == QEvent::MouseButtonPress)
            LstUTSMouseDown(static_cast<QMouseEvent *>(event));
        if (event->type() == QEvent::MouseButtonDblClick &&
            static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            QTreeWidgetItem *node = ui->LstUTS->currentItem();
            const bool blocked = node && (node->isExpanded() ? !LstUTSCollapsing() : !LstUTSExpanding());
            if (blocked) {
                // Swallowed, so the tree does not expand or collapse the node.
                LstUTSDblClick();
                return true;
            }
            // Any other double click edits too, once the tree has had its turn.
            QMetaObject::invokeMethod(this, &TAutoSeqEditFrame::LstUTSDblClick, Qt::QueuedConnection);
        }
    }
    return Tkt930Frame::eventFilter(watched, event);
}

// ---- transfers, help, return to the host

void TAutoSeqEditFrame::BtnUploadClick()
{
    // What goes out is what is on disk.
    BtnBackupClick();
    TtransferRunner::upload(*m_data, m_hostData, m_sink);
}

void TAutoSeqEditFrame::BtnDownloadClick()
{
    TtransferRunner::download(*m_data, m_hostData, m_sink,
                              TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters,
                              TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters, [this] {
                                  refreshLists(2);
                                  refreshDataStatus();
                              });
}

void TAutoSeqEditFrame::BtnHelpClick()
{
    THelpWindow::showTopic(m_helpWindow, TappDir::helpFolder() / "AUTOSEQUENCEEDITOR.qch",
                           QStringLiteral("autoSequenceEditor.html"), nullptr, this);
}

void TAutoSeqEditFrame::BtnExitClick()
{
    TreturnToHost::run(this, m_hostData, m_sink, [this] { BtnBackupClick(); });
}
