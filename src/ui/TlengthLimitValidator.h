#pragma once
// Stops an edit from making a line longer than a limit, unlike a maximum length,
// which would also cut a longer text that is set from code. A text that is already
// longer may still shrink, but never grow. Of an insertion that is too long, the
// part that fits is kept. The line is a data set text, stored in Windows-1252, so
// characters that code page has no byte for are refused as well.
#include <QValidator>
#include <functional>

class QLineEdit;

class TlengthLimitValidator : public QValidator {
    Q_OBJECT
public:
    // Installs itself on edit. Install it after setting a longer initial text: a
    // text set while a validator is installed is judged like an edit.
    TlengthLimitValidator(int limit, QLineEdit *edit);
    // A limit that depends on other fields, asked for at every edit.
    TlengthLimitValidator(std::function<qsizetype()> limit, QLineEdit *edit);
    State validate(QString &input, int &pos) const override;

private:
    std::function<qsizetype()> m_limit;
    qsizetype m_length = 0; // the length of the edit's text before the change being judged
};
