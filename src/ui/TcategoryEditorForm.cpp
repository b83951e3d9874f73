#include "TcategoryEditorForm.h"
#include "ui_TcategoryEditorForm.h"
#include "TguiText.h"
#include "TtypedText.h"
#include "Twindows1252Validator.h"
#include <cassert>

namespace {
constexpr char FirstLetter = 'A';
constexpr char LastLetter = 'Z';
}

TcategoryEditorForm::TcategoryEditorForm(QWidget *owner, int mode, char letter, TcategoryMap *table)
    : QDialog(owner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      ui(new Ui::TcategoryEditorForm), m_table(table)
{
    assert(table);
    ui->setupUi(this);
    new Twindows1252Validator(ui->txtName); // the descriptor file is Windows-1252
    TcategoryMap &map = *m_table;
    ui->categoryDesignator->clear();
    if (mode == NewCategory) {
        for (char c = FirstLetter; c <= LastLetter; ++c)
            if (map[c].empty())
                ui->categoryDesignator->addItem(QString(QChar(c)));
        // Every letter named: offer them all, a new name then replaces an old one.
        if (ui->categoryDesignator->count() == 0)
            for (char c = FirstLetter; c <= LastLetter; ++c)
                ui->categoryDesignator->addItem(QString(QChar(c)));
    } else {
        ui->categoryDesignator->addItem(QString(QChar(letter)));
        ui->categoryDesignator->setEnabled(false);
    }
    ui->categoryDesignator->setCurrentIndex(0);
    // The key is the letter's code minus 65, not the letter: the name field starts
    // empty in both modes, and the look-up leaves its (empty) entry behind.
    const std::string &name = map[static_cast<char>(letter - 65)];
    ui->txtName->setText(name.empty() ? QString() : TguiText::fromBytes(name));

    connect(ui->categoryDesignator, &QComboBox::currentIndexChanged, this,
            &TcategoryEditorForm::categoryDesignatorChange);
    connect(ui->btnOK, &QPushButton::clicked, this, &TcategoryEditorForm::btnOKClick);
    connect(ui->btnCancel, &QPushButton::clicked, this, &TcategoryEditorForm::btnCancelClick);
}

TcategoryEditorForm::~TcategoryEditorForm() = default;

int TcategoryEditorForm::run(TcategoryMap *table, char letter, int mode, QWidget *owner)
{
    if (!table)
        return -1;
    TcategoryEditorForm form(owner, mode, letter, table);
    return form.exec() == QDialog::Accepted ? 0 : -1;
}

char TcategoryEditorForm::selectedLetter() const
{
    const QString text = ui->categoryDesignator->currentText();
    return text.isEmpty() ? 0 : static_cast<char>(text[0].unicode());
}

void TcategoryEditorForm::categoryDesignatorChange()
{
    const std::string &name = (*m_table)[selectedLetter()];
    if (!name.empty())
        ui->txtName->setText(TguiText::fromBytes(name));
}

void TcategoryEditorForm::btnOKClick()
{
    // Entries are never removed: an empty name marks the letter unused.
    (*m_table)[selectedLetter()] = TtypedText::cleanName(TguiText::toBytes(ui->txtName->text()));
    accept();
}

void TcategoryEditorForm::btnCancelClick()
{
    reject();
}
