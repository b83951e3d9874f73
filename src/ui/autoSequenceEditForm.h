#pragma once
// TsequenceEditor: the modal editor of one autosequence. It changes the autosequence
// it is given in place: titles and setting on OK, the setting word and the item list
// at once, whatever the form ends with.
#include "TstepListEditor.h"
#include <memory>

namespace Ui {
class TsequenceEditor;
}
struct Tautosequence;

class TsequenceEditor : public TstepListEditor {
    Q_OBJECT
public:
    // save puts the frame's autosequences on disk; the editor calls it before the
    // checkitem database editor looks for references in the files. offerCalls admits
    // the "A - Autosequence" checkitems. Messages go to sink (the default sink when null).
    TsequenceEditor(QWidget *owner, TPluginHostInfo *hostData, TInstrDatabase *database, Tautosequence &sequence,
                    std::function<void()> save, bool offerCalls, MessageSink *sink = nullptr);
    ~TsequenceEditor() override;

public Q_SLOTS:
    void btnPrintClick();
    void btnHelpClick();
    void btnOkClick();
    void testerPortlstChange();
    void baudRatelstChange();

protected:
    std::span<std::uint16_t> steps() override;
    void reportFull() override;

private:
    void applyTitles(Tautosequence &target) const;
    void showSetting();
    void writeSetting();

    std::unique_ptr<Ui::TsequenceEditor> ui;
    Tautosequence &m_sequence;
};
