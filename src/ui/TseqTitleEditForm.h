#pragma once
// Asks for one line of text (a user tester's name).
#include <QDialog>
#include <memory>

namespace Ui { class TseqTitleEditForm; }

class TseqTitleEditForm : public QDialog {
    Q_OBJECT
public:
    static constexpr int MaxLength = 20; // what can be typed; a longer initial text is kept

    TseqTitleEditForm(QWidget *owner, const QString &text);
    ~TseqTitleEditForm() override;

    QString text() const;
    void setLabelText(const QString &text);
    void setVisible(bool visible) override;

private:
    std::unique_ptr<Ui::TseqTitleEditForm> ui;
};
