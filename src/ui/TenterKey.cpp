#include "TenterKey.h"
#include <QKeyEvent>

bool TenterKey::pressed(const QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<const QKeyEvent *>(event);
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        && (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}
