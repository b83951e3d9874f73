#include "TcheckitemListModel.h"
#include "TInstrDatabase.h"
#include "TguiText.h"
#include "TinstGridText.h"

namespace {
constexpr int Columns = 4;
}

TcheckitemListModel::TcheckitemListModel(const TInstrDatabase *database, const TcategoryMap &descriptors,
                                         bool checklistMode, EmptyList empty, QObject *parent)
    : QAbstractTableModel(parent), m_db(database), m_descriptors(descriptors), m_empty(empty)
{
    m_filter.checklistMode = checklistMode;
    m_filter.reset();
}

int TcheckitemListModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_shown.empty() && m_empty == EmptyList::BlankRow ? 1 : int(m_shown.size());
}

int TcheckitemListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Columns;
}

QVariant TcheckitemListModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    if (std::size_t(index.row()) >= m_shown.size())
        return QString(); // the blank row of an empty list
    const std::uint32_t item = m_shown[std::size_t(index.row())];
    return TguiText::fromBytes(TinstGridText::rowForEditor(*m_db, item, m_descriptors)[std::size_t(index.column())]);
}

QVariant TcheckitemListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Columns)
        return {};
    return TguiText::fromBytes(TinstGridText::header()[std::size_t(section)]);
}

Qt::ItemFlags TcheckitemListModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled : Qt::NoItemFlags;
}

void TcheckitemListModel::refilter()
{
    beginResetModel();
    m_filter.setSort(m_sort.number());
    if (m_db)
        m_filter.apply(m_db->slots(), m_shown, m_descriptors);
    else
        m_shown.clear();
    endResetModel();
}

void TcheckitemListModel::pressHeader(int column)
{
    m_sort.pressHeader(column);
    refilter();
}

void TcheckitemListModel::resetOrder()
{
    m_sort = TsortState(0);
    m_filter.reset();
    refilter();
}

void TcheckitemListModel::append(std::uint32_t index)
{
    beginResetModel();
    m_shown.push_back(index);
    endResetModel();
}

void TcheckitemListModel::recordsChanged()
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(this->index(0, 0), this->index(rowCount() - 1, Columns - 1));
}
