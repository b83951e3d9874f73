#pragma once
// TautoSequenceSelector: asks for one autosequence by type and number. The number
// list follows the chosen type, 1 to its count, as in the "A - Autosequence" panel.
#include "TautoSequenceTypes.h"
#include <QDialog>
#include <memory>
#include <string>
#include <vector>

namespace Ui { class TautoSequenceSelector; }

class TautoSequenceSelector : public QDialog {
    Q_OBJECT
public:
    TautoSequenceSelector(QWidget *owner, std::vector<TautoSequenceType> types);
    ~TautoSequenceSelector() override;

    // Starts from a choice: the type with this code (else the first) and number
    // (else the first of its list).
    void select(const std::string &code, int number);
    // The chosen type's index in the list, -1 for none; the chosen number, 0 for none.
    int typeIndex() const;
    int number() const;
    // The type's code followed by the number in two digits ("UT203"), as an "A"
    // checkitem's command holds it; empty when nothing is chosen.
    std::string commandText() const;

public Q_SLOTS:
    void autoSequenceTypeChange();

private:
    std::unique_ptr<Ui::TautoSequenceSelector> ui;
    std::vector<TautoSequenceType> m_types;
};
