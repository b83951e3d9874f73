#pragma once
// Lets the user pick one restore point of the data folder: number, time, the action
// that replaced the files, and the files kept. The newest is chosen at first.
#include "TrestorePoints.h"
#include <QDialog>
#include <vector>

class QListWidget;

class TrestorePointDialog : public QDialog {
    Q_OBJECT
public:
    TrestorePointDialog(const std::vector<TrestorePoint> &points, QWidget *parent = nullptr);

    // The chosen restore point's number.
    int chosenNumber() const;

private:
    QListWidget *m_list;
};
