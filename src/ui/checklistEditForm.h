#pragma once
// TchecklistEditor: the modal editor of one checklist: its title and up to 96 steps.
// It changes the checklist in place: the steps at once, the title on OK. It holds the
// checklist's index, not the record: saving may reload the table, which rebuilds it.
// Steps that are "A" checkitems show the autosequence they run.
#include "TstepListEditor.h"
#include <memory>
#include <vector>

namespace Ui {
class TchecklistEditor;
}
class TTestProc;
class TTestProcList;
struct Tautosequence;
struct TuserTester;

class TchecklistEditor : public TstepListEditor {
    Q_OBJECT
public:
    // inspections and testers name what an "A" step runs; save puts the frame's data
    // on disk before the checkitem database editor looks for references.
    TchecklistEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database, TTestProcList &checklists,
                     std::size_t index, const std::vector<Tautosequence> &inspections,
                     const std::vector<TuserTester> &testers, std::function<void()> save, MessageSink *sink = nullptr);
    ~TchecklistEditor() override;

public Q_SLOTS:
    void btnPrintClick();
    void btnHelpClick();
    void btnOkClick();

    // Closed without OK: the steps stay; an unused checklist that got steps takes the
    // typed title, or its steps would stay hidden behind the unused mark.
    void done(int result) override;

protected:
    std::span<std::uint16_t> steps() override;
    void reportFull() override;
    std::string stepCommand(const TInstr &record, const std::string &shown) const override;
    bool recordAfterSave() override;

private:
    void applyTitle(TTestProc &target) const;
    TTestProc *checklist() const; // null once the table no longer has it

    std::unique_ptr<Ui::TchecklistEditor> ui;
    TTestProcList &m_checklists;
    std::size_t m_index;
    bool m_gone = false;
    const std::vector<Tautosequence> &m_inspections;
    const std::vector<TuserTester> &m_testers;
};
