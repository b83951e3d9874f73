// Communication settings: defaults, the ini round trip, mapped pseudo-terminals, address checks.
#include "PtyPair.h"
#include "RecordingMessageSink.h"
#include "TserialPortMap.h"
#include "UiTestSupport.h"
#include "communicationsSelector.h"

namespace {
struct SelectorFixture : ::testing::Test {
    AppDirScope appDir;
    RecordingMessageSink sink;
    QString ini() const { return QString::fromStdString((appDir.dir().path() / "KT930pc.ini").string()); }
    // Writes these keys into the settings file, after clearing it if asked.
    void store(const std::vector<std::pair<QString, QVariant>> &values, bool clear = false) const
    {
        QSettings settings(ini(), QSettings::IniFormat);
        clear ? settings.clear() : void();
        for (const auto &[key, value] : values)
            settings.setValue(key, value);
    }
    QVariant stored(const char *key) const { return QSettings(ini(), QSettings::IniFormat).value(key); }
};
} // namespace

TEST_F(SelectorFixture, WithoutSettingsFileOpensOnUsbAndTheDefaultAddressAndEntriesBeginWithThePortName)
{
    EXPECT_EQ(TcomSelectFrm::portNumberOf("COM12 (/dev/ttyS11)") + TcomSelectFrm::portNumberOf("COM3"), 15);
    TcomSelectFrm form(nullptr, true, &sink);
    EXPECT_TRUE(child<QRadioButton>(&form, "radUSB")->isChecked() && form.method() == TcomSelectFrm::MethodUSB);
    EXPECT_EQ(QStringList({form.ipText(1), form.ipText(2), form.ipText(3), form.ipText(4)}),
              QStringList({"127", "0", "0", "1"}));
    EXPECT_FALSE(child<QLineEdit>(&form, "IP1")->isEnabled() ||
                 child<QComboBox>(&form, "serialPortSelector")->isEnabled());
}

// Pseudo-terminals mapped by SERIALPORTS are offered in port order; the stored port is
// selected only while it is free, else the first free one, and Connect remembers it.
TEST_F(SelectorFixture, MappedPseudoTerminalsAreOfferedTheStoredOneSelectedWhileFreeAndRemembered)
{
    PtyPair first, second;
    const QString entry250 = QStringLiteral("COM250 (%1)").arg(QString::fromStdString(first.slavePath));
    const QString entry251 = QStringLiteral("COM251 (%1)").arg(QString::fromStdString(second.slavePath));
    // 252 is not free (not even mapped); without COMM settings DEFAULTSERIAL is 0, which no port has.
    for (const auto &[defaultSerial, selected] :
         {std::pair{QVariant(251), entry251}, std::pair{QVariant(252), QString()}, std::pair{QVariant(), QString()}}) {
        store({{"SERIALPORTS/COM250", QString::fromStdString(first.slavePath)},
               {"SERIALPORTS/COM251", QString::fromStdString(second.slavePath)}}, true);
        if (defaultSerial.isValid())
            store({{"COMM/DEFAULTSERIAL", defaultSerial}, {"COMM/DEFAULTCOMMMETHOD", 3}});
        TcomSelectFrm form(nullptr, false, &sink);
        auto *ports = child<QComboBox>(&form, "serialPortSelector");
        EXPECT_EQ(comboTexts(ports).mid(ports->count() - 2), (QStringList{entry250, entry251}));
        if (selected.isEmpty()) {
            EXPECT_EQ(ports->currentIndex(), 0) << defaultSerial.toInt();
            continue;
        }
        EXPECT_EQ(ports->currentText(), selected);
        EXPECT_TRUE(child<QRadioButton>(&form, "radSerial")->isChecked() && ports->isEnabled() &&
                    form.serialPort() == 251);
        click(&form, "btnConnect");
        EXPECT_EQ(form.result(), 1);
        EXPECT_EQ(std::pair(stored("COMM/DEFAULTCOMMMETHOD").toInt(), stored("COMM/DEFAULTSERIAL").toInt()),
                  std::pair(3, 251));
    }
}

TEST_F(SelectorFixture, AddressFieldsLetReturnAndEscapeReachTheDialog)
{
    EXPECT_TRUE(TcomSelectFrm::IPKeyPress(QChar('7')) && TcomSelectFrm::IPKeyPress(QChar(8)) &&
                !TcomSelectFrm::IPKeyPress(QChar('.')));
    store({{"COMM/DEFAULTCOMMMETHOD", 2}});
    for (auto [field, key, result] : {std::tuple{"IP2", Qt::Key_Return, 1}, std::tuple{"IP3", Qt::Key_Escape, 2}}) {
        TcomSelectFrm form(nullptr, false, &sink);
        form.show();
        auto *ip = child<QLineEdit>(&form, field);
        ip->setFocus();
        QTest::keyClick(ip, key);
        EXPECT_TRUE(!form.isVisible() && form.result() == result) << field;
    }
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(SelectorFixture, EthernetAddressIsCheckedAndWrittenOnClose)
{
    store({{"COMM/DEFAULTCOMMMETHOD", 2}, {"COMM/IP1", "10"}, {"COMM/IP2", "1"}, {"COMM/IP3", "2"}, {"COMM/IP4", "3"}});
    TcomSelectFrm form(nullptr, true, &sink);
    EXPECT_TRUE(child<QRadioButton>(&form, "radEthernet")->isChecked() && child<QLineEdit>(&form, "IP4")->isEnabled() &&
                form.ipText(1) == "10");

    auto *ip4 = child<QLineEdit>(&form, "IP4");
    ip4->setText("256");
    form.show();
    click(&form, "btnConnect");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"kt930pc", "Invalid IP Address!", MsgIcon::Information}}));

    ip4->setText("42");
    click(&form, "btnConnect"); // the form stayed open for it
    EXPECT_TRUE(!form.isVisible() && form.result() == 1 && stored("COMM/DEFAULTCOMMMETHOD").toInt() == 2);
    EXPECT_EQ(stored("COMM/IP1").toString() + "." + stored("COMM/IP4").toString(), "10.42");
}

