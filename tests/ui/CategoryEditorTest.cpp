// The category editor: the letters it offers, its empty start, and what OK and
// Cancel leave in the descriptor table.
#include "TcategoryEditorForm.h"
#include "UiTestSupport.h"
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {
using Answer = std::function<void(QComboBox *letters, QLineEdit *name, QWidget *dialog)>;

// Runs the editor; `answer` works its controls and ends it.
int runEditor(TcategoryMap &map, char letter, int mode, Answer answer)
{
    ensureApplication();
    whenModal([answer](QWidget *d) {
        answer(d->findChild<QComboBox *>("categoryDesignator"), d->findChild<QLineEdit *>("txtName"), d);
    });
    return TcategoryEditorForm::run(&map, letter, mode);
}

QString items(const QComboBox *combo)
{
    QString letters;
    for (int i = 0; i < combo->count(); ++i)
        letters += combo->itemText(i);
    return letters;
}
} // namespace

TEST(CategoryEditor, NewModeOffersTheUnnamedLettersOrAllAndStartsEmpty)
{
    TcategoryMap map{{'B', "Electrical"}, {'K', "Leakage"}};
    EXPECT_EQ(runEditor(map, 'K', TcategoryEditorForm::NewCategory, [](auto *letters, auto *name, auto *d) {
        EXPECT_EQ(items(letters), "ACDEFGHIJLMNOPQRSTUVWXYZ");
        EXPECT_EQ(name->text(), ""); // looked up under 'K' - 65, which never names a category
        QTest::keyClick(letters, Qt::Key_Down);
        QTest::keyClicks(name, "  Insulation  ");
        mouseClick(d, "btnOK");
    }), 0);
    EXPECT_EQ(map['C'], "Insulation");
    EXPECT_EQ(map.size(), 27u); // every letter was looked up, and the shifted key

    for (char c = 'A'; c <= 'Z'; ++c)
        map[c] = std::string("Name ") + c;
    EXPECT_EQ(runEditor(map, 'A', TcategoryEditorForm::NewCategory, [](auto *letters, auto *name, auto *d) {
        EXPECT_EQ(items(letters), "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
        QTest::keyClick(letters, Qt::Key_End);
        EXPECT_EQ(name->text(), "Name Z");
        QTest::keyClicks(name, "!");
        mouseClick(d, "btnOK");
    }), 0);
    EXPECT_EQ(map['Z'], "Name Z!");
}

TEST(CategoryEditor, EditModeFixesTheLetterCleansTheNameAndABlankOneClearsIt)
{
    // The cleaning itself is the typed-name rule's, checked there.
    const std::pair<QString, std::string> cases[] = {{"", ""}, {"Line one\nZ, injected\x7f", "Line one Z, injected"}};
    for (const auto &[typedName, stored] : cases) {
        const QString typed = typedName;
        TcategoryMap map{{'D', "Dielectric"}};
        EXPECT_EQ(runEditor(map, 'D', TcategoryEditorForm::EditCategory, [typed](auto *letters, auto *name, auto *d) {
            EXPECT_EQ(items(letters), "D");
            EXPECT_FALSE(letters->isEnabled());
            EXPECT_EQ(name->text(), "");
            name->insert(typed);
            mouseClick(d, "btnOK");
        }), 0);
        EXPECT_EQ(map.at('D'), stored) << typed.toStdString();
    }
}

TEST(CategoryEditor, CancelKeepsTheInsertedLookUpsButNoName)
{
    TcategoryMap map;
    EXPECT_EQ(runEditor(map, 'B', TcategoryEditorForm::NewCategory, [](auto *, auto *name, auto *d) {
        QTest::keyClicks(name, "Never");
        mouseClick(d, "btnCancel");
    }), -1);
    EXPECT_EQ(map.size(), 27u); // 'A'..'Z' and 'B' - 65, all empty
    EXPECT_EQ(map.at('\x01') + map.at('A') + map.at('B') + map.at('Z'), "");
    EXPECT_EQ(TcategoryEditorForm::run(nullptr, 'A', TcategoryEditorForm::NewCategory), -1);
}

TEST(CategoryEditor, TheNameTakesOnlyCharactersTheDescriptorFileCanHold)
{
    TcategoryMap map;
    EXPECT_EQ(runEditor(map, 'M', TcategoryEditorForm::EditCategory, [](auto *, auto *name, auto *d) {
        for (const QString &key : QString::fromUtf8("Ω tests €5").split(QString(), Qt::SkipEmptyParts))
            QTest::sendKeyEvent(QTest::Click, name, Qt::Key_unknown, key, Qt::NoModifier);
        name->insert(QString::fromUtf8("→x")); // pasted
        mouseClick(d, "btnOK");
    }), 0);
    EXPECT_EQ(map.at('M'), "tests \x80" "5x");
}
