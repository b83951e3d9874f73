#pragma once
// The fixed row of the checkitem grid: a header whose sorted column shows its sort
// picture at the left edge with the caption moved right past it.
#include "TsortState.h"
#include <QHeaderView>
#include <QPixmap>

class TinstGridHeader : public QHeaderView {
    Q_OBJECT
public:
    static constexpr int CaptionGap = 6;  // between the picture and the caption
    static constexpr int CaptionIndent = 2; // caption of an unsorted column

    explicit TinstGridHeader(QWidget *parent = nullptr);

    // column -1 shows no picture.
    void setSortPicture(int column, const QPixmap &picture);
    // The up or down picture on the sorted column; none in database order.
    void showSortState(TsortState sort);
    // What a sorted caption needs beside it.
    static int sortPictureWidth();
    int sortColumn() const { return m_column; }
    const QPixmap &sortPicture() const { return m_picture; }

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;

private:
    int m_column = -1;
    QPixmap m_picture;
};