// Keys that type no character edit as in any text field; only typed characters
// other than digits are dropped, and a digit replaces a selection even in a full field.
TEST_F(SelectorFixture, AddressFieldsTakeEditingKeysAndTypeOverASelection)
{
    store({{"COMM/DEFAULTCOMMMETHOD", 2}, {"COMM/IP1", "192"}, {"COMM/IP4", "12"}});
    TcomSelectFrm form(nullptr, false, &sink);
    form.show();
    QApplication::setActiveWindow(&form);
    auto *ip1 = child<QLineEdit>(&form, "IP1");
    auto *ip4 = child<QLineEdit>(&form, "IP4");

    ip1->setFocus();
    QTest::keyClick(ip1, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(ip1->selectedText(), "192");
    QTest::keyClick(ip1, Qt::Key_7); // the field is full, the selection goes
    QTest::keyClicks(ip1, "x.-");
    EXPECT_EQ(ip1->text(), "7");

    ip4->setFocus();
    QTest::keyClick(ip4, Qt::Key_Home);
    // Delete as an X11 keyboard sends it, with DEL as its text.
    QTest::sendKeyEvent(QTest::Click, ip4, Qt::Key_Delete, QStringLiteral("\x7f"), Qt::NoModifier);
    QStringList steps{ip4->text()};
    for (const auto &[key, modifier] : {std::pair{Qt::Key_End, Qt::NoModifier},
                                        {Qt::Key_Left, Qt::NoModifier},
                                        {Qt::Key_4, Qt::NoModifier},
                                        {Qt::Key_End, Qt::NoModifier},
                                        {Qt::Key_Left, Qt::ShiftModifier},
                                        {Qt::Key_5, Qt::NoModifier}})
        QTest::keyClick(ip4, key, modifier), steps << ip4->text();
    EXPECT_EQ(steps, (QStringList{"2", "2", "2", "42", "42", "42", "45"}));
    EXPECT_TRUE(sink.messages.empty());
}

// Serial stored but no port free: the dialog shows USB. Cancel and Escape close with 2
// and leave the stored choice alone; a method the user picks or connects with is stored.
TEST_F(SelectorFixture, CancelKeepsAStoredMethodThatWasNotAvailableButStoresAPickedOne)
{
    std::vector<std::pair<QString, QVariant>> serialWithoutFreePorts{{"COMM/DEFAULTCOMMMETHOD", 3},
                                                                     {"COMM/DEFAULTSERIAL", 7}};
    for (int port = 1; port <= TserialPortMap::MaxPort; ++port)
        serialWithoutFreePorts.emplace_back(QStringLiteral("SERIALPORTS/COM%1").arg(port), "/nonexistent/tty");
    const auto method = [&] {
        return std::pair(stored("COMM/DEFAULTCOMMMETHOD").toInt(), stored("COMM/DEFAULTSERIAL").toInt());
    };
    // The button that ends the dialog, or Escape where there is none; a method picked first.
    // clang-format off
    const struct { bool fresh; const char *picked, *button; int result; std::pair<int, int> method; } runs[] = {
        {true, nullptr, "btnCancel", 2, {3, 7}}, {false, nullptr, nullptr, 2, {3, 7}},
        {false, nullptr, "btnConnect", 1, {1, 7}}, {true, "radEthernet", "btnCancel", 2, {2, 7}}};
    // clang-format on
    for (const auto &run : runs) {
        if (run.fresh)
            store(serialWithoutFreePorts, true);
        TcomSelectFrm form(nullptr, false, &sink);
        EXPECT_FALSE(child<QRadioButton>(&form, "radSerial")->isEnabled());
        EXPECT_EQ(child<QComboBox>(&form, "serialPortSelector")->currentText(), "<No Free Ports>");
        EXPECT_TRUE(child<QRadioButton>(&form, "radUSB")->isChecked());
        if (run.picked)
            click(&form, run.picked);
        if (run.button) {
            click(&form, run.button);
        } else {
            form.show();
            QTest::keyClick(&form, Qt::Key_Escape);
        }
        EXPECT_EQ(form.result(), run.result);
        EXPECT_EQ(method(), run.method);
    }
    EXPECT_EQ(stored("COMM/IP1").toString(), "127");
    EXPECT_TRUE(sink.messages.empty());
}
