#pragma once
// Shared pieces of the GUI tests: the application object, an application folder
// in a temporary directory, data files built from their documented layouts, and
// a hook that answers the next modal dialog.
#include "TInstr.h"
#include "Tautosequence.h"
#include "TempDir.h"
#include "TinstListingPrinter.h"
#include "VAROAutoSeqEditor.h"
#include <QPrinter>
#include <QTest>
#include <QtWidgets>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

class QTableView;
class THelpWindow;

void ensureApplication();

// Points KT930PC_APPDIR at a fresh folder with an empty Data/ for the test's lifetime.
class AppDirScope {
public:
    AppDirScope();
    ~AppDirScope();
    const TempDir &dir() const { return m_dir; }
    std::filesystem::path data(const std::string &name) const { return m_dir.path() / "Data" / name; }
    void writeData(const std::string &name, const std::string &bytes) const { m_dir.write("Data/" + name, bytes); }
    std::string readData(const std::string &name) const { return TempDir::read(data(name)); }
    // The demo folder's op code definitions (*.in), and its catdes.dat if asked.
    void copyDemoDefinitions(bool withDescriptors = false) const;
    // mit.dat, inspection.asq, usertester1..5.asq, testProc.asq, all valid.
    void writeCompleteDataSet(const std::vector<Tautosequence> &inspections,
                              const std::vector<std::string> &testerNames) const;

private:
    TempDir m_dir;
};

// Bytes of an .asq file and of mit.dat (44 bytes a slot), from their documented layouts.
std::string asqBytes(const std::string &title, const std::string &subtitle, const std::vector<Tautosequence> &records);
std::string mitBytes(const std::vector<TInstr> &slots);
inline std::string bytesOf(const TInstr &record) { return mitBytes({record}); }
Tautosequence sequence(const std::string &title1, const std::string &title2, std::vector<std::uint16_t> items = {});
Tautosequence unusedSequence();

// What a frame is made with: an application folder, and the host record with
// its main view and the container the frame sits in.
struct FrameHost {
    FrameHost() : host{&mainView, &container} {}
    AppDirScope appDir; // first: it makes the application the widgets need
    QWidget mainView, container;
    TPluginHostInfo host;
    int hostData2 = 0;
};

// A form whose print dialog is answered by a PDF file.
template <class Form> struct PrintsToPdf : Form {
    using Form::Form;
    std::filesystem::path pdf;
    bool choosePrinter(QPrinter &printer) override
    {
        return TinstListingPrinter::preparePdf(printer, QString::fromStdString(pdf.string())), true;
    }
};

// The named child of parent; a missing one fails the test.
template <class T = QWidget> T *child(const QObject *parent, const char *name)
{
    T *found = parent->findChild<T *>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}
// Presses the named button without a mouse (its click slot), or with a real left-button click in its middle.
void click(const QObject *parent, const char *button);
void mouseClick(const QObject *parent, const char *name);

// The texts of a model's column (top to bottom), of a grid column, of a drop-down list, of the frame's inspection list;
// "1" to "count".
QStringList modelTexts(const QAbstractItemModel *model, int column = 0);
QStringList columnTexts(const QTableView *grid, int column);
QStringList comboTexts(const QComboBox *list);
QStringList comboTexts(const QObject *parent, const char *list);
QStringList listTexts(QWidget *frame);
QStringList numberTexts(int count);
// The help windows on show.
QList<THelpWindow *> helpWindows();

// Runs action once condition holds, or on the next modal widget that becomes active, from the event loop.
void whenTrue(std::function<bool()> condition, std::function<void()> action);
void whenModal(std::function<void(QWidget *)> action);
// Answers the next "Communication Settings" form with Ethernet to address, then
// runs then (if any) from the event loop.
void connectByEthernet(const std::string &address, std::function<void()> then = {});
