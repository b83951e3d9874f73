#include "THelpBrowser.h"
#include <QHelpEngineCore>

THelpBrowser::THelpBrowser(const std::filesystem::path &helpFile, const QString &topic, QWidget *parent)
    : QTextBrowser(parent)
{
    setOpenLinks(true);
    const QString qch = QString::fromStdString(helpFile.string());
    m_engine = std::make_unique<QHelpEngineCore>(m_collectionDir.filePath(QStringLiteral("help.qhc")));
    m_engine->setReadOnly(false);
    if (m_collectionDir.isValid() && m_engine->setupData()) {
        m_namespace = QHelpEngineCore::namespaceName(qch);
        if (!m_namespace.isEmpty())
            m_engine->registerDocumentation(qch);
    }
    QUrl url;
    if (!m_namespace.isEmpty() && topic.isEmpty()) {
        // No topic: the first page the help file lists.
        const QList<QUrl> pages = m_engine->files(m_namespace, QString(), QStringLiteral("html"));
        if (!pages.isEmpty())
            url = pages.first();
    } else if (!m_namespace.isEmpty()) {
        url = m_engine->findFile(QUrl(QStringLiteral("qthelp://%1/doc/%2").arg(m_namespace, topic)));
    }
    if (url.isValid()) {
        setSource(url);
        m_loaded = !toPlainText().isEmpty();
    }
    if (!m_loaded)
        setPlainText(QStringLiteral("The help topic %1 could not be found in %2.").arg(topic, qch));
}

THelpBrowser::~THelpBrowser() = default;

QVariant THelpBrowser::loadResource(int type, const QUrl &name)
{
    if (name.scheme() == QLatin1String("qthelp"))
        return m_engine->fileData(name);
    return QTextBrowser::loadResource(type, name);
}
