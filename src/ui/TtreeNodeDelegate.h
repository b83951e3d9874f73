#pragma once
// Colours the nodes of the user tester tree: a child whose autosequence is
// empty in silver, the selected node in white, the others in black.
#include <QStyledItemDelegate>

class TtreeNodeDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    // Set on child nodes whose autosequence is unused.
    static constexpr int UnusedRole = Qt::UserRole + 1;

    using QStyledItemDelegate::QStyledItemDelegate;
    static QColor fontColour(bool unusedChild, bool selected);

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
