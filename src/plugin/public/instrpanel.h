#pragma once
// The checkitem parameter panel: one per Data/*.in file, turning the file's field
// lines into labelled boxes and converting between them and a checkitem's command
// text. Exported from the plug-in under its own name, so it needs nothing but Qt
// and the record's name here.
#include "VAROAutoSeqEditor.h"
#include <QStringList>
#include <QWidget>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class TcommandCodec;
struct TInstr;
using _instructionStruct = TInstr;

class KT930_EXPORT TInstrPanel : public QWidget {
    Q_OBJECT
public:
    // Whole number, decimal number, text forced to upper case, free text.
    enum TypeTag { FreeText = 0, WholeNumber = 1, DecimalNumber = 2, UpperCaseText = 3 };

    // The range of a numeric field: a flag, then the bounds.
    struct dataInfo {
        unsigned char hasRange = 0;
        double minimum = 0;
        double maximum = 0;
    };

    // Every row of the panel together is this tall; its fields share it.
    static constexpr int PanelHeight = 200;

    // owner: the group box it sits in (the panel joins its layout when it has one).
    // fileName: a Data/*.in file. width: the panel's width; top, left: the margins
    // above and beside the rows; rowGap: space between rows; labelWidth: least width
    // of the left labels. Throws TInstrPanelError (codes 2, 6) and
    // TopCodeFileCorrupt (a std::runtime_error) when the file cannot be read.
    TInstrPanel(QWidget *owner, const std::filesystem::path &fileName,
                int width, int top, int left, int rowGap, int labelWidth);
    ~TInstrPanel() override;

    char opCode() const { return m_opCode; }
    int fieldCount() const { return int(m_boxes.size()); }

    // The range of a type specification such as "N0,10"; a bare "N" has none.
    static void MinMax(const std::string &typeSpec, dataInfo *info);

    void SetInstr(const _instructionStruct &record); // throws TInstrPanelError 1, 2, 3, 4
    // Whether the user changed a field since the panel last showed a record or was cleared.
    bool fieldsEdited() const { return m_edited; }
    void GetInstr(_instructionStruct &record);       // clamps and writes back into the boxes
    void Show();
    void Hide();
    void Enable();
    void Disable();
    void Clear();
    void initAuto();
    void createAutoNumList();

    // The key filter of the boxes: sets key to 0 when the box must not take it.
    void calcChar(QObject *sender, char &key);
    void ValidFloat(char &key, QLineEdit *box);

public Q_SLOTS:
    void comboAutoChange();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ParseCommands(const std::vector<std::string> &lines);
    void ParseAutoField(const std::vector<std::string> &lines);
    void addFieldRow(int row, const std::string &left, const std::string &right);
    qsizetype roomLeftFor(const QLineEdit *box) const; // characters the other values leave
    void CleanUp();

    char m_opCode = 0;
    bool m_edited = false;
    int m_rowGap = 0;
    int m_labelWidth = 0;
    QGridLayout *m_layout = nullptr;
    std::vector<QLineEdit *> m_boxes;
    std::unique_ptr<TcommandCodec> m_codec; // the fields' types and ranges
    // The "A" panel: three parallel lists from the file and its two drop-downs.
    QStringList m_autoCodes;
    QStringList m_autoTexts;
    std::vector<int> m_autoCounts;
    QComboBox *m_comboAutoType = nullptr;
    QComboBox *m_comboAutoNum = nullptr;
};
