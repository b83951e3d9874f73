#pragma once
// A help window showing one topic of a compiled help file (.qch) and following
// its links. Each window has its own help collection in a temporary folder.
#include <QPointer>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <filesystem>
#include <memory>

class QHelpEngineCore;

class THelpWindow : public QTextBrowser {
    Q_OBJECT
public:
    // Opens topic (e.g. "autoSequenceEditor.html") of helpFile, or its first page when
    // topic is empty. A missing file or
    // topic leaves the window with a short note instead of the page.
    THelpWindow(const std::filesystem::path &helpFile, const QString &topic);
    ~THelpWindow() override;

    // One window per owner: opens it in window when there is none (as a child window of
    // modalOwner, if given, so that a modal dialog does not block it), else brings it back.
    static void showTopic(QPointer<THelpWindow> &window, const std::filesystem::path &helpFile,
                          const QString &topic, QWidget *modalOwner = nullptr);

    bool topicLoaded() const { return m_loaded; }
    QVariant loadResource(int type, const QUrl &name) override;

private:
    QTemporaryDir m_collectionDir;
    std::unique_ptr<QHelpEngineCore> m_engine;
    QString m_namespace;
    bool m_loaded = false;
};
