#include "asEdFilterPopup.h"
#include "ui_asEdFilterPopup.h"
#include "TInstrDatabase.h"
#include "TguiText.h"
#include <QSignalBlocker>
#include <cassert>

namespace {
constexpr char FirstLetter = 'A';
constexpr int LetterCount = 26;

std::vector<char> allLetters()
{
    std::vector<char> letters;
    letters.reserve(LetterCount);
    for (int j = 0; j < LetterCount; ++j)
        letters.push_back(static_cast<char>(FirstLetter + j));
    return letters;
}

// Item 0 of a basic list stands for everything, item i for entry i - 1.
template <typename T>
std::vector<T> basicChoice(int item, const std::vector<T> &all)
{
    if (item <= 0)
        return all;
    return {all[static_cast<std::size_t>(item - 1)]};
}

// The entries whose boxes are checked; box j stands for entry j.
template <typename T>
std::vector<T> checkedChoice(const QListWidget &list, const std::vector<T> &all)
{
    std::vector<T> chosen;
    for (int j = 0; j < list.count(); ++j)
        if (list.item(j)->checkState() == Qt::Checked)
            chosen.push_back(all[static_cast<std::size_t>(j)]);
    return chosen;
}

void addCheckItem(QListWidget &list, const QString &text)
{
    auto *item = new QListWidgetItem(text, &list);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Unchecked);
}

void checkAll(QListWidget &list)
{
    const QSignalBlocker block(list);
    for (int j = 0; j < list.count(); ++j)
        list.item(j)->setCheckState(Qt::Checked);
    list.viewport()->update();
}
}

TinstructionFilterForm::TinstructionFilterForm(QWidget *owner, bool checklistMode, const TopCodeTable *opInfo,
                                               TcategoryMap *descriptors, Tfilter *filter)
    : QDialog(owner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint),
      ui(new Ui::TinstructionFilterForm), m_filter(filter)
{
    if (!opInfo)
        throw TinstructionFilterException("Invalid Checkitem Name List", "asEdFilterPopup", __LINE__);
    assert(filter);
    ui->setupUi(this);

    ui->lstBasicCat->clear();
    ui->lstAdvCat->clear();
    ui->lstBasicCat->addItem(QStringLiteral("<All Categories>"));
    const TcategoryMap noDescriptors;
    for (char letter : allLetters()) {
        const QString text = TguiText::fromBytes(
            CategoryDescriptors::displayText(descriptors ? *descriptors : noDescriptors, letter));
        ui->lstBasicCat->addItem(text);
        addCheckItem(*ui->lstAdvCat, text);
    }

    m_ops.clear();
    ui->lstBasicOp->clear();
    ui->lstBasicOp->addItem(QStringLiteral("<All Op Codes>"));
    TInstrDatabase::setNames(*opInfo);
    // Character order here, unlike the editor's op list.
    for (const auto &[op, info] : *opInfo) {
        const QString name = TguiText::fromBytes(info.name);
        ui->lstBasicOp->addItem(name);
        addCheckItem(*ui->lstAdvOp, name);
        m_ops.push_back(op);
    }

    ui->lstBasicCat->setCurrentIndex(0);
    ui->lstBasicOp->setCurrentIndex(0);
    m_filter->checklistMode = checklistMode;

    connect(ui->lstBasicCat, &QComboBox::currentIndexChanged, this, &TinstructionFilterForm::lstBasicCatChange);
    connect(ui->lstBasicOp, &QComboBox::currentIndexChanged, this, &TinstructionFilterForm::lstBasicOpChange);
    connect(ui->lstAdvCat, &QListWidget::itemChanged, this, &TinstructionFilterForm::lstAdvCatClick);
    connect(ui->lstAdvOp, &QListWidget::itemChanged, this, &TinstructionFilterForm::lstAdvOpClick);
    connect(ui->btnSelectAllCat, &QPushButton::clicked, this, &TinstructionFilterForm::btnSelectAllCatClick);
    connect(ui->btnSelectAllOp, &QPushButton::clicked, this, &TinstructionFilterForm::btnSelectAllOpClick);
    connect(ui->filterSelect, &QTabWidget::currentChanged, this, &TinstructionFilterForm::filterSelectChange);
    connect(ui->btnOk, &QPushButton::clicked, this, &TinstructionFilterForm::btnOkClick);
    connect(ui->btnCancel, &QPushButton::clicked, this, &TinstructionFilterForm::btnCancelClick);
}

TinstructionFilterForm::~TinstructionFilterForm() = default;

void TinstructionFilterForm::lstBasicCatChange()
{
    m_filter->categorySet = basicChoice(ui->lstBasicCat->currentIndex(), allLetters());
}

void TinstructionFilterForm::lstBasicOpChange()
{
    m_filter->opSet = basicChoice(ui->lstBasicOp->currentIndex(), m_ops);
}

void TinstructionFilterForm::lstAdvCatClick()
{
    m_filter->categorySet = checkedChoice(*ui->lstAdvCat, allLetters());
}

void TinstructionFilterForm::lstAdvOpClick()
{
    m_filter->opSet = checkedChoice(*ui->lstAdvOp, m_ops);
}

void TinstructionFilterForm::btnSelectAllCatClick()
{
    checkAll(*ui->lstAdvCat);
    m_filter->categorySet = allLetters();
}

void TinstructionFilterForm::btnSelectAllOpClick()
{
    checkAll(*ui->lstAdvOp);
    m_filter->opSet = m_ops;
}

void TinstructionFilterForm::filterSelectChange()
{
    // The page now shown decides both sets.
    if (ui->filterSelect->currentWidget() == ui->basicPage) {
        lstBasicCatChange();
        lstBasicOpChange();
    } else {
        lstAdvCatClick();
        lstAdvOpClick();
    }
}

void TinstructionFilterForm::btnOkClick()
{
    accept();
}

void TinstructionFilterForm::btnCancelClick()
{
    reject();
}
