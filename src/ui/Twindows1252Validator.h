#pragma once
// Keeps out of a line edit the characters that Windows-1252 has no byte for. The
// data set stores its texts in that code page, where such a character would turn
// into a blank on saving; refused as it is typed or pasted, it is never lost unseen.
#include <QValidator>

class QLineEdit;

class Twindows1252Validator : public QValidator {
    Q_OBJECT
public:
    explicit Twindows1252Validator(QLineEdit *edit); // installs itself on edit
    State validate(QString &input, int &pos) const override;
    // The same for validators that check more than the code page.
    static void removeUnstorable(QString &input, int &pos);
};
