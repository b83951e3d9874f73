#pragma once
// TcomSelectFrm: how to reach the analyzer (USB, Ethernet with an IPv4 address,
// or a free serial port), remembered in KT930pc.ini, section COMM.
#include <QDialog>
#include <filesystem>
#include <memory>

namespace Ui { class TcomSelectFrm; }
class MessageSink;
class QLineEdit;

class TcomSelectFrm : public QDialog {
    Q_OBJECT
public:
    // Method numbers of the settings file.
    enum { MethodUSB = 1, MethodEthernet = 2, MethodSerial = 3 };

    // upload: the warning about undownloaded results is shown for uploads only.
    TcomSelectFrm(QWidget *owner, bool upload, MessageSink *sink = nullptr);
    ~TcomSelectFrm() override;

    static std::filesystem::path iniFile(); // <application folder>/KT930pc.ini
    // The port number of an entry such as "COM12 (/dev/ttyS11)", read as "%c%c%c%d"; 1 if none.
    static int portNumberOf(const QString &entry);

    int method() const; // 1 USB, 2 Ethernet, 3 serial
    QString ipText(int field) const; // field 1..4
    int serialPort() const; // from the selected entry, 1 when nothing is selected

    // Filters the characters typed into IP1..IP4: digits only. Keys that type no
    // character (Backspace, Delete, arrows, select-all, Tab, Return ...) pass.
    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    void radUSBClick();
    void radEthernetClick();
    void radSerialClick();
    void IPChange();
    void btnConnectClick();
    void btnCancelClick();
    void done(int result) override; // FormClose: writes the settings, then closes

public:
    static bool IPKeyPress(QChar key); // true when the key is taken

private:
    void fillPortList(int defaultSerial);
    void enableFor(int method);
    // Writes the chosen method; a cancelled dialog keeps a stored method it could not show.
    void FormClose(bool cancelled);

    std::unique_ptr<Ui::TcomSelectFrm> ui;
    MessageSink &m_sink;
    QLineEdit *m_ip[4];
    bool m_keepStoredMethod = false;
};
