#include "TlengthLimitValidator.h"
#include "Twindows1252Validator.h"
#include <QLineEdit>
#include <algorithm>

TlengthLimitValidator::TlengthLimitValidator(int limit, QLineEdit *edit)
    : TlengthLimitValidator([limit] { return qsizetype(limit); }, edit)
{
}

TlengthLimitValidator::TlengthLimitValidator(std::function<qsizetype()> limit, QLineEdit *edit)
    : QValidator(edit), m_limit(std::move(limit))
{
    // textChanged comes after a change was let through (setText included), so
    // while an edit is judged m_length is still the length before it.
    m_length = edit->text().size();
    connect(edit, &QLineEdit::textChanged, this, [this](const QString &text) { m_length = text.size(); });
    edit->setValidator(this);
}

QValidator::State TlengthLimitValidator::validate(QString &input, int &pos) const
{
    Twindows1252Validator::removeUnstorable(input, pos);
    // What was typed or pasted ends at the cursor: cut its end, so a long paste
    // keeps the part that fits.
    const qsizetype excess = input.size() - std::max(m_limit(), m_length);
    if (excess > 0) {
        if (excess > pos)
            return Invalid;
        input.remove(pos - excess, excess);
        pos -= int(excess);
    }
    return Acceptable;
}
