#include "instrpanel.h"
#include "CommandCodec.h"
#include "OpCodeDefinitions.h"
#include "TInstr.h"
#include "TautoSequenceTypes.h"
#include "TguiText.h"
#include "TlengthLimitValidator.h"
#include "Twindows1252Validator.h"
#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QValidator>
#include <algorithm>

namespace {
[[noreturn]] void fail(int code, int line)
{
    throw TInstrPanelError(code, __FILE__, line);
}

// Text that reaches a box without a key press (pasted, dropped) obeys the key filter's
// rules. A tab or a line break would start another value in the command text, so a
// text box takes them as blanks. The command text holds 41 characters with the
// tabs between values: a box takes no more than the other boxes leave.
class TfieldValidator : public TlengthLimitValidator {
public:
    TfieldValidator(int tag, std::function<qsizetype()> room, QLineEdit *box)
        : TlengthLimitValidator(std::move(room), box), m_tag(tag)
    {
    }
    State validate(QString &input, int &pos) const override
    {
        // Before the upper-casing, which goes through the code page and would turn them into blanks.
        Twindows1252Validator::removeUnstorable(input, pos);
        for (QChar &c : input)
            if (c.unicode() < 32 || c.unicode() == 127)
                c = QLatin1Char(' ');
        std::string text = TguiText::toBytes(input);
        if (!TcommandCodec::fitsType(m_tag, text))
            return Invalid;
        if (m_tag == TfieldSpec::UpperCaseText)
            input = TguiText::fromBytes(text);
        return TlengthLimitValidator::validate(input, pos);
    }

private:
    int m_tag;
};
}

TInstrPanel::TInstrPanel(QWidget *owner, const std::filesystem::path &fileName,
                         int width, int top, int left, int rowGap, int labelWidth)
    : QWidget(owner), m_rowGap(rowGap), m_labelWidth(labelWidth), m_codec(std::make_unique<TcommandCodec>())
{
    std::vector<std::string> lines = OpCodeDefinitions::readLines(fileName);
    if (lines.size() < 2 || lines[0].size() < 2)
        throw TopCodeFileCorrupt(fileName.string());
    m_opCode = lines[0][0];
    lines.erase(lines.begin(), lines.begin() + 2);

    m_layout = new QGridLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setVerticalSpacing(rowGap);
    if (m_opCode == 'A') {
        ParseAutoField(lines);
        initAuto();
    } else {
        ParseCommands(lines);
    }
    m_layout->setColumnStretch(1, 1);
    m_layout->setRowStretch(m_layout->rowCount(), 1);

    setMinimumWidth(width);
    if (owner && owner->layout())
        owner->layout()->addWidget(this);
    else
        setGeometry(left, top, width, PanelHeight);
}

TInstrPanel::~TInstrPanel()
{
    CleanUp();
}

void TInstrPanel::CleanUp()
{
    // The controls are children of the panel; dropping the pointers is what is left.
    m_boxes.clear();
    *m_codec = TcommandCodec();
    m_autoCodes.clear();
    m_autoTexts.clear();
    m_autoCounts.clear();
}

// The definition parser's own reading, so a range means the same to both.
void TInstrPanel::MinMax(const std::string &typeSpec, dataInfo *info)
{
    *info = dataInfo();
    TdataInfo range;
    if (!TfieldSpec::readRange(typeSpec, range))
        return;
    info->hasRange = 1;
    info->minimum = range.minimum;
    info->maximum = range.maximum;
}

void TInstrPanel::ParseCommands(const std::vector<std::string> &lines)
{
    if (lines.empty())
        return;
    if (PanelHeight / int(lines.size()) < 1)
        fail(2, __LINE__);
    *m_codec = TcommandCodec::fromFieldLines(lines);
    for (const TfieldSpec &field : m_codec->fields()) {
        addFieldRow(int(m_boxes.size()), field.leftLabel, field.rightLabel);
        QLineEdit *box = m_boxes.back();
        new TfieldValidator(field.typeTag, [this, box] { return roomLeftFor(box); }, box);
    }
}

