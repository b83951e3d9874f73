#pragma once
// The frames' line about what is wrong with the data folder (a folder others may
// write, files that failed to load); hidden when nothing is.
#include <QLabel>

class TdataSet;

class TdataStatusLabel : public QLabel {
    Q_OBJECT
public:
    explicit TdataStatusLabel(QWidget *parent);
    void showWarnings(const TdataSet &data);
};
