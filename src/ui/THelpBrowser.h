#pragma once
// The page view of a help window: one topic of a compiled help file (.qch) and the
// pages its links lead to. Each browser has its own help collection in a temporary folder.
#include <QTemporaryDir>
#include <QTextBrowser>
#include <filesystem>
#include <memory>

class QHelpEngineCore;

class THelpBrowser : public QTextBrowser {
    Q_OBJECT
public:
    // Opens topic (e.g. "autoSequenceEditor.html") of helpFile, or its first page when
    // topic is empty. A missing file or topic leaves a short note instead of the page.
    THelpBrowser(const std::filesystem::path &helpFile, const QString &topic, QWidget *parent = nullptr);
    ~THelpBrowser() override;

    bool topicLoaded() const { return m_loaded; }
    QVariant loadResource(int type, const QUrl &name) override;

private:
    QTemporaryDir m_collectionDir;
    std::unique_ptr<QHelpEngineCore> m_engine;
    QString m_namespace;
    bool m_loaded = false;
};
