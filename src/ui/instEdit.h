#pragma once
// TinstructionEditorForm: the modal checkitem database editor. It lists the
// checkitems of the first 250 slots in a grid, edits one at a time through the
// parameter panel of its op code, and filters, sorts, deletes, imports, exports,
// prints and syncs them. It changes the database in place; its owner saves it.
#include "CategoryDescriptors.h"
#include "TinstStruct.h"
#include <QDialog>
#include <QPointer>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Ui { class TinstructionEditorForm; }
class MessageSink;
class QFileDialog;
class QPrinter;
class TInstrDatabase;
class THelpWindow;
class TInstrPanel;
class TcheckitemListModel;
struct TInstr;
struct TPluginHostInfo;

// A checkitem whose op code has no panel: the database or its files are corrupt.
struct TinstructionEditorFormException : std::runtime_error {
    TinstructionEditorFormException(const std::string &text, int line)
        : std::runtime_error(text), file("instEdit"), line(line) {}
    std::string file;
    int line;
};

class TinstructionEditorForm : public QDialog {
    Q_OBJECT
public:
    // Reports through sink (the default sink when null). Throws
    // TinstructionEditorFormException after its message when a definition file is
    // corrupt or a checkitem cannot be shown.
    TinstructionEditorForm(QWidget *owner, bool checklistMode, TPluginHostInfo *hostData,
                           TInstrDatabase *database, MessageSink *sink = nullptr);
    // Only a guard: says so and builds a form that can do nothing but close.
    TinstructionEditorForm();
    ~TinstructionEditorForm() override;

    // The checkitems the grid shows, in its order.
    const TcheckitemListModel &checkitemList() const { return *m_list; }
    const TcategoryMap &categoryDescriptors() const { return m_categoryDescriptors; }

    // Closing is allowed exactly when no edit is open.
    bool FormCloseQuery() const;

public Q_SLOTS:
    void FormShow();
    void btnNewCatClick();
    void btnEditCatClick();
    void btnFilterClick();
    void btnEditInstClick();
    void btnNewInstClick();
    void btnDeleteClick();
    void btnExportClick();
    void btnImportClick();
    void btnSyncClick();
    void btnHelpClick();
    void btnOkClick();
    void btnUpdateClick();
    void btnCancelClick();
    void btnPrintClick();
    void lstOpChange();
    void lstCatChange();
    void instListClick();
    void instListDblClick();
    void instListMouseDown(int column);
    void reject() override; // Escape and the close button

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    // Shows instPrintDialog on printer; true when the user chose to print.
    virtual bool choosePrinter(QPrinter &printer);

private:
    void setUpControls();
    void makeDegenerate();
    void buildPanels();
    [[noreturn]] void reportCorruptFile(const std::filesystem::path &file);
    void setEditTabOrder();
    void buildOpList();
    void loadCategories();
    void rebuildCategoryList();
    QString categoryText(char letter) const;

    void fillGrid(int selectRow);
    void sizeColumns();
    int selectedRow() const;
    TInstr &selectedRecord();
    void showRecord(int row);
    void reportUnfitCommand(std::uint32_t index, const TInstr &record, int code);

    // The two states of the form: browsing the list, editing one checkitem.
    void setEditing();
    void setBrowsing();
    void disablePanels();
    std::vector<QWidget *> listControls() const;
    std::vector<QWidget *> editControls() const;
    // The panel of the op code selected in lstOp; FATAL ERROR and throws when there is none.
    TInstrPanel &selectedOpPanel(const std::string &fatalText, int line);
    char selectedOpCode() const;
    char selectedCategory() const;
    void resetListOrder();
    [[noreturn]] void reportFatal(const std::string &text, int line);
    template <class Handler> void guarded(Handler handler);

    std::unique_ptr<Ui::TinstructionEditorForm> ui;
    MessageSink &m_sink;
    bool m_checklistMode = false;
    TPluginHostInfo *m_hostData = nullptr;
    TInstrDatabase *m_db = nullptr;
    std::filesystem::path m_appDir;

    TcategoryMap m_categoryDescriptors;
    TcategoryMap m_savedCategoryDescriptors; // as in catdes.dat
    std::map<char, TInstrPanel *> m_opPanelMap; // children of pnlInst
    TopCodeTable m_opInfoMap;
    std::map<char, int> m_opOrderMap;
    std::map<char, int> m_opComboMap;
    std::map<int, char> m_revOpComboMap;
    int m_lastRow = 0;
    int m_savedOpIndex = -1;
    int m_savedCatIndex = -1;
    std::set<std::uint32_t> m_unfitReported; // checkitems whose command did not fit their panel

    TcheckitemListModel *m_list = nullptr; // rows of instList
    QFileDialog *instTableOpenDlg = nullptr;
    QPointer<THelpWindow> m_helpWindow; // closed, it deletes itself
};
