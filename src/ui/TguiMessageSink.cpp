#include "TguiMessageSink.h"
#include "TguiText.h"
#include <QApplication>
#include <QMessageBox>
#include <QThread>

namespace {
MessageSink *g_override = nullptr;

QMessageBox::Icon iconOf(MsgIcon icon)
{
    switch (icon) {
    case MsgIcon::Stop: return QMessageBox::Critical;
    case MsgIcon::Exclamation: return QMessageBox::Warning;
    case MsgIcon::Question: return QMessageBox::Question;
    case MsgIcon::Information: return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}
} // namespace

MessageSink &TguiMessageSink::defaultSink()
{
    static TguiMessageSink gui;
    return g_override ? *g_override : gui;
}

void TguiMessageSink::setDefaultSink(MessageSink *sink)
{
    g_override = sink;
}

MsgAnswer TguiMessageSink::show(const Message &message)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread())
        return showHere(message);
    MsgAnswer answer = MsgAnswer::Ok;
    QMetaObject::invokeMethod(app, [&] { answer = showHere(message); }, Qt::BlockingQueuedConnection);
    return answer;
}

MsgAnswer TguiMessageSink::showHere(const Message &message)
{
    QString text = TguiText::fromBytes(message.text);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QChar('\r'), QChar('\n'));
    QMessageBox box(iconOf(message.icon), TguiText::fromBytes(message.caption), text);
    box.setWindowModality(Qt::ApplicationModal);
    if (message.modality == MsgModality::System)
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
    if (message.buttons == MsgButtons::YesNo) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::Yes);
        return box.exec() == QMessageBox::No ? MsgAnswer::No : MsgAnswer::Yes;
    }
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
    return MsgAnswer::Ok;
}
