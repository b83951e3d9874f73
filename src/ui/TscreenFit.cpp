#include "TscreenFit.h"
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

void TscreenFit::fit(QWidget *window)
{
    QLayout *layout = window->layout();
    if (!layout)
        return;
    // Moving the widgets to another parent rebuilds the focus chain in creation
    // order: the form's tab order is noted here and set again below.
    QList<QWidget *> tabOrder;
    for (QWidget *w = window->nextInFocusChain(); w && w != window; w = w->nextInFocusChain())
        if (window->isAncestorOf(w) && (w->focusPolicy() & Qt::TabFocus))
            tabOrder << w;
    // setLayout takes the layout, and the widgets in it, from the window.
    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("screenFitContent"));
    content->setLayout(layout);
    auto *area = new QScrollArea;
    area->setObjectName(QStringLiteral("screenFitArea"));
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // not a stop of the Tab key
    area->setWidgetResizable(true);
    area->setWidget(content);
    auto *outer = new QVBoxLayout(window);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(area);
    for (qsizetype i = 1; i < tabOrder.size(); ++i)
        QWidget::setTabOrder(tabOrder[i - 1], tabOrder[i]);

    // Room for the title bar and borders, which the window system adds outside.
    const QSize room = window->screen()->availableGeometry().size() - QSize(16, 48);
    const QSize least = content->minimumSizeHint();
    window->setMinimumSize(least.boundedTo(room));
    window->resize(window->size().expandedTo(least).boundedTo(room));
}
