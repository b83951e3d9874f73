#include "TautoSequenceSelector.h"
#include "ui_TautoSequenceSelector.h"
#include "TguiText.h"
#include <cstdio>

TautoSequenceSelector::TautoSequenceSelector(QWidget *owner, std::vector<TautoSequenceType> types)
    : QDialog(owner), ui(new Ui::TautoSequenceSelector), m_types(std::move(types))
{
    ui->setupUi(this);
    // A tool window; a dialog with an owner opens centred on it.
    setWindowFlags(Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setModal(true);
    for (const TautoSequenceType &type : m_types)
        ui->autoSequenceType->addItem(TguiText::fromBytes(type.text));
    ui->autoSequenceType->setCurrentIndex(m_types.empty() ? -1 : 0);
    autoSequenceTypeChange();
    connect(ui->autoSequenceType, &QComboBox::currentIndexChanged, this, &TautoSequenceSelector::autoSequenceTypeChange);
    connect(ui->btnOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

TautoSequenceSelector::~TautoSequenceSelector() = default;

void TautoSequenceSelector::autoSequenceTypeChange()
{
    const int type = typeIndex();
    const int count = type >= 0 ? m_types[std::size_t(type)].count : 0;
    ui->autoSequenceNumber->clear();
    for (int n = 1; n <= count; ++n)
        ui->autoSequenceNumber->addItem(QString::number(n));
    ui->autoSequenceNumber->setCurrentIndex(count > 0 ? 0 : -1);
}

void TautoSequenceSelector::select(const std::string &code, int number)
{
    int type = 0;
    for (std::size_t i = 0; i < m_types.size(); ++i)
        if (m_types[i].code == code)
            type = int(i);
    ui->autoSequenceType->setCurrentIndex(m_types.empty() ? -1 : type);
    if (number >= 1 && number <= ui->autoSequenceNumber->count())
        ui->autoSequenceNumber->setCurrentIndex(number - 1);
}

int TautoSequenceSelector::typeIndex() const
{
    const int type = ui->autoSequenceType->currentIndex();
    return type >= 0 && std::size_t(type) < m_types.size() ? type : -1;
}

int TautoSequenceSelector::number() const
{
    return ui->autoSequenceNumber->currentIndex() + 1;
}

std::string TautoSequenceSelector::commandText() const
{
    const int type = typeIndex();
    if (type < 0 || number() == 0)
        return {};
    char digits[8];
    std::snprintf(digits, sizeof digits, "%02d", number());
    return m_types[std::size_t(type)].code + digits;
}
