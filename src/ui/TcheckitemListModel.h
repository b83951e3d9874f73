#pragma once
// The checkitems a list shows, in its order: the filter's choice among the first 250
// slots of the database, sorted as its sort state says, one row per checkitem with
// the grid texts "No.", "Category", "Op Code" and "Command". The database and the
// category names are read when a row is drawn, so a changed record shows at once.
#include "CategoryDescriptors.h"
#include "Tfilter.h"
#include "TsortState.h"
#include <QAbstractTableModel>
#include <cstdint>
#include <vector>

class TInstrDatabase;

class TcheckitemListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    // The database editor keeps one blank row in an empty list; the sequence editor none.
    enum class EmptyList { NoRows, BlankRow };

    // Sorted by number, filter reset; nothing is shown until refilter().
    TcheckitemListModel(const TInstrDatabase *database, const TcategoryMap &descriptors, bool checklistMode,
                        EmptyList empty, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    // Database indexes in row order.
    const std::vector<std::uint32_t> &shownItems() const { return m_shown; }
    TsortState sortState() const { return m_sort; }
    // The filter dialog writes into it; refilter() applies it.
    Tfilter &filter() { return m_filter; }

    // Chooses the rows again with the filter and the sort state.
    void refilter();
    // A press on column's header: the sort state's rule, then refilter().
    void pressHeader(int column);
    // Database order without a filter (after the database was replaced).
    void resetOrder();
    // A new checkitem at the end of the list, wherever the order would put it.
    void append(std::uint32_t index);
    // The records behind the rows changed: draw them again.
    void recordsChanged();

private:
    const TInstrDatabase *m_db;
    const TcategoryMap &m_descriptors;
    EmptyList m_empty;
    Tfilter m_filter;
    TsortState m_sort{1};
    std::vector<std::uint32_t> m_shown;
};
