#include "communicationsSelector.h"
#include "ui_communicationsSelector.h"
#include "AppDir.h"
#include "TguiMessageSink.h"
#include "TserialPortMap.h"
#include <QKeyEvent>
#include <QSettings>
#include <cstdio>

namespace {
QString iniPath()
{
    return QString::fromStdString(TcomSelectFrm::iniFile().string());
}
} // namespace

TcomSelectFrm::TcomSelectFrm(QWidget *owner, bool upload, MessageSink *sink)
    : QDialog(owner), ui(new Ui::TcomSelectFrm), m_sink(sink ? *sink : TguiMessageSink::defaultSink())
{
    ui->setupUi(this);
    m_ip[0] = ui->IP1;
    m_ip[1] = ui->IP2;
    m_ip[2] = ui->IP3;
    m_ip[3] = ui->IP4;
    ui->pnlWarning->setVisible(upload);
    adjustSize(); // without the warning a download's dialog is shorter

    QSettings ini(iniPath(), QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("COMM"));
    int method = ini.value(QStringLiteral("DEFAULTCOMMMETHOD"), 1).toInt();
    int defaultSerial = ini.value(QStringLiteral("DEFAULTSERIAL"), 0).toInt();
    const char *defaults[4] = {"127", "0", "0", "1"};
    for (int i = 0; i < 4; ++i) {
        m_ip[i]->setText(ini.value(QStringLiteral("IP%1").arg(i + 1), QString::fromLatin1(defaults[i])).toString());
        m_ip[i]->installEventFilter(this);
        connect(m_ip[i], &QLineEdit::textChanged, this, &TcomSelectFrm::IPChange);
    }
    ini.endGroup();

    fillPortList(defaultSerial);
    if (method == MethodEthernet)
        ui->radEthernet->setChecked(true);
    else if (method == MethodSerial && ui->radSerial->isEnabled())
        ui->radSerial->setChecked(true);
    else if (method == MethodUSB)
        ui->radUSB->setChecked(true);
    enableFor(this->method());
    // A stored choice the dialog cannot show (serial without a free port) is kept
    // unless the user picks a method or connects.
    m_keepStoredMethod = this->method() != method;

    connect(ui->radUSB, &QRadioButton::clicked, this, &TcomSelectFrm::radUSBClick);
    connect(ui->radEthernet, &QRadioButton::clicked, this, &TcomSelectFrm::radEthernetClick);
    connect(ui->radSerial, &QRadioButton::clicked, this, &TcomSelectFrm::radSerialClick);
    connect(ui->btnConnect, &QPushButton::clicked, this, &TcomSelectFrm::btnConnectClick);
    connect(ui->btnCancel, &QPushButton::clicked, this, &TcomSelectFrm::btnCancelClick);
}

TcomSelectFrm::~TcomSelectFrm() = default;

std::filesystem::path TcomSelectFrm::iniFile()
{
    return TappDir::applicationFolder() / "KT930pc.ini";
}

int TcomSelectFrm::portNumberOf(const QString &entry)
{
    char skipped[3];
    int port = 1;
    const QByteArray text = entry.toLatin1();
    if (std::sscanf(text.constData(), "%c%c%c%d", &skipped[0], &skipped[1], &skipped[2], &port) != 4)
        return 1;
    return port;
}

void TcomSelectFrm::fillPortList(int defaultSerial)
{
    const auto overrides = TserialPortMap::readOverrides(iniFile());
    const std::vector<int> ports = TserialPortMap::freePorts(overrides);
    if (ports.empty()) {
        ui->radSerial->setChecked(false);
        ui->radSerial->setEnabled(false);
        ui->lblSerialPort->setEnabled(false);
        ui->serialPortSelector->addItem(QStringLiteral("<No Free Ports>"));
        ui->serialPortSelector->setEnabled(false);
        return;
    }
    int selected = 0;
    for (std::size_t i = 0; i < ports.size(); ++i) {
        QString device = QString::fromStdString(TserialPortMap::deviceOf(ports[i], overrides));
        ui->serialPortSelector->addItem(QStringLiteral("COM%1 (%2)").arg(ports[i]).arg(device));
        if (ports[i] == defaultSerial)
            selected = int(i);
    }
    ui->serialPortSelector->setCurrentIndex(selected);
}

