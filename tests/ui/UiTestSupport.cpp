#include "UiTestSupport.h"
#include "ByteBuilder.h"
#include "THelpWindow.h"
#include <cstdlib>

void ensureApplication()
{
    static int argc = 1;
    static char name[] = "test_ui";
    static char *argv[] = {name, nullptr};
    if (!qApp) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        new QApplication(argc, argv);
        QApplication::setApplicationName(QStringLiteral("kt930pc"));
    }
}

AppDirScope::AppDirScope()
{
    ensureApplication();
    std::filesystem::create_directories(m_dir.path() / "Data");
    setenv("KT930PC_APPDIR", m_dir.path().c_str(), 1);
}

AppDirScope::~AppDirScope() { unsetenv("KT930PC_APPDIR"); }

std::string asqBytes(const std::string &title, const std::string &subtitle, const std::vector<Tautosequence> &records)
{
    std::string out = ByteBuilder::asqHeader(title, subtitle, std::uint16_t(records.size()));
    for (const Tautosequence &r : records)
        out += ByteBuilder::asqRecord(std::string(r.title1, 19), std::string(r.title2, 19), r.setting,
                                      std::vector<std::uint16_t>(r.items, r.items + Tautosequence::ItemCount));
    return out;
}

std::string mitBytes(const std::vector<TInstr> &slots)
{
    return std::string(reinterpret_cast<const char *>(slots.data()), slots.size() * sizeof(TInstr));
}

Tautosequence sequence(const std::string &title1, const std::string &title2, std::vector<std::uint16_t> items)
{
    Tautosequence s;
    Tautosequence::setTitle(s.title1, title1);
    Tautosequence::setTitle(s.title2, title2);
    items.resize(std::max<std::size_t>(items.size(), Tautosequence::ItemCount), 0);
    std::copy_n(items.begin(), Tautosequence::ItemCount, s.items);
    return s;
}

Tautosequence unusedSequence()
{
    Tautosequence s;
    s.makeUnused();
    return s;
}

void AppDirScope::writeCompleteDataSet(const std::vector<Tautosequence> &inspections,
                                       const std::vector<std::string> &testerNames) const
{
    std::vector<TInstr> slots(1044);
    slots[0].assign('A', 'P', "Visual check");
    writeData("mit.dat", mitBytes(slots));
    writeData("inspection.asq", asqBytes("Physical Inspections", "", inspections));
    for (std::size_t i = 0; i < testerNames.size(); ++i) {
        std::vector<Tautosequence> sequences(12, unusedSequence());
        sequences[0] = sequence("LEAKAGE", "CLASS " + std::to_string(i + 1), {1});
        writeData("usertester" + std::to_string(i + 1) + ".asq",
                  asqBytes("User Tester Autosequences", testerNames[i], sequences));
    }
    writeData("testProc.asq", asqBytes("Checklists", "", {sequence("CHECKLIST", "ONE", {1})}));
}

void AppDirScope::copyDemoDefinitions(bool withDescriptors) const
{
    for (const auto &entry : std::filesystem::directory_iterator(KT930_TEST_APPDIR "/Data"))
        if (entry.path().extension() == ".in" || (withDescriptors && entry.path().filename() == "catdes.dat"))
            std::filesystem::copy_file(entry.path(), data(entry.path().filename().string()));
}

void click(const QObject *parent, const char *button)
{
    if (auto *found = child<QAbstractButton>(parent, button))
        found->click();
}

void mouseClick(const QObject *parent, const char *name)
{
    if (auto *found = child(parent, name))
        QTest::mouseClick(found, Qt::LeftButton, {}, found->rect().center());
}

QStringList modelTexts(const QAbstractItemModel *model, int column)
{
    QStringList found;
    for (int r = 0; model && r < model->rowCount(); ++r)
        found << model->index(r, column).data().toString();
    return found;
}

QStringList columnTexts(const QTableView *grid, int column) { return modelTexts(grid->model(), column); }
QStringList comboTexts(const QComboBox *list) { return modelTexts(list->model()); }
QStringList comboTexts(const QObject *parent, const char *list)
{
    return modelTexts(child<QComboBox>(parent, list)->model());
}
QStringList listTexts(QWidget *frame) { return modelTexts(child<QListWidget>(frame, "lstIP")->model()); }

QStringList numberTexts(int count)
{
    QStringList found;
    for (int n = 1; n <= count; ++n)
        found << QString::number(n);
    return found;
}

QList<THelpWindow *> helpWindows()
{
    QList<THelpWindow *> found;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *help = qobject_cast<THelpWindow *>(w); help && help->isVisible())
            found << help;
    return found;
}

void whenTrue(std::function<bool()> condition, std::function<void()> action)
{
    auto *timer = new QTimer;
    timer->setInterval(2);
    QObject::connect(timer, &QTimer::timeout, [timer, condition, action] {
        if (!condition())
            return;
        timer->stop();
        timer->deleteLater();
        action();
    });
    timer->start();
}

void whenModal(std::function<void(QWidget *)> action)
{
    auto modal = [] {
        QWidget *widget = QApplication::activeModalWidget();
        return widget && widget->isVisible() ? widget : nullptr;
    };
    whenTrue([modal] { return modal() != nullptr; }, [modal, action] { action(modal()); });
}

void connectByEthernet(const std::string &address, std::function<void()> then)
{
    whenModal([address, then](QWidget *selector) {
        EXPECT_EQ(selector->windowTitle(), "Communication Settings");
        click(selector, "radEthernet");
        const QStringList octets = QString::fromStdString(address).split('.');
        for (int i = 0; i < 4; ++i)
            child<QLineEdit>(selector, QStringLiteral("IP%1").arg(i + 1).toLatin1().constData())
                ->setText(octets.value(i));
        click(selector, "btnConnect");
        if (then)
            then();
    });
}
