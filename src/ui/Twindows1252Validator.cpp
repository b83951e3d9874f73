#include "Twindows1252Validator.h"
#include "TguiText.h"
#include <QLineEdit>

Twindows1252Validator::Twindows1252Validator(QLineEdit *edit) : QValidator(edit)
{
    edit->setValidator(this);
}

QValidator::State Twindows1252Validator::validate(QString &input, int &pos) const
{
    removeUnstorable(input, pos);
    return Acceptable;
}

void Twindows1252Validator::removeUnstorable(QString &input, int &pos)
{
    // A character the code page lacks does not come back from a round trip through
    // it (the two halves of a surrogate pair do not either).
    for (qsizetype i = input.size() - 1; i >= 0; --i) {
        const QString one(input[i]);
        if (TguiText::fromBytes(TguiText::toBytes(one)) == one)
            continue;
        input.remove(i, 1);
        if (i < pos)
            --pos;
    }
}
