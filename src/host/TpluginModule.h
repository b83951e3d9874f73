#pragma once
// One loaded plug-in library and its resolved entry points.
#include "VAROAutoSeqEditor.h"
#include <QString>

class TpluginModule {
public:
    explicit TpluginModule(const QString &path);
    ~TpluginModule(); // pshutdown, Finalize, unload
    TpluginModule(const TpluginModule &) = delete;
    TpluginModule &operator=(const TpluginModule &) = delete;

    // dlopen, resolve every entry point, Initialize, initialize, getMainButton.
    // False with a reason when the library is not a usable plug-in.
    bool load(QString &error);
    // setup's result: 0 stored, -1 refused.
    int setup(TPluginHostInfo *hostData, void *hostData2);
    Tkt930Frame *createMainForm();

    const QString &path() const { return m_path; }
    const QString &displayName() const { return m_displayName; }
    const QString &buttonCaption() const { return m_buttonCaption; }

private:
    void *symbol(const char *name, QString &error);

    QString m_path;
    void *m_handle = nullptr;
    bool m_initialized = false;
    QString m_displayName;
    QString m_buttonCaption;
    TinitializeProc m_initialize = nullptr;
    TsetupProc m_setup = nullptr;
    TtextProc m_getMainButton = nullptr;
    TformProc m_getMainForm = nullptr;
    TshutdownProc m_pshutdown = nullptr;
    TpackageProc m_Initialize = nullptr;
    TpackageProc m_Finalize = nullptr;
};
