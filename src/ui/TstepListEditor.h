#pragma once
// TstepListEditor: what the sequence editor and the checklist editor share: the
// available checkitems (filter, sort, the checkitem database editor) on the left,
// the record's own item list on the right with Add, Remove, Clear and the moves.
// A derived form builds its controls, then hands the grids to bindLists().
#include "CategoryDescriptors.h"
#include "TinstStruct.h"
#include <QDialog>
#include <QPointer>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

class MessageSink;
class QPrinter;
class QTableWidget;
struct TInstr;
class TInstrDatabase;
class TcheckitemGrid;
class TcheckitemListModel;
class THelpWindow;
struct TPluginHostInfo;

class TstepListEditor : public QDialog {
    Q_OBJECT
public:
    // save puts the frame's data on disk; the editor calls it before the checkitem
    // database editor looks for references in the files. offerCalls admits the
    // "A - Autosequence" checkitems. Messages go to sink (the default sink when null).
    TstepListEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database, std::function<void()> save,
                    bool offerCalls, MessageSink *sink);
    ~TstepListEditor() override;

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
    void instListMouseDown(int column);

protected:
    struct TstepControls {
        TcheckitemGrid *instList;
        QTableWidget *asList;
        QWidget *btnAdd, *btnRemove, *btnClear, *btnTop, *btnUp, *btnDown, *btnBottom, *btnFilter, *btnEditInst;
    };
    // Wires the controls, loads the op codes and descriptors and fills both grids;
    // false (usable() stays false) when the definition files cannot be read.
    bool bindLists(const TstepControls &controls);

    // The item positions of the record being edited (24 or 96).
    virtual std::span<std::uint16_t> steps() = 0;
    // Add found the list full.
    virtual void reportFull() = 0;
    // After save (which may reload the files): false when the edited record is gone;
    // the editor has then said so and closed.
    virtual bool recordAfterSave() { return true; }
    // The Command cell of a step; by default the checkitem's command text.
    virtual std::string stepCommand(const TInstr &record, const std::string &shown) const;

    // The printer set-up dialog on printer; true when the user confirmed it.
    virtual bool choosePrinter(QPrinter &printer);
    // True when the printer was chosen; a PDF gets the printout's resolution.
    bool preparePrinter(QPrinter &printer);
    void showHelp(const char *file, const char *topic);
    bool eventFilter(QObject *watched, QEvent *event) override;

    MessageSink &m_sink;
    TPluginHostInfo *m_hostData;
    TInstrDatabase *m_db;
    std::filesystem::path m_appDir;
    TcategoryMap m_descriptors;

private:
    bool loadDefinitions();
    void loadDescriptors();
    void fillInstList(int selectRow);
    void fillAsList(int selectRow);
    void writeRow(int row, std::uint32_t index); // of asList
    void showEditedSteps(int selectRow);
    int selectedStepRow();

    TstepControls m_controls{};
    std::function<void()> m_save;
    bool m_offerCalls;
    bool m_usable = false;
    TopCodeTable m_opCodes;
    TcheckitemListModel *m_list = nullptr; // rows of instList
    QPointer<THelpWindow> m_helpWindow;    // closed, it deletes itself
};
