#include "TguiText.h"
#include <QStringDecoder>
#include <QStringEncoder>

QString TguiText::fromBytes(const std::string &bytes)
{
    QStringDecoder decoder("windows-1252");
    if (!decoder.isValid())
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    return decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
}

std::string TguiText::toBytes(const QString &text)
{
    QStringEncoder encoder("windows-1252");
    QByteArray bytes = encoder.isValid() ? QByteArray(encoder.encode(text)) : text.toLatin1();
    return bytes.toStdString();
}

QString TguiText::forDisplay(const std::string &bytes)
{
    return fromBytes(bytes).replace(QChar('\t'), QChar(0x00BB));
}
