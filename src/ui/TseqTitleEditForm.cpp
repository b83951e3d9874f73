#include "TseqTitleEditForm.h"
#include "ui_TseqTitleEditForm.h"
#include "TlengthLimitValidator.h"

TseqTitleEditForm::TseqTitleEditForm(QWidget *owner, const QString &text)
    : QDialog(owner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint), ui(new Ui::TseqTitleEditForm)
{
    ui->setupUi(this);
    ui->sequenceTitle->setText(text);
    // A limit on typing only: a stored name that is already longer stays whole.
    // Installed after the text, which is therefore never judged.
    new TlengthLimitValidator(MaxLength, ui->sequenceTitle);
    ui->sequenceTitle->setFocus();
    connect(ui->Button2, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->Button1, &QPushButton::clicked, this, &QDialog::reject);
}

TseqTitleEditForm::~TseqTitleEditForm() = default;

QString TseqTitleEditForm::text() const
{
    return ui->sequenceTitle->text();
}

void TseqTitleEditForm::setLabelText(const QString &text)
{
    ui->Label1->setText(text);
}

void TseqTitleEditForm::setVisible(bool visible)
{
    QDialog::setVisible(visible);
    // Opening gives the field focus as if tabbed into, which selects all: typing
    // would replace the name that is meant to be edited.
    if (visible)
        ui->sequenceTitle->end(false);
}
