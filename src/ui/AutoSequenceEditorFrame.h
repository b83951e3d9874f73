#pragma once
// TAutoSeqEditFrame: the plug-in's main view. It holds the working copy of the
// data set, shows the physical inspections and the user tester tree, clears
// and renames, saves, transfers to and from the analyzer, and opens the help.
#include "VAROAutoSeqEditor.h"
#include <QPointer>
#include <memory>
#include <vector>

class TdataStatusLabel;
namespace Ui {
class TAutoSeqEditFrame;
}
class MessageSink;
class TdataSet;
class THelpWindow;
class QPoint;
class QTimer;
class QMouseEvent;
class QTreeWidgetItem;
struct Tautosequence;

class TAutoSeqEditFrame : public Tkt930Frame {
    Q_OBJECT
public:
    // Containers only: nothing is loaded, both host pointers stay null.
    explicit TAutoSeqEditFrame(QWidget *owner);
    // The full start-up: loads the data set and fills the lists. Messages go to
    // sink (the default sink when null).
    TAutoSeqEditFrame(QWidget *owner, TPluginHostInfo *hostData, void *hostData2, MessageSink *sink = nullptr);
    ~TAutoSeqEditFrame() override;

    void ReloadData() override;

    TdataSet &dataSet() { return *m_data; }
    TPluginHostInfo *hostData() const { return m_hostData; }
    void *hostData2() const { return m_hostData2; }
    // 0 the inspection list, 1 the user tester tree, 2 both.
    void refreshLists(int selector);
    // What the sequence editor calls to put the autosequences on disk.
    void saveAutosequences();

    // The double-click guard of the tree: no expand/collapse when the press that
    // began the double click was on a node's label. Every double click edits.
    void LstUTSMouseDown(QMouseEvent *event);
    bool LstUTSExpanding() const;
    bool LstUTSCollapsing() const;

public Q_SLOTS:
    void BtnRestoreClick();
    void BtnBackupClick();
    void BtnUploadClick();
    void BtnDownloadClick();
    void BtnHelpClick();
    void BtnExitClick();
    void BtnIPClearClick();
    void lstIPDblClick();
    void BtnIPEditClick();
    void LstUTSDblClick();
    void BtnUTSEditClick();
    void BtnUTSClearClick();
    void BtnInstEdClick();
    void LstUTSTimerTimer();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void setUpControls();
    void startUp();
    void buildTree();
    void refreshInspections();
    void refreshTesters();
    QString testerRootText(int index);
    int selectedInspection() const; // -1 when no row is selected
    QTreeWidgetItem *selectedNode() const;
    void editTreeNode(bool setCaptions);
    void editSequence(Tautosequence &sequence);
    void editInspection(bool save);
    bool onNodeLabel(const QPoint &at) const;
    void refreshDataStatus();

    std::unique_ptr<Ui::TAutoSeqEditFrame> ui;
    MessageSink &m_sink;
    TPluginHostInfo *m_hostData = nullptr;
    void *m_hostData2 = nullptr;
    std::unique_ptr<TdataSet> m_data;
    QTimer *LstUTSTimer = nullptr;
    TdataStatusLabel *m_dataStatus = nullptr; // what is wrong with the data folder; hidden when nothing is
    bool m_pressOnItem = false;               // the stored hit-test result of the last left press
    QPointer<THelpWindow> m_helpWindow;       // closed, it deletes itself
};
