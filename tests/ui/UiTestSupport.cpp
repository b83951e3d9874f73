#include "UiTestSupport.h"
#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <cstdlib>
#include <cstring>

void ensureApplication()
{
    static int argc = 1;
    static char name[] = "test_ui";
    static char *argv[] = {name, nullptr};
    static QApplication *app = nullptr;
    if (!app) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        app = new QApplication(argc, argv);
        QApplication::setApplicationName(QStringLiteral("kt930pc"));
    }
}

AppDirScope::AppDirScope()
{
    ensureApplication();
    std::filesystem::create_directories(m_dir.path() / "Data");
    setenv("KT930PC_APPDIR", m_dir.path().c_str(), 1);
}

AppDirScope::~AppDirScope()
{
    unsetenv("KT930PC_APPDIR");
}

namespace {
void putWord(std::string &out, std::uint16_t word)
{
    out.push_back(char(word & 0xFF));
    out.push_back(char(word >> 8));
}

void putText(std::string &out, const char *text, std::size_t length, std::size_t width)
{
    std::string field(width, '\0');
    std::memcpy(field.data(), text, std::min(length, width));
    out += field;
}
} // namespace

std::string asqBytes(const std::string &title, const std::string &subtitle, const std::vector<Tautosequence> &records)
{
    std::string out;
    putText(out, title.c_str(), title.size(), 64);
    putText(out, subtitle.c_str(), subtitle.size(), 64);
    putWord(out, std::uint16_t(records.size()));
    for (const Tautosequence &r : records) {
        putText(out, r.title1, 19, 64);
        putText(out, r.title2, 19, 64);
        putWord(out, r.setting);
        putWord(out, Tautosequence::ItemCount);
        for (std::uint16_t item : r.items)
            putWord(out, item);
    }
    return out;
}

std::string mitBytes(const std::vector<TInstr> &slots)
{
    std::string out;
    for (const TInstr &slot : slots)
        out.append(reinterpret_cast<const char *>(&slot), sizeof slot);
    return out;
}

Tautosequence sequence(const std::string &title1, const std::string &title2, std::vector<std::uint16_t> items)
{
    Tautosequence s;
    Tautosequence::setTitle(s.title1, title1);
    Tautosequence::setTitle(s.title2, title2);
    for (std::size_t i = 0; i < items.size(); ++i)
        s.items[i] = items[i];
    if (items.size() < Tautosequence::ItemCount)
        s.items[items.size()] = 0;
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

void whenModal(std::function<void(QWidget *)> action)
{
    auto *timer = new QTimer;
    timer->setInterval(2);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        timer->stop();
        timer->deleteLater();
        action(modal);
    });
    timer->start();
}
