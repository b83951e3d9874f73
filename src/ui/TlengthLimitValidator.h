#pragma once
// Stops an edit from making a line longer than a limit, unlike a maximum length,
// which would also cut a longer text that is set from code. A text that is already
// longer may still shrink, but never grow. Of an insertion that is too long, the
// part that fits is kept.
#include <QValidator>

class QLineEdit;

class TlengthLimitValidator : public QValidator {
    Q_OBJECT
public:
    // Installs itself on edit. Install it after setting a longer initial text: a
    // text set while a validator is installed is judged like an edit.
    TlengthLimitValidator(int limit, QLineEdit *edit);
    State validate(QString &input, int &pos) const override;

private:
    int m_limit;
    qsizetype m_length = 0; // the length of the edit's text before the change being judged
};
