#pragma once
// The faces of the printouts: one fixed pitch, so that padded columns line up.
#include <QFont>

struct TprintFonts {
    explicit TprintFonts(int pointSize);
    QFont regular;
    QFont bold;
    QFont header; // bold and underlined
};
