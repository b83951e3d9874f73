#pragma once
// The "Checkitem Filter" dialog: picks the categories and op codes a checkitem
// list shows. It writes into the caller's Tfilter as the user works and applies
// nothing itself; whatever it wrote stays there after Cancel as well.
#include "CategoryDescriptors.h"
#include "Tfilter.h"
#include "TinstStruct.h"
#include <QDialog>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Ui { class TinstructionFilterForm; }

// Thrown when constructed without op-code information; what() is "Invalid Checkitem Name List".
struct TinstructionFilterException : std::runtime_error {
    TinstructionFilterException(const std::string &text, std::string file, int line)
        : std::runtime_error(text), file(std::move(file)), line(line) {}
    std::string file; // "asEdFilterPopup"
    int line;
};

class TinstructionFilterForm : public QDialog {
    Q_OBJECT
public:
    // opInfo may be null (then the constructor throws). The dialog writes into *filter while
    // the user works and applies nothing; exec() gives QDialog::Accepted for OK.
    TinstructionFilterForm(QWidget *owner, bool checklistMode, const TopCodeTable *opInfo,
                           TcategoryMap *descriptors, Tfilter *filter);
    ~TinstructionFilterForm() override;

public Q_SLOTS:
    void lstBasicCatChange();
    void lstBasicOpChange();
    void lstAdvCatClick();
    void lstAdvOpClick();
    void btnSelectAllCatClick();
    void btnSelectAllOpClick();
    void filterSelectChange();
    void btnOkClick();
    void btnCancelClick();

private:
    std::unique_ptr<Ui::TinstructionFilterForm> ui;
    Tfilter *m_filter;
    std::vector<char> m_ops; // op characters in the order of the op lists' items
};
