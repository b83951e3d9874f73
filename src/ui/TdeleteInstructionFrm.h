#pragma once
// Warns before a checkitem is deleted and lists the autosequences that use it.
#include <QDialog>
#include <cstdint>
#include <filesystem>
#include <memory>

namespace Ui { class TdeleteInstructionFrm; }

class TdeleteInstructionFrm : public QDialog {
    Q_OBJECT
public:
    explicit TdeleteInstructionFrm(QWidget *owner = nullptr);
    ~TdeleteInstructionFrm() override;

    // Scans every Data/*.asq of appDir's data folder; true when the checkitem may be deleted
    // (always true when there is no .asq file).
    static bool confirmDeletion(std::uint16_t number, const std::filesystem::path &appDir,
                                QWidget *owner = nullptr);

    void addLine(const QString &line);

public Q_SLOTS:
    void FormShow();
    void btnYesClick();
    void btnNoClick();

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<Ui::TdeleteInstructionFrm> ui;
};
