#pragma once
// Shared pieces of the checkitem editor tests: an application folder with the
// demo definition files, a small database, and the editor's controls by name.
#include "RecordingMessageSink.h"
#include "TInstrDatabase.h"
#include "UiTestSupport.h"
#include "instEdit.h"
#include <QPushButton>
#include <QTableWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

class TinstGridHeader;

template <class T = QWidget> T *get(QWidget *form, const char *name)
{
    T *widget = form->findChild<T *>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}
void click(QWidget *form, const char *name);
class QLineEdit;
// Every panel has its field0, field1 ...: the one on show.
QLineEdit *shownField(QWidget *form, const char *field);
// Clears a parameter box and types text into it key by key.
void retype(QWidget *form, const char *field, const QString &text);
// Picks an item of a drop-down list as the user does.
void choose(QWidget *form, const char *list, int index);
QStringList comboItems(QWidget *form, const char *list);
QStringList column(QWidget *editor, int column);
QStringList row(QWidget *editor, int row);
QStringList fieldTexts(QWidget *editor); // the boxes of the panel on show
QStringList enabledControls(QWidget *editor); // of the two states' controls, in their order
TinstGridHeader *header(QWidget *editor);
void clickRow(QWidget *editor, int row);
void doubleClickRow(QWidget *editor, int row);
void clickHeader(QWidget *editor, int column);

std::string bytesOf(const TInstr &record);
std::string padded(const std::string &text); // to the 41 characters the panel writes
void copyDemoDefinitions(const AppDirScope &appDir); // Data/*.in and catdes.dat

struct EditorFixture : ::testing::Test {
    AppDirScope appDir;
    RecordingMessageSink sink;
    TInstrDatabase db;
    TPluginHostInfo host;
    std::filesystem::path previousFolder;

    EditorFixture();
    ~EditorFixture() override;
    std::unique_ptr<TinstructionEditorForm> open(bool checklistMode = false);
    void removeDefinitions() const;
    // Answers the next category editor with a name and OK.
    static void nameCategory(const QString &name);
    // Opens the filter dialog, lets choose work on it, and leaves it with button.
    static void runFilter(QWidget *editor, const char *button, std::function<void(QWidget *)> choose);
    // Import through the file dialog, naming a file of the application folder.
    void importFile(QWidget *editor, const std::string &name) const;
};
