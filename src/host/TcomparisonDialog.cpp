#include "TcomparisonDialog.h"
#include "TdataSetComparison.h"
#include "TguiText.h"
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

TcomparisonDialog::TcomparisonDialog(const TdataSetComparison &comparison, const QString &caption, QWidget *parent)
    : QDialog(parent), m_summary(new QLabel(this)), m_differences(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("comparisonDialog"));
    setWindowTitle(QStringLiteral("Compare With KT930"));
    auto *heading = new QLabel(caption, this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    m_summary->setObjectName(QStringLiteral("lblSummary"));
    m_summary->setText(QString::fromStdString(comparison.summary()));

    m_differences->setObjectName(QStringLiteral("treeDifferences"));
    m_differences->setHeaderHidden(true);
    m_differences->setRootIsDecorated(true);
    m_differences->setUniformRowHeights(true);
    // A checklist's or a checkitem's line can be long: scroll rather than cut it short.
    m_differences->header()->setStretchLastSection(false);
    m_differences->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (std::size_t kind = 0; kind < TdataSetDifference::KindCount; ++kind) {
        const auto groupKind = TdataSetDifference::Kind(kind);
        if (comparison.count(groupKind) == 0)
            continue;
        QString name = QString::fromLatin1(TdataSetDifference::groupName(groupKind));
        name[0] = name[0].toUpper();
        auto *group =
            new QTreeWidgetItem(m_differences, {QStringLiteral("%1 (%2)").arg(name).arg(comparison.count(groupKind))});
        group->setFont(0, bold);
        for (const TdataSetDifference &difference : comparison.differences())
            if (difference.kind == groupKind)
                new QTreeWidgetItem(group, {TguiText::fromBytes(difference.line())});
        group->setExpanded(true);
    }
    m_differences->setVisible(!comparison.same());

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(m_summary);
    layout->addWidget(m_differences, 1);
    layout->addWidget(buttons);
    resize(comparison.same() ? QSize(360, 120) : QSize(820, 520));
}

QString TcomparisonDialog::summary() const
{
    return m_summary->text();
}
