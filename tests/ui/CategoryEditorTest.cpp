// The category editor: the letters it offers, its empty start, what OK and Cancel leave in the table.
#include "TcategoryEditorForm.h"
#include "UiTestSupport.h"

namespace {
// Runs the editor; `answer` works its controls and ends it.
int runEditor(TcategoryMap &map, char letter, int mode, std::function<void(QComboBox *, QLineEdit *, QWidget *)> answer)
{
    ensureApplication();
    whenModal(
        [answer](QWidget *d) { answer(child<QComboBox>(d, "categoryDesignator"), child<QLineEdit>(d, "txtName"), d); });
    return TcategoryEditorForm::run(&map, letter, mode);
}
} // namespace

TEST(CategoryEditor, NewModeOffersTheUnnamedLettersOrAllStartsEmptyAndCancelNamesNothing)
{
    TcategoryMap map{{'B', "Electrical"}, {'K', "Leakage"}};
    EXPECT_EQ(runEditor(map, 'K', TcategoryEditorForm::NewCategory, [](auto *letters, auto *name, auto *d) {
        EXPECT_EQ(comboTexts(letters).join(""), "ACDEFGHIJLMNOPQRSTUVWXYZ");
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
        EXPECT_EQ(comboTexts(letters).join(""), "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
        QTest::keyClick(letters, Qt::Key_End);
        EXPECT_EQ(name->text(), "Name Z");
        QTest::keyClicks(name, "!");
        mouseClick(d, "btnOK");
    }), 0);
    EXPECT_EQ(map['Z'], "Name Z!");

    // Cancel keeps the inserted look-ups but no name.
    TcategoryMap cancelled;
    EXPECT_EQ(runEditor(cancelled, 'B', TcategoryEditorForm::NewCategory,
                        [](auto *, auto *name, auto *d) {
                            QTest::keyClicks(name, "Never");
                            mouseClick(d, "btnCancel");
                        }),
              -1);
    EXPECT_EQ(cancelled.size(), 27u); // 'A'..'Z' and 'B' - 65, all empty
    EXPECT_EQ(cancelled.at('\x01') + cancelled.at('A') + cancelled.at('B') + cancelled.at('Z'), "");
    EXPECT_EQ(TcategoryEditorForm::run(nullptr, 'A', TcategoryEditorForm::NewCategory), -1);
}

// The cleaning itself is the typed-name rule's, checked there; a blank name clears it, and
// only characters the descriptor file can hold are taken, typed or pasted.
TEST(CategoryEditor, EditModeFixesTheLetterCleansTheNameAndTakesOnlyWhatTheFileCanHold)
{
    const std::tuple<QString, QString, std::string> cases[] = { // typed, pasted, stored
        {"", "", ""}, {"", "Line one\nZ, injected\x7f", "Line one Z, injected"},
        {QString::fromUtf8("Ω tests €5"), QString::fromUtf8("→x"), "tests \x80" "5x"}};
    for (const auto &[typed, pasted, stored] : cases) {
        TcategoryMap map{{'D', "Dielectric"}};
        EXPECT_EQ(runEditor(map, 'D', TcategoryEditorForm::EditCategory,
                            [typed, pasted](auto *letters, auto *name, auto *d) {
                                EXPECT_EQ(comboTexts(letters), QStringList{"D"});
                                EXPECT_FALSE(letters->isEnabled());
                                EXPECT_EQ(name->text(), "");
                                for (const QString &key : typed.split(QString(), Qt::SkipEmptyParts))
                                    QTest::sendKeyEvent(QTest::Click, name, Qt::Key_unknown, key, Qt::NoModifier);
                                name->insert(pasted);
                                mouseClick(d, "btnOK");
                            }),
                  0);
        EXPECT_EQ(map.at('D'), stored) << pasted.toStdString();
    }
}
