#pragma once
// Return or the keypad's Enter, pressed without Shift, Ctrl or Alt.
class QEvent;

class TenterKey {
public:
    static bool pressed(const QEvent *event);
};
