#pragma once
// The checkitem grid of both editors (instList): a table over a checkitem list whose
// header carries the sort picture of the list's sort state, and the filter dialog
// on the list's filter.
#include "CategoryDescriptors.h"
#include "TinstStruct.h"
#include <QTableView>

class TcheckitemListModel;
class TinstGridHeader;

class TcheckitemGrid : public QTableView {
    Q_OBJECT
public:
    explicit TcheckitemGrid(QWidget *parent = nullptr);

    void setList(TcheckitemListModel *list);
    TinstGridHeader *sortHeader() const { return m_header; }

    // Runs the filter dialog on the list's filter, reset first; on OK the list is
    // filtered again and the result is true.
    bool chooseFilter(const TopCodeTable &opCodes, TcategoryMap &descriptors);

    // -1 when there is no current row.
    int currentRow() const { return currentIndex().row(); }
    // row is clamped into the list; an empty list has no row to select.
    void setCurrentRow(int row);

Q_SIGNALS:
    // The current cell moved, by mouse, keys or code; silent while signals are blocked.
    void currentCellChanged(int row, int column);

protected:
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private:
    TinstGridHeader *m_header;
    TcheckitemListModel *m_list = nullptr;
};
