#include "TprintFonts.h"

TprintFonts::TprintFonts(int pointSize) : regular(QStringLiteral("Courier New"), pointSize)
{
    regular.setStyleHint(QFont::TypeWriter);
    bold = regular;
    bold.setBold(true);
    header = bold;
    header.setUnderline(true);
}
