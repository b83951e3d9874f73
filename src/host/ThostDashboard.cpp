#include "ThostDashboard.h"
#include "TdataFolderSummary.h"
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QString text(const std::string &value)
{
    return QString::fromStdString(value);
}
} // namespace

ThostDashboard::ThostDashboard(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("dashboard"));
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 12, 0, 0);
    m_folder = addRow(form, QStringLiteral("Data folder:"), QStringLiteral("folder"));
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_checkitems = addRow(form, QStringLiteral("Checkitems:"), QStringLiteral("checkitems"));
    m_inspections = addRow(form, QStringLiteral("Physical inspections:"), QStringLiteral("inspections"));
    m_sequences = addRow(form, QStringLiteral("User tester sequences:"), QStringLiteral("sequences"));
    m_checklists = addRow(form, QStringLiteral("Checklists:"), QStringLiteral("checklists"));
    m_saved = addRow(form, QStringLiteral("Last saved:"), QStringLiteral("lastSaved"));
    // After an upload the analyzer can be checked against what was sent.
    auto *transferRow = new QWidget(this);
    auto *transferLayout = new QHBoxLayout(transferRow);
    transferLayout->setContentsMargins(0, 0, 0, 0);
    m_transfer = new QLabel(transferRow);
    m_transfer->setObjectName(QStringLiteral("lastTransfer"));
    m_verify = new QPushButton(QStringLiteral("Verify..."), transferRow);
    m_verify->setObjectName(QStringLiteral("btnVerifyUpload"));
    m_verify->setToolTip(QStringLiteral("Compare what the KT930 holds with this data set"));
    connect(m_verify, &QPushButton::clicked, this, &ThostDashboard::verifyRequested);
    transferLayout->addWidget(m_transfer);
    transferLayout->addWidget(m_verify);
    transferLayout->addStretch();
    form->addRow(QStringLiteral("Last transfer:"), transferRow);
    m_warnings = addRow(form, QStringLiteral("Warnings:"), QStringLiteral("warnings"));
    m_recentRow = new QWidget(this);
    m_recentButtons = new QVBoxLayout(m_recentRow);
    m_recentButtons->setContentsMargins(0, 0, 0, 0);
    m_recentButtons->setSpacing(0);
    form->addRow(QStringLiteral("Recent folders:"), m_recentRow);
}

QLabel *ThostDashboard::addRow(QFormLayout *form, const QString &label, const QString &name)
{
    auto *value = new QLabel(this);
    value->setObjectName(name);
    value->setWordWrap(true);
    form->addRow(label, value);
    return value;
}

void ThostDashboard::refresh(const std::filesystem::path &applicationFolder,
                             const std::vector<std::filesystem::path> &recent)
{
    const TdataFolderSummary summary = TdataFolderSummary::of(applicationFolder);
    const auto used = [](int count) { return QStringLiteral("%1 used").arg(count); };
    m_folder->setText(text(applicationFolder.string()));
    m_checkitems->setText(used(summary.checkitems));
    m_inspections->setText(used(summary.inspections));
    m_sequences->setText(used(summary.sequences));
    m_checklists->setText(used(summary.checklists));
    m_saved->setText(summary.lastSaved.empty() ? QStringLiteral("never") : text(summary.lastSaved));
    m_transfer->setText(summary.lastTransfer
                            ? QStringLiteral("%1, %2 over %3")
                                  .arg(text(summary.lastTransfer->time), text(summary.lastTransfer->action),
                                       text(summary.lastTransfer->link))
                            : QStringLiteral("none recorded"));
    m_verify->setVisible(summary.lastTransfer && summary.lastTransfer->action == "upload");
    QStringList warnings;
    for (const std::string &warning : summary.warnings)
        warnings << text(warning);
    m_warnings->setText(warnings.isEmpty() ? QStringLiteral("none") : warnings.join(QLatin1Char('\n')));
    m_warnings->setStyleSheet(warnings.isEmpty() ? QString() : QStringLiteral("color: rgb(160, 0, 0)"));

    // Later: the button that was clicked may be what asked for this refresh.
    while (QLayoutItem *item = m_recentButtons->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const std::filesystem::path &folder : recent) {
        std::error_code ec;
        const bool there = std::filesystem::is_directory(folder, ec);
        auto *button =
            new QPushButton(text(folder.string()).replace(QLatin1Char('&'), QStringLiteral("&&")) + // no shortcut
                                (there ? QString() : QStringLiteral(" (not there)")),
                            m_recentRow);
        button->setEnabled(there);
        button->setFlat(true);
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(QStringLiteral(
            "QPushButton { text-align: left; color: palette(link) } QPushButton:disabled { color: palette(mid) }"));
        const QString chosen = text(folder.string());
        connect(button, &QPushButton::clicked, this, [this, chosen] { Q_EMIT folderChosen(chosen); });
        m_recentButtons->addWidget(button);
    }
    if (recent.empty())
        m_recentButtons->addWidget(new QLabel(QStringLiteral("none"), m_recentRow));
}