void TInstrPanel::addFieldRow(int row, const std::string &left, const std::string &right)
{
    auto *leftLabel = new QLabel(TguiText::fromBytes(left), this);
    leftLabel->setObjectName(QStringLiteral("leftLabel%1").arg(row));
    leftLabel->setMinimumWidth(m_labelWidth);
    auto *box = new QLineEdit(this);
    box->setObjectName(QStringLiteral("field%1").arg(row));
    box->installEventFilter(this);
    connect(box, &QLineEdit::textEdited, this, [this] { m_edited = true; });
    auto *rightLabel = new QLabel(TguiText::fromBytes(right), this);
    rightLabel->setObjectName(QStringLiteral("rightLabel%1").arg(row));
    m_layout->addWidget(leftLabel, row, 0);
    m_layout->addWidget(box, row, 1);
    m_layout->addWidget(rightLabel, row, 2);
    m_boxes.push_back(box);
}

qsizetype TInstrPanel::roomLeftFor(const QLineEdit *box) const
{
    qsizetype used = qsizetype(m_boxes.size()) - 1; // the tabs between the values
    for (const QLineEdit *other : m_boxes)
        if (other != box)
            used += other->text().size();
    return qsizetype(TcommandCodec::CommandLength) - used;
}

void TInstrPanel::ParseAutoField(const std::vector<std::string> &lines)
{
    std::vector<TautoSequenceType> types;
    if (!TautoSequenceTypes::parse(lines, types))
        fail(6, __LINE__);
    for (const TautoSequenceType &type : types) {
        m_autoCodes.append(TguiText::fromBytes(type.code));
        m_autoTexts.append(TguiText::fromBytes(type.text));
        m_autoCounts.push_back(type.count);
    }

    auto *typeLabel = new QLabel(QStringLiteral("Autosequence Type:"), this);
    typeLabel->setObjectName(QStringLiteral("labelAutoType"));
    m_comboAutoType = new QComboBox(this);
    m_comboAutoType->setObjectName(QStringLiteral("comboAutoType"));
    auto *numLabel = new QLabel(QStringLiteral("Number:"), this);
    numLabel->setObjectName(QStringLiteral("labelAutoNum"));
    m_comboAutoNum = new QComboBox(this);
    m_comboAutoNum->setObjectName(QStringLiteral("comboAutoNum"));
    m_layout->addWidget(typeLabel, 0, 0);
    m_layout->addWidget(m_comboAutoType, 0, 1);
    m_layout->addWidget(numLabel, 1, 0);
    m_layout->addWidget(m_comboAutoNum, 1, 1);
    connect(m_comboAutoType, &QComboBox::currentIndexChanged, this, &TInstrPanel::comboAutoChange);
    for (QComboBox *list : {m_comboAutoType, m_comboAutoNum})
        connect(list, &QComboBox::activated, this, [this] { m_edited = true; });
}

void TInstrPanel::initAuto()
{
    if (!m_comboAutoType)
        return;
    QSignalBlocker blocker(m_comboAutoType);
    m_comboAutoType->clear();
    m_comboAutoType->addItems(m_autoTexts);
    m_comboAutoType->setCurrentIndex(m_autoTexts.isEmpty() ? -1 : 0);
    createAutoNumList();
}

void TInstrPanel::createAutoNumList()
{
    if (!m_comboAutoNum)
        return;
    int type = m_comboAutoType->currentIndex();
    int count = type >= 0 && std::size_t(type) < m_autoCounts.size() ? m_autoCounts[std::size_t(type)] : 0;
    m_comboAutoNum->clear();
    for (int n = 1; n <= count; ++n)
        m_comboAutoNum->addItem(QString::number(n));
    m_comboAutoNum->setCurrentIndex(count > 0 ? 0 : -1);
}

void TInstrPanel::comboAutoChange()
{
    createAutoNumList();
}

