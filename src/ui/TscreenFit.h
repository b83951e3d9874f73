#pragma once
// Keeps a window within the screen it opens on. With a large scale factor a form's
// layout can ask for more than the screen has; its contents then scroll instead of
// running off the screen, and the window never asks for more than the screen.
class QWidget;

class TscreenFit {
public:
    // Call once the window's layout and contents are built.
    static void fit(QWidget *window);
};
