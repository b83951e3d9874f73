#include "progress.h"
#include "ui_progress.h"
#include "TcommSettings.h"
#include "TguiText.h"
#include <QThread>
#include <QTimer>
#include <memory>
#include <stdexcept>

TfrmProgress::TfrmProgress(QWidget *owner, void *context, TcommSettings *settings)
    : QDialog(owner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint), m_context(context), m_settings(settings)
{
    if (!settings)
        throw std::invalid_argument("Invalid parameters passed to TfrmProgress(TComponent, void *, void *");
    ui = std::make_unique<Ui::TfrmProgress>();
    ui->setupUi(this);
    setModal(true);
    connect(ui->btnCancel, &QPushButton::clicked, this, &TfrmProgress::btnCancelClick);
}

TfrmProgress::~TfrmProgress() = default;

void TfrmProgress::setStage(const std::string &text)
{
    QString label = TguiText::fromBytes(text);
    QMetaObject::invokeMethod(this, [this, label] { ui->lblOperation->setText(label); }, Qt::QueuedConnection);
}

void TfrmProgress::setPosition(int percent)
{
    QMetaObject::invokeMethod(this, [this, percent] { ui->transferProgress->setValue(percent); }, Qt::QueuedConnection);
}

bool TfrmProgress::isCancelled() const
{
    return m_cancelled.load();
}

void TfrmProgress::setCancelled()
{
    m_cancelled.store(true);
}

void TfrmProgress::setResult(TransferResult result)
{
    const int code = result == TransferResult::Ok ? 1 : 2;
    QMetaObject::invokeMethod(this, [this, code] { done(code); }, Qt::QueuedConnection);
}

void TfrmProgress::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!m_started) {
        m_started = true;
        // After the show, so a worker that ends at once still finds the dialog's loop running.
        QTimer::singleShot(0, this, &TfrmProgress::FormShow);
    }
}

void TfrmProgress::FormShow()
{
    if (!isVisible())
        return; // cancelled before the worker could start
    if (m_settings->kind > 1 || !m_settings->worker) {
        m_cancelled.store(true);
        done(2);
        return;
    }
    // A worker that ends without a result must not leave the dialog open.
    connect(m_settings->worker, &QThread::finished, this, &TfrmProgress::onWorkerFinished, Qt::QueuedConnection);
    m_settings->worker->start();
}

void TfrmProgress::onWorkerFinished()
{
    if (isVisible())
        done(2);
}

void TfrmProgress::btnCancelClick()
{
    m_cancelled.store(true);
    done(2);
}

void TfrmProgress::reject()
{
    btnCancelClick();
}
