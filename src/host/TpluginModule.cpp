#include "TpluginModule.h"
#include <dlfcn.h>

TpluginModule::TpluginModule(const QString &path) : m_path(path) {}

TpluginModule::~TpluginModule()
{
    if (!m_handle)
        return;
    if (m_initialized) {
        m_pshutdown();
        m_Finalize();
    }
    dlclose(m_handle);
}

void *TpluginModule::symbol(const char *name, QString &error)
{
    void *address = dlsym(m_handle, name);
    if (!address && error.isEmpty())
        error = QStringLiteral("The entry point %1 is missing.").arg(QLatin1String(name));
    return address;
}

bool TpluginModule::load(QString &error)
{
    m_handle = dlopen(m_path.toLocal8Bit().constData(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle) {
        error = QString::fromLocal8Bit(dlerror());
        return false;
    }
    error.clear();
    m_initialize = reinterpret_cast<TinitializeProc>(symbol("initialize", error));
    m_setup = reinterpret_cast<TsetupProc>(symbol("setup", error));
    m_getMainButton = reinterpret_cast<TtextProc>(symbol("getMainButton", error));
    m_getMainForm = reinterpret_cast<TformProc>(symbol("getMainForm", error));
    m_pshutdown = reinterpret_cast<TshutdownProc>(symbol("pshutdown", error));
    m_Initialize = reinterpret_cast<TpackageProc>(symbol("Initialize", error));
    m_Finalize = reinterpret_cast<TpackageProc>(symbol("Finalize", error));
    if (!error.isEmpty())
        return false;

    m_Initialize();
    m_initialized = true;
    const char *name = m_initialize(0);
    const char *caption = m_getMainButton();
    m_displayName = QString::fromLatin1(name ? name : "");
    m_buttonCaption = QString::fromLatin1(caption ? caption : "");
    return true;
}

int TpluginModule::setup(TPluginHostInfo *hostData, void *hostData2)
{
    return m_setup(hostData, hostData2);
}

Tkt930Frame *TpluginModule::createMainForm()
{
    return m_getMainForm();
}
