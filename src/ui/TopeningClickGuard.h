#pragma once
// Ignores presses on a window's buttons that arrive within the double-click interval
// of its opening: the second click of the double click that opened the window must
// not press whatever button happens to lie under the pointer.
#include <QElapsedTimer>
#include <QObject>

class QWidget;

class TopeningClickGuard : public QObject {
public:
    explicit TopeningClickGuard(QWidget *window); // owned by window

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isButtonOfWindow(QObject *watched) const;

    QWidget *m_window;
    QElapsedTimer m_opened;
};
