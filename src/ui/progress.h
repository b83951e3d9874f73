#pragma once
// TfrmProgress: the modal dialog of a transfer. Showing it starts the worker
// named in the settings; the worker reports through the ProgressSink side of it
// from its own thread, so every widget change is queued to the GUI thread.
#include "ProgressSink.h"
#include <QDialog>
#include <atomic>
#include <memory>

namespace Ui { class TfrmProgress; }
struct TcommSettings;

class TfrmProgress : public QDialog, public ProgressSink {
    Q_OBJECT
public:
    // Throws std::invalid_argument when settings is null.
    TfrmProgress(QWidget *owner, void *context, TcommSettings *settings);
    ~TfrmProgress() override;

    // ProgressSink, callable from any thread.
    void setStage(const std::string &text) override;
    void setPosition(int percent) override;
    bool isCancelled() const override;
    void setCancelled() override;
    void setResult(TransferResult result) override;

    TcommSettings &settings() { return *m_settings; }

public Q_SLOTS:
    void FormShow();
    void btnCancelClick();
    void reject() override; // Escape and the close button cancel

protected:
    void showEvent(QShowEvent *event) override;

private:
    void onWorkerFinished();

    std::unique_ptr<Ui::TfrmProgress> ui;
    std::atomic<bool> m_cancelled{false};
    void *m_context;
    TcommSettings *m_settings;
    bool m_started = false;
};
