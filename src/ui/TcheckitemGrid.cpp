#include "TcheckitemGrid.h"
#include "TcheckitemListModel.h"
#include "TinstGridHeader.h"
#include "asEdFilterPopup.h"
#include <algorithm>

TcheckitemGrid::TcheckitemGrid(QWidget *parent) : QTableView(parent), m_header(new TinstGridHeader(this))
{
    setHorizontalHeader(m_header);
}

void TcheckitemGrid::setList(TcheckitemListModel *list)
{
    m_list = list;
    setModel(list);
    // Every new choice of rows shows the order it was made in.
    connect(list, &QAbstractItemModel::modelReset, m_header,
            [this] { m_header->showSortState(m_list->sortState()); });
}

bool TcheckitemGrid::chooseFilter(const TopCodeTable &opCodes, TcategoryMap &descriptors)
{
    Tfilter &filter = m_list->filter();
    filter.reset();
    filter.setSort(m_list->sortState().number());
    TinstructionFilterForm form(window(), filter.checklistMode, &opCodes, &descriptors, &filter);
    if (form.exec() != QDialog::Accepted)
        return false;
    m_list->refilter();
    return true;
}

void TcheckitemGrid::setCurrentRow(int row)
{
    const int rows = model() ? model()->rowCount() : 0;
    if (rows > 0)
        setCurrentIndex(model()->index(std::clamp(row, 0, rows - 1), 0));
}

void TcheckitemGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    Q_EMIT currentCellChanged(current.row(), current.column());
}
