#include "InstEditSupport.h"
#include "TinstGridHeader.h"
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

void click(QWidget *form, const char *name)
{
    get<QAbstractButton>(form, name)->click();
}

// Every panel has its field0, field1 ...: the one on show is meant.
QLineEdit *shownField(QWidget *form, const char *field)
{
    for (QLineEdit *box : form->findChildren<QLineEdit *>(QString::fromLatin1(field)))
        if (box->isVisible())
            return box;
    ADD_FAILURE() << "no field " << field << " on show";
    return nullptr;
}

void retype(QWidget *form, const char *field, const QString &text)
{
    QLineEdit *box = shownField(form, field);
    box->clear();
    box->setFocus();
    QTest::keyClicks(box, text);
}

void choose(QWidget *form, const char *list, int index)
{
    auto *box = get<QComboBox>(form, list);
    box->setCurrentIndex(index);
    Q_EMIT box->activated(index);
}

QStringList comboItems(QWidget *form, const char *list)
{
    auto *box = get<QComboBox>(form, list);
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items << box->itemText(i);
    return items;
}

QStringList column(QWidget *editor, int column)
{
    auto *grid = get<QTableWidget>(editor, "instList");
    QStringList texts;
    if (static_cast<TinstructionEditorForm *>(editor)->shownItems().empty())
        return texts;
    for (int r = 0; r < grid->rowCount(); ++r)
        texts << grid->item(r, column)->text();
    return texts;
}

QStringList row(QWidget *editor, int row)
{
    auto *grid = get<QTableWidget>(editor, "instList");
    QStringList texts;
    for (int c = 0; c < grid->columnCount(); ++c)
        texts << grid->item(row, c)->text();
    return texts;
}

QStringList fieldTexts(QWidget *editor)
{
    QStringList texts;
    for (QLineEdit *box : editor->findChildren<QLineEdit *>(QRegularExpression("^field\\d+$")))
        if (box->isVisible())
            texts << box->text();
    return texts;
}

QStringList enabledControls(QWidget *editor)
{
    QStringList enabled;
    for (const char *name : {"btnSync", "btnHelp", "btnOk", "btnImport", "btnDelete", "btnNewInst", "btnEditInst",
                             "btnFilter", "instList", "btnPrint", "btnExport", "lblOp", "lstOp", "lblCat", "lstCat",
                             "btnNewCat", "btnEditCat", "btnUpdate", "btnCancel", "pnlInst"})
        if (get(editor, name)->isEnabled())
            enabled << name;
    return enabled;
}

TinstGridHeader *header(QWidget *editor)
{
    return qobject_cast<TinstGridHeader *>(get<QTableWidget>(editor, "instList")->horizontalHeader());
}

static QPoint cellCentre(QTableWidget *grid, int row)
{
    return grid->visualRect(grid->model()->index(row, 1)).center();
}

void clickRow(QWidget *editor, int row)
{
    auto *grid = get<QTableWidget>(editor, "instList");
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(grid, row));
}

void doubleClickRow(QWidget *editor, int row)
{
    auto *grid = get<QTableWidget>(editor, "instList");
    clickRow(editor, row);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(grid, row));
}

void clickHeader(QWidget *editor, int column)
{
    TinstGridHeader *bar = header(editor);
    const QPoint at(bar->sectionViewportPosition(column) + 4, bar->height() / 2);
    QTest::mouseClick(bar->viewport(), Qt::LeftButton, {}, at);
}

std::string bytesOf(const TInstr &record)
{
    return std::string(reinterpret_cast<const char *>(&record), sizeof record);
}

std::string padded(const std::string &text)
{
    return text + std::string(41 - text.size(), ' ');
}

void copyDemoDefinitions(const AppDirScope &appDir)
{
    for (const auto &entry : std::filesystem::directory_iterator(KT930_TEST_APPDIR "/Data"))
        if (entry.path().extension() == ".in" || entry.path().filename() == "catdes.dat")
            std::filesystem::copy_file(entry.path(), appDir.data(entry.path().filename().string()));
}

EditorFixture::EditorFixture() : previousFolder(std::filesystem::current_path())
{
    copyDemoDefinitions(appDir);
    // The trace and the export go to the current folder.
    std::filesystem::current_path(appDir.dir().path());
    db[0].assign('E', 'M', "EB\t0\t5");
    db[1].assign(' ', 'P', "Mains plug intact?");
    db[2].assign('A', 'K', "Disconnect the device");
    db[4].assign('F', 'C', "AUX\t1");
}

EditorFixture::~EditorFixture()
{
    std::filesystem::current_path(previousFolder);
}

std::unique_ptr<TinstructionEditorForm> EditorFixture::open(bool checklistMode)
{
    auto editor = std::make_unique<TinstructionEditorForm>(nullptr, checklistMode, &host, &db, &sink);
    editor->show();
    QApplication::processEvents();
    return editor;
}

void EditorFixture::removeDefinitions() const
{
    for (const auto &entry : std::filesystem::directory_iterator(appDir.dir().path() / "Data"))
        if (entry.path().extension() == ".in")
            std::filesystem::remove(entry.path());
}

void EditorFixture::nameCategory(const QString &name)
{
    whenModal([name](QWidget *dialog) {
        get<QLineEdit>(dialog, "txtName")->setText(name);
        click(dialog, "btnOK");
    });
}

void EditorFixture::runFilter(QWidget *editor, const char *button, std::function<void(QWidget *)> choose)
{
    whenModal([button, choose](QWidget *dialog) {
        choose(dialog);
        click(dialog, button);
    });
    click(editor, "btnFilter");
}

void EditorFixture::importFile(QWidget *editor, const std::string &name) const
{
    const QString folder = QString::fromStdString(appDir.dir().path().string());
    whenModal([folder, name](QWidget *dialog) {
        auto *files = qobject_cast<QFileDialog *>(dialog);
        ASSERT_NE(files, nullptr);
        EXPECT_EQ(files->objectName(), "instTableOpenDlg");
        EXPECT_EQ(files->windowTitle(), "Import Checkitems");
        EXPECT_EQ(files->nameFilters(), QStringList{"Comma Separated Files (*.csv)"});
        files->setDirectory(folder); // where the user goes first
        auto *fileName = get<QLineEdit>(dialog, "fileNameEdit");
        fileName->clear();
        QTest::keyClicks(fileName, QString::fromStdString(name));
        get<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Open)->click();
        if (dialog->isVisible()) {
            ADD_FAILURE() << "the file dialog did not take " << name;
            dialog->close();
        }
    });
    click(editor, "btnImport");
}
