#pragma once
// The differences of a comparison, grouped by kind with a count each, in the
// words kt930ctl diff prints them; "No differences" when there are none.
#include <QDialog>

class QLabel;
class QTreeWidget;
class TdataSetComparison;

class TcomparisonDialog : public QDialog {
    Q_OBJECT
public:
    // caption names the two sides, e.g. "This PC against the KT930".
    TcomparisonDialog(const TdataSetComparison &comparison, const QString &caption, QWidget *parent = nullptr);

    QTreeWidget *differences() const { return m_differences; }
    QString summary() const;

private:
    QLabel *m_summary;
    QTreeWidget *m_differences;
};
