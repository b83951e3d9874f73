// The parameter panel: a definition file's field lines (the grammar), a checkitem's
// command text shown in the fields (the value checks), typed keys through the key
// filter, and the command text read back with its ranges applied.
//   input: definition file bytes, a 0 byte, the command text, a 0 byte, typed keys
//   (a tab moves to the next field). The record read back must show again.
#include "FieldSpec.h"
#include "FuzzInput.h"
#include "OpCodeDefinitions.h"
#include "TInstr.h"
#include "TguiText.h"
#include "instrpanel.h"
#include <QApplication>
#include <QLineEdit>
#include <QTest>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Kept to the end of the process: destroyed among the exit handlers it would
    // outlive the toolkit's own statics.
    static QApplication *app = new QApplication(*argc, *argv);
    (void)app;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t first = input.find('\0');
    const std::size_t second = first == std::string::npos ? first : input.find('\0', first + 1);
    const std::string definition = input.substr(0, first);
    const std::string command = first == std::string::npos ? "" : input.substr(first + 1, second - first - 1);
    const std::string keys = second == std::string::npos ? "" : input.substr(second + 1);

    std::unique_ptr<TInstrPanel> panel;
    try {
        panel = std::make_unique<TInstrPanel>(nullptr, FuzzInput::write("field.in", data, definition.size()), 517, 25,
                                              10, 4, 56);
    } catch (const TInstrPanelError &) {
        return 0;
    } catch (const TopCodeFileCorrupt &) {
        return 0;
    }
    TInstr record(' ', panel->opCode(), command);
    try {
        panel->SetInstr(record);
    } catch (const TInstrPanelError &) {
    }
    // Real key presses, so the panel's own filter decides and the box edits as it would.
    const QList<QLineEdit *> boxes = panel->findChildren<QLineEdit *>();
    int field = 0;
    for (char key : keys) {
        if (key == '\t') {
            ++field;
            continue;
        }
        if (boxes.isEmpty())
            break;
        QLineEdit *box = boxes[field % boxes.size()];
        if (key == 8 || key == 127)
            QTest::keyClick(box, key == 8 ? Qt::Key_Backspace : Qt::Key_Delete);
        else
            QTest::sendKeyEvent(QTest::KeyAction::Click, box, Qt::Key_unknown,
                                TguiText::fromBytes(std::string(1, key)), Qt::NoModifier);
    }
    panel->GetInstr(record);
    // What the panel writes it must read again: every value passes its field's check
    // (a cut to 41 characters may lose fields, codes 2 and 3, never break a value).
    try {
        panel->SetInstr(record);
    } catch (const TInstrPanelError &e) {
        if (e.code == 4)
            __builtin_trap();
    }
    return 0;
}
