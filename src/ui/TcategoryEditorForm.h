#pragma once
// Names a new category or renames an existing one in the descriptor table.
// Changes only the table in memory; the checkitem editor writes catdes.dat.
#include "CategoryDescriptors.h"
#include <QDialog>
#include <memory>

namespace Ui { class TcategoryEditorForm; }

class TcategoryEditorForm : public QDialog {
    Q_OBJECT
public:
    enum Mode { NewCategory = 0, EditCategory = 1 };

    // table is not owned and must not be null. Every look-up goes through the
    // map's operator[], so opening the dialog may add empty entries.
    TcategoryEditorForm(QWidget *owner, int mode, char letter, TcategoryMap *table);
    ~TcategoryEditorForm() override;

    // -1 at once for a null table; else shows the dialog modally: 0 after OK, -1 otherwise.
    static int run(TcategoryMap *table, char letter, int mode, QWidget *owner = nullptr);

public Q_SLOTS:
    void btnOKClick();
    void btnCancelClick();
    void categoryDesignatorChange();

private:
    char selectedLetter() const;

    std::unique_ptr<Ui::TcategoryEditorForm> ui;
    TcategoryMap *m_table;
};
