#pragma once
// What a technician sees below the plug-in buttons: the data folder in use, how much
// of it is used, when it was last saved and transferred, what is wrong with it, and
// the recent folders, each a click away.
#include <QWidget>
#include <filesystem>
#include <vector>

class QFormLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

class ThostDashboard : public QWidget {
    Q_OBJECT
public:
    explicit ThostDashboard(QWidget *parent = nullptr);

    // Reads the folder's data set again; recent lists the folders offered besides it.
    void refresh(const std::filesystem::path &applicationFolder, const std::vector<std::filesystem::path> &recent);

Q_SIGNALS:
    void folderChosen(const QString &folder);
    // "Verify..." after an upload: the host compares the analyzer with the data set.
    void verifyRequested();

private:
    QLabel *addRow(QFormLayout *form, const QString &label, const QString &name);

    QLabel *m_folder, *m_checkitems, *m_inspections, *m_sequences, *m_checklists, *m_saved, *m_transfer, *m_warnings;
    QPushButton *m_verify;
    QWidget *m_recentRow;
    QVBoxLayout *m_recentButtons;
};
