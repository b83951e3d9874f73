#include "TopeningClickGuard.h"
#include <QAbstractButton>
#include <QApplication>
#include <QEvent>

TopeningClickGuard::TopeningClickGuard(QWidget *window) : QObject(window), m_window(window)
{
    window->installEventFilter(this);
}

bool TopeningClickGuard::isButtonOfWindow(QObject *watched) const
{
    auto *button = qobject_cast<QAbstractButton *>(watched);
    return button && button->window() == m_window;
}

bool TopeningClickGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window) {
        // Watching every event of the application only for a moment after each opening.
        if (event->type() == QEvent::Show) {
            m_opened.start();
            qApp->installEventFilter(this);
        }
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        if (m_opened.elapsed() >= QApplication::doubleClickInterval()) {
            qApp->removeEventFilter(this);
            return false;
        }
        return isButtonOfWindow(watched);
    default:
        return false;
    }
}
