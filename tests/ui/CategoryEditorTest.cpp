// The category editor: the letters it offers, the name it starts with, what OK
// and Cancel leave in the descriptor table, and what catdes.dat gets from it.
#include "TcategoryEditorForm.h"
#include "TempDir.h"
#include "UiTestSupport.h"
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {
QStringList items(const QComboBox *combo)
{
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
        texts << combo->itemText(i);
    return texts;
}

QStringList lettersExcept(const QString &named)
{
    QStringList letters;
    for (char c = 'A'; c <= 'Z'; ++c)
        if (!named.contains(QChar(c)))
            letters << QString(QChar(c));
    return letters;
}

// Runs the editor; inside, `answer` sees the dialog's controls and ends it.
int runEditor(TcategoryMap &map, char letter, int mode,
              std::function<void(QComboBox *, QLineEdit *, QWidget *)> answer)
{
    ensureApplication();
    whenModal([answer](QWidget *dialog) {
        answer(dialog->findChild<QComboBox *>("categoryDesignator"), dialog->findChild<QLineEdit *>("txtName"),
               dialog);
    });
    return TcategoryEditorForm::run(&map, letter, mode);
}

void click(QWidget *dialog, const char *button)
{
    QTest::mouseClick(dialog->findChild<QPushButton *>(button), Qt::LeftButton);
}
} // namespace

TEST(CategoryEditor, NewModeOffersUnnamedLettersAndNamesTheChosenOne)
{
    TcategoryMap map{{'B', "Electrical"}, {'K', "Leakage"}};
    int result = runEditor(map, 'K', TcategoryEditorForm::NewCategory, [](QComboBox *letters, QLineEdit *name, QWidget *d) {
        EXPECT_EQ(d->windowTitle(), "Category Editor");
        EXPECT_EQ(items(letters), lettersExcept("BK"));
        EXPECT_TRUE(letters->isEnabled());
        EXPECT_EQ(letters->currentText(), "A");
        EXPECT_EQ(name->text(), ""); // looked up under 'K' - 65, never a category
        QTest::keyClick(letters, Qt::Key_Down);
        QTest::keyClicks(name, "  Insulation  ");
        click(d, "btnOK");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(map['C'], "Insulation");
    EXPECT_EQ(map.count(char('K' - 65)), 1u);
    EXPECT_EQ(map.size(), 27u); // every letter was looked up, plus the shifted key
}

TEST(CategoryEditor, WithAllLettersNamedEveryLetterIsOfferedAndAChoiceShowsItsName)
{
    TcategoryMap map;
    for (char c = 'A'; c <= 'Z'; ++c)
        map[c] = std::string("Name ") + c;
    int result = runEditor(map, 'A', TcategoryEditorForm::NewCategory, [](QComboBox *letters, QLineEdit *name, QWidget *d) {
        EXPECT_EQ(items(letters), lettersExcept(""));
        EXPECT_EQ(name->text(), "");
        QTest::keyClick(letters, Qt::Key_End);
        EXPECT_EQ(name->text(), "Name Z");
        name->clear();
        QTest::keyClicks(name, "Replaced");
        click(d, "btnOK");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(map['Z'], "Replaced");
}

TEST(CategoryEditor, EditModeFixesTheLetterAndAnEmptyOrBlankNameClearsIt)
{
    for (const char *typed : {"", "   "}) {
        TcategoryMap map{{'D', "Dielectric"}};
        int result = runEditor(map, 'D', TcategoryEditorForm::EditCategory, [typed](QComboBox *letters, QLineEdit *name, QWidget *d) {
            EXPECT_EQ(items(letters), QStringList{"D"});
            EXPECT_FALSE(letters->isEnabled());
            EXPECT_EQ(name->text(), "");
            QTest::keyClicks(name, typed);
            click(d, "btnOK");
        });
        EXPECT_EQ(result, 0);
        EXPECT_EQ(map.at('D'), "") << '"' << typed << '"';
    }
    TcategoryMap map{{'D', "Dielectric"}};
    EXPECT_EQ(runEditor(map, 'D', TcategoryEditorForm::EditCategory, [](QComboBox *, QLineEdit *name, QWidget *d) {
                  name->setText(QStringLiteral("\t Hipot\r\n"));
                  click(d, "btnOK");
              }), 0);
    EXPECT_EQ(map.at('D'), "Hipot");
}

TEST(CategoryEditor, CancelKeepsTheInsertedLookUpsButNoName)
{
    TcategoryMap map{{'B', "Electrical"}};
    int result = runEditor(map, 'B', TcategoryEditorForm::NewCategory, [](QComboBox *, QLineEdit *name, QWidget *d) {
        QTest::keyClicks(name, "Never");
        click(d, "btnCancel");
    });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(map.size(), 27u);
    EXPECT_EQ(map['B'], "Electrical");
    EXPECT_EQ(map['A'], "");
    EXPECT_EQ(TcategoryEditorForm::run(nullptr, 'A', TcategoryEditorForm::NewCategory), -1);

    // The writer leaves the look-ups' empty and non-letter entries out.
    TempDir dir;
    ASSERT_EQ(CategoryDescriptors::save(map, dir / "catdes.dat"), 0);
    EXPECT_EQ(TempDir::read(dir / "catdes.dat"), "B, Electrical\n");
}
