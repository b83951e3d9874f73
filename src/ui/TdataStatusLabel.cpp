#include "TdataStatusLabel.h"
#include "TdataSet.h"

TdataStatusLabel::TdataStatusLabel(QWidget *parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("lblDataStatus"));
    setWordWrap(true);
    setStyleSheet(QStringLiteral("color: rgb(160, 0, 0)"));
    hide();
}

void TdataStatusLabel::showWarnings(const TdataSet &data)
{
    QStringList lines;
    for (const std::string &line : data.folderWarnings())
        lines << QString::fromStdString(line);
    setText(lines.join(QLatin1Char('\n')));
    setVisible(!lines.isEmpty());
}