void TInstrPanel::SetInstr(const _instructionStruct &record)
{
    if (record.opCode != m_opCode)
        fail(1, __LINE__);
    std::string text = record.commandText();

    m_edited = false;
    if (m_opCode == 'A') {
        int type = 0, number = 0;
        if (text.size() >= 5) {
            type = std::max(0, int(m_autoCodes.indexOf(TguiText::fromBytes(text.substr(0, 3)))));
            number = std::atoi(text.substr(3, 2).c_str());
        }
        QSignalBlocker blocker(m_comboAutoType);
        m_comboAutoType->setCurrentIndex(m_autoCodes.isEmpty() ? -1 : type);
        createAutoNumList();
        if (number >= 1 && number <= m_comboAutoNum->count())
            m_comboAutoNum->setCurrentIndex(number - 1);
        return;
    }

    // A box's room depends on the others: those of the record shown before must not count.
    Clear();
    m_codec->parse(text, [this](std::size_t field, const std::string &value) {
        m_boxes[field]->setText(TguiText::fromBytes(value));
    });
}

void TInstrPanel::GetInstr(_instructionStruct &record)
{
    std::string text;
    if (m_opCode == 'A') {
        int type = m_comboAutoType->currentIndex();
        if (type >= 0)
            text = TguiText::toBytes(m_autoCodes[type]);
        text += QString::number(m_comboAutoNum->currentIndex() + 1).rightJustified(2, QLatin1Char('0')).toStdString();
        text = TcommandCodec::padded(text);
    } else {
        std::vector<std::string> typed;
        for (const QLineEdit *box : m_boxes)
            typed.push_back(TguiText::toBytes(box->text()));
        std::vector<std::string> values = typed;
        text = m_codec->compose(values);
        // A clamped number is shown as it is stored.
        for (std::size_t k = 0; k < m_boxes.size(); ++k)
            if (values[k] != typed[k])
                m_boxes[k]->setText(TguiText::fromBytes(values[k]));
    }
    record.assign(record.category, m_opCode, text);
}

void TInstrPanel::Show()
{
    setVisible(true);
}

void TInstrPanel::Hide()
{
    setVisible(false);
}

void TInstrPanel::Enable()
{
    for (QLineEdit *box : m_boxes)
        box->setEnabled(true);
    if (m_comboAutoType) {
        m_comboAutoType->setEnabled(true);
        m_comboAutoNum->setEnabled(true);
    }
}

void TInstrPanel::Disable()
{
    for (QLineEdit *box : m_boxes)
        box->setEnabled(false);
    if (m_comboAutoType) {
        m_comboAutoType->setEnabled(false);
        m_comboAutoNum->setEnabled(false);
    }
}

void TInstrPanel::Clear()
{
    m_edited = false;
    for (QLineEdit *box : m_boxes)
        box->clear();
}

void TInstrPanel::calcChar(QObject *sender, char &key)
{
    if (key == 8 || key == 127)
        return;
    auto it = std::find(m_boxes.begin(), m_boxes.end(), sender);
    if (it == m_boxes.end())
        return;
    switch (m_codec->fields()[std::size_t(it - m_boxes.begin())].typeTag) {
    case WholeNumber:
        if (!TcommandCodec::isDigit(key))
            key = 0;
        break;
    case DecimalNumber:
        ValidFloat(key, *it);
        break;
    case UpperCaseText:
        if (key >= 'a' && key <= 'z')
            key = char(key - 'a' + 'A');
        break;
    }
}

void TInstrPanel::ValidFloat(char &key, QLineEdit *box)
{
    if (TcommandCodec::isDigit(key))
        return;
    if (key == '-' && !box->text().startsWith(QLatin1Char('-')) && box->cursorPosition() == 0)
        return;
    if (key == '.' && !box->text().contains(QLatin1Char('.')))
        return;
    key = 0;
}

bool TInstrPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto *keyEvent = static_cast<QKeyEvent *>(event);
    // Keys that type nothing (arrows, Home, Ctrl shortcuts) keep their editing meaning.
    if (keyEvent->key() == Qt::Key_Backspace || keyEvent->key() == Qt::Key_Delete || keyEvent->text().isEmpty()
        || keyEvent->text().at(0).unicode() < 32
        || (keyEvent->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
        return false;
    std::string typed = TguiText::toBytes(keyEvent->text().left(1));
    char key = typed.empty() ? 0 : typed[0];
    char original = key;
    calcChar(watched, key);
    if (key == 0)
        return true;
    if (key != original) {
        static_cast<QLineEdit *>(watched)->insert(TguiText::fromBytes(std::string(1, key)));
        return true;
    }
    return false;
}
