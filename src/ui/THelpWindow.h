#pragma once
// A help window: a page of a compiled help file (.qch) with Back and Forward
// through the pages its links led to.
#include <QPointer>
#include <QWidget>
#include <filesystem>

class QToolButton;
class THelpBrowser;

class THelpWindow : public QWidget {
    Q_OBJECT
public:
    // Opens topic (e.g. "autoSequenceEditor.html") of helpFile, or its first page when
    // topic is empty. A missing file or topic leaves the window with a short note.
    THelpWindow(const std::filesystem::path &helpFile, const QString &topic);
    ~THelpWindow() override;

    // One window per owner: opens it in window when there is none, else brings it back.
    // A new window is a child window of modalOwner, if given, so that a modal dialog does
    // not block it, and it opens fully visible over the window of asker (modalOwner when
    // not given) on that window's screen.
    static void showTopic(QPointer<THelpWindow> &window, const std::filesystem::path &helpFile,
                          const QString &topic, QWidget *modalOwner = nullptr, QWidget *asker = nullptr);

    // Where a new window opens on a screen with the free area available: centred over
    // the asking window's frame, moved inside where that would cross an edge of the
    // area, with room left for the title bar and borders.
    static QRect placement(const QRect &askerFrame, const QRect &available);

    bool topicLoaded() const;
    QString toPlainText() const; // the text of the page on show
    THelpBrowser *browser() const { return m_browser; }

private:
    void placeOver(const QWidget *asker);

    THelpBrowser *m_browser;
    QToolButton *m_back;
    QToolButton *m_forward;
};