int TcomSelectFrm::method() const
{
    if (ui->radUSB->isChecked())
        return MethodUSB;
    if (ui->radEthernet->isChecked())
        return MethodEthernet;
    return MethodSerial;
}

QString TcomSelectFrm::ipText(int field) const
{
    return m_ip[field - 1]->text();
}

int TcomSelectFrm::serialPort() const
{
    if (ui->serialPortSelector->currentIndex() < 0)
        return 1;
    return portNumberOf(ui->serialPortSelector->currentText());
}

void TcomSelectFrm::enableFor(int method)
{
    const bool ethernet = method == MethodEthernet;
    const bool serial = method == MethodSerial;
    for (QLineEdit *field : m_ip)
        field->setEnabled(ethernet);
    for (QWidget *w : {static_cast<QWidget *>(ui->dot1), static_cast<QWidget *>(ui->dot2),
                       static_cast<QWidget *>(ui->dot3), static_cast<QWidget *>(ui->lblEthernet)})
        w->setEnabled(ethernet);
    ui->serialPortSelector->setEnabled(serial);
    ui->lblSerialPort->setEnabled(serial);
}

void TcomSelectFrm::radUSBClick()
{
    m_keepStoredMethod = false;
    enableFor(MethodUSB);
}

void TcomSelectFrm::radEthernetClick()
{
    m_keepStoredMethod = false;
    enableFor(MethodEthernet);
}

void TcomSelectFrm::radSerialClick()
{
    m_keepStoredMethod = false;
    enableFor(MethodSerial);
}

bool TcomSelectFrm::IPKeyPress(QChar key)
{
    return key.isDigit() || key == QChar(8);
}

bool TcomSelectFrm::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        const QString text = key->text();
        // Only keys that type a character are filtered, the way the field itself
        // decides what types: a printable text without Ctrl. Editing keys (Delete,
        // arrows, Home, End, select-all, Tab, Return, Escape) work as anywhere else.
        const Qt::KeyboardModifiers modifiers = key->modifiers() & ~Qt::KeypadModifier;
        const bool types = !text.isEmpty() && text.at(0).isPrint() && modifiers != Qt::ControlModifier
            && modifiers != (Qt::ControlModifier | Qt::ShiftModifier);
        if (types && !IPKeyPress(text.at(0)))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}

void TcomSelectFrm::IPChange()
{
    auto *field = qobject_cast<QLineEdit *>(sender());
    if (field && isVisible() && field->text().size() == 3)
        focusNextChild();
}

void TcomSelectFrm::btnConnectClick()
{
    if (ui->radEthernet->isChecked()) {
        for (QLineEdit *field : m_ip) {
            bool ok = false;
            int octet = field->text().toInt(&ok);
            if (!ok || octet < 0 || octet > 255) {
                m_sink.show({QCoreApplication::applicationName().toStdString(), "Invalid IP Address!",
                             MsgIcon::Information, MsgButtons::Ok, MsgModality::Task});
                return;
            }
        }
    }
    done(1);
}

void TcomSelectFrm::btnCancelClick()
{
    done(2);
}

void TcomSelectFrm::done(int result)
{
    // Escape and the window's close button count as Cancel.
    if (result == QDialog::Rejected)
        result = 2;
    FormClose(result == 2);
    QDialog::done(result);
}

void TcomSelectFrm::FormClose(bool cancelled)
{
    if (cancelled && m_keepStoredMethod)
        return;
    QSettings ini(iniPath(), QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("COMM"));
    if (ui->radUSB->isChecked()) {
        ini.setValue(QStringLiteral("DEFAULTCOMMMETHOD"), int(MethodUSB));
    } else if (ui->radEthernet->isChecked()) {
        ini.setValue(QStringLiteral("DEFAULTCOMMMETHOD"), int(MethodEthernet));
        for (int i = 0; i < 4; ++i)
            ini.setValue(QStringLiteral("IP%1").arg(i + 1), m_ip[i]->text());
    } else if (ui->radSerial->isChecked()) {
        ini.setValue(QStringLiteral("DEFAULTCOMMMETHOD"), int(MethodSerial));
        ini.setValue(QStringLiteral("DEFAULTSERIAL"), serialPort());
    }
    ini.endGroup();
    ini.sync();
}
