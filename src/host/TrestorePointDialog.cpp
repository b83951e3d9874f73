#include "TrestorePointDialog.h"
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

TrestorePointDialog::TrestorePointDialog(const std::vector<TrestorePoint> &points, QWidget *parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Restore Previous Data Set"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Choose the data files to put back. Each entry holds the files that "
                                                "the named action replaced, newest first."),
                                 this));
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("restorePoints"));
    for (const TrestorePoint &point : points) {
        QStringList files;
        for (const std::string &file : point.files)
            files << QString::fromStdString(file);
        auto *item = new QListWidgetItem(QStringLiteral("%1.  %2  %3:  %4")
                                             .arg(point.number)
                                             .arg(QString::fromStdString(point.time), QString::fromStdString(point.action),
                                                  files.isEmpty() ? QStringLiteral("(no files)") : files.join(u' ')),
                                         m_list);
        item->setData(Qt::UserRole, point.number);
    }
    m_list->setCurrentRow(0);
    layout->addWidget(m_list);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    layout->addWidget(buttons);
    resize(560, 320);
}

int TrestorePointDialog::chosenNumber() const
{
    const QListWidgetItem *item = m_list->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : 0;
}
