#include "TlengthLimitValidator.h"
#include <QLineEdit>

TlengthLimitValidator::TlengthLimitValidator(int limit, QLineEdit *edit) : QValidator(edit), m_limit(limit)
{
    // textChanged comes after a change was let through (setText included), so
    // while an edit is judged m_length is still the length before it.
    m_length = edit->text().size();
    connect(edit, &QLineEdit::textChanged, this, [this](const QString &text) { m_length = text.size(); });
    edit->setValidator(this);
}

QValidator::State TlengthLimitValidator::validate(QString &input, int &) const
{
    return input.size() > m_limit && input.size() > m_length ? Invalid : Acceptable;
}
