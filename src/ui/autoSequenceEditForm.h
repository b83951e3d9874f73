#pragma once
// TsequenceEditor: the modal editor of one autosequence. It changes the autosequence
// it is given in place: titles and setting on OK, the setting word and the item list
// at once, whatever the form ends with.
#include "CategoryDescriptors.h"
#include "TinstStruct.h"
#include <QDialog>
#include <QPointer>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

namespace Ui { class TsequenceEditor; }
class MessageSink;
class QPrinter;
class TInstrDatabase;
class TcheckitemListModel;
class THelpWindow;
struct Tautosequence;
struct TPluginHostInfo;

class TsequenceEditor : public QDialog {
    Q_OBJECT
public:
    // save puts the frame's autosequences on disk; the editor calls it before the
    // checkitem database editor looks for references in the files. offerCalls admits
    // the "A - Autosequence" checkitems. Messages go to sink (the default sink when null).
    TsequenceEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database, Tautosequence &sequence,
                    std::function<void()> save, bool offerCalls, MessageSink *sink = nullptr);
    ~TsequenceEditor() override;

    // False when the checkitem definition files are missing or corrupt: the message
    // has been shown and the editor must not be opened.
    bool usable() const { return m_usable; }
    std::uint8_t sortMode() const;
    const std::vector<std::uint32_t> &displayList() const;
    const TcategoryMap &categoryDescriptors() const { return m_descriptors; }
    const TopCodeTable &opCodes() const { return m_opCodes; }

public Q_SLOTS:
    void btnAddClick();
    void btnRemoveClick();
    void btnClearClick();
    void btnTopClick();
    void btnUpClick();
    void btnDownClick();
    void btnBottomClick();
    void btnFilterClick();
    void btnEditInstClick();
    void btnPrintClick();
    void btnHelpClick();
    void btnOkClick();
    void testerPortlstChange();
    void baudRatelstChange();
    void instListMouseDown(int column);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    // The printer set-up dialog on printer; true when the user confirmed it.
    virtual bool choosePrinter(QPrinter &printer);

private:
    void setUpControls();
    bool loadDefinitions();
    void loadDescriptors();
    void applyTitles(Tautosequence &target) const;
    void showSetting();
    void writeSetting();
    void fillInstList(int selectRow);
    void fillAsList(int selectRow);
    void writeRow(int row, std::uint32_t index); // of asList
    void showEditedSequence(int selectRow);
    int selectedSequenceRow() const;

    std::unique_ptr<Ui::TsequenceEditor> ui;
    MessageSink &m_sink;
    TPluginHostInfo *m_hostData;
    TInstrDatabase *m_db;
    Tautosequence &m_sequence;
    std::function<void()> m_save;
    bool m_offerCalls;
    bool m_usable = false;
    std::filesystem::path m_appDir;

    TopCodeTable m_opCodes;
    TcategoryMap m_descriptors;
    TcheckitemListModel *m_list = nullptr; // rows of instList
    QPointer<THelpWindow> m_helpWindow; // closed, it deletes itself
};
