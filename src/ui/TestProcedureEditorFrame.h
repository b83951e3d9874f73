#pragma once
// TTestProcEditFrame: the main view of the checklist plug-in. It holds its own
// working copy of the data set, lists the 500 checklists, edits and clears them
// (saving the checklist file as a set-level save), opens the checkitem editor in
// checklist mode, transfers to and from the analyzer, and opens the help.
#include "VAROAutoSeqEditor.h"
#include <QPointer>
#include <memory>

namespace Ui {
class TTestProcEditFrame;
}
class MessageSink;
class TdataSet;
class TdataStatusLabel;
class THelpWindow;

class TTestProcEditFrame : public Tkt930Frame {
    Q_OBJECT
public:
    // Loads the data set and fills the list. Messages go to sink (the default sink when null).
    TTestProcEditFrame(QWidget *owner, TPluginHostInfo *hostData, void *hostData2, MessageSink *sink = nullptr);
    ~TTestProcEditFrame() override;

    void ReloadData() override;
    TdataSet &dataSet() { return *m_data; }
    // What this frame edits: the checklists and the checkitems (through the checkitem editor).
    static constexpr unsigned EditedParts = 1u | 8u;

public Q_SLOTS:
    void BtnTPEditClick();
    void BtnTPClearClick();
    void BtnInstEdClick();
    void BtnUploadClick();
    void BtnDownloadClick();
    void BtnHelpClick();
    void BtnExitClick();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void refreshList();
    void save();
    int selectedChecklist() const; // -1 when no row is selected

    std::unique_ptr<Ui::TTestProcEditFrame> ui;
    MessageSink &m_sink;
    TPluginHostInfo *m_hostData = nullptr;
    void *m_hostData2 = nullptr;
    std::unique_ptr<TdataSet> m_data;
    TdataStatusLabel *m_dataStatus = nullptr;
    QPointer<THelpWindow> m_helpWindow; // closed, it deletes itself
};
