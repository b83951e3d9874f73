#include "TlengthLimitValidator.h"
#include <QLineEdit>
#include <algorithm>

TlengthLimitValidator::TlengthLimitValidator(int limit, QLineEdit *edit) : QValidator(edit), m_limit(limit)
{
    // textChanged comes after a change was let through (setText included), so
    // while an edit is judged m_length is still the length before it.
    m_length = edit->text().size();
    connect(edit, &QLineEdit::textChanged, this, [this](const QString &text) { m_length = text.size(); });
    edit->setValidator(this);
}

QValidator::State TlengthLimitValidator::validate(QString &input, int &pos) const
{
    // What was typed or pasted ends at the cursor: cut its end, so a long paste
    // keeps the part that fits.
    const qsizetype excess = input.size() - std::max<qsizetype>(m_limit, m_length);
    if (excess > 0) {
        if (excess > pos)
            return Invalid;
        input.remove(pos - excess, excess);
        pos -= int(excess);
    }
    return Acceptable;
}
