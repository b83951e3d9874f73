#include "TdeleteInstructionFrm.h"
#include "ui_TdeleteInstructionFrm.h"
#include "AppDir.h"
#include "TcheckitemReferences.h"
#include "TguiText.h"
#include <QApplication>

TdeleteInstructionFrm::TdeleteInstructionFrm(QWidget *owner)
    : QDialog(owner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      ui(new Ui::TdeleteInstructionFrm)
{
    // The picture lives in a static library: its resource must be pulled in by hand.
    Q_INIT_RESOURCE(deleteWarning);
    ui->setupUi(this);
    ui->affectedSequences->clear();
    connect(ui->btnYes, &QPushButton::clicked, this, &TdeleteInstructionFrm::btnYesClick);
    connect(ui->btnNo, &QPushButton::clicked, this, &TdeleteInstructionFrm::btnNoClick);
}

TdeleteInstructionFrm::~TdeleteInstructionFrm() = default;

bool TdeleteInstructionFrm::confirmDeletion(std::uint16_t number, const std::filesystem::path &appDir, QWidget *owner)
{
    TdeleteInstructionFrm form(owner);
    const TcheckitemReferences references = TcheckitemReferences::find(number, TappDir::dataFolder(appDir));
    if (!references.autosequenceFilesFound) {
        // Nothing can refer to the checkitem: the question is a formality and the answer is ignored.
        form.addLine(QStringLiteral("No Autosequences Found!"));
        form.exec();
        return true;
    }
    for (const std::string &line : references.lines)
        form.addLine(TguiText::fromBytes(line));
    return form.exec() == QDialog::Accepted;
}

void TdeleteInstructionFrm::addLine(const QString &line)
{
    ui->affectedSequences->appendPlainText(line);
}

void TdeleteInstructionFrm::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    FormShow();
}

void TdeleteInstructionFrm::FormShow()
{
    ui->btnNo->setFocus();
    QApplication::beep();
}

void TdeleteInstructionFrm::btnYesClick()
{
    accept();
}

void TdeleteInstructionFrm::btnNoClick()
{
    reject();
}
