#pragma once
// The pictures of the frames' bottom row: Upload, Download, Help and Return.
class QAbstractButton;

class TframeButtons {
public:
    static void decorate(QAbstractButton *upload, QAbstractButton *download, QAbstractButton *help,
                         QAbstractButton *exit);
};
