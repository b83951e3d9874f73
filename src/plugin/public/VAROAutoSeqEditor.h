#pragma once
// The contract between the host kt930pc and its plug-ins: the host record, the
// frame base class and the exported entry points. Host and plug-in both include
// this header and nothing else of each other.
#include <QFrame>
#include <cstddef>
#include <cstdint>

#if defined(_WIN32) && !defined(_WIN64)
#define KT930_STDCALL __stdcall
#else
#define KT930_STDCALL
#endif

#if defined(_WIN32)
#define KT930_EXPORT __declspec(dllexport)
#else
#define KT930_EXPORT __attribute__((visibility("default")))
#endif

class QWidget;

// Filled by the host, read (never written) by the plug-in. Only three words are
// fixed: the host's main view at 0, the container frozen during a view swap at 8,
// and the value handed on to Ethernet transfers at 92. The rest is the host's.
struct TPluginHostInfo {
    QWidget *mainView = nullptr;       // offset 0
    QWidget *container = nullptr;      // offset 8
    std::uint8_t hostPrivate[76] = {}; // offsets 16..91
    std::uint32_t transferValue = 0;   // offset 92
    std::uint32_t reserved = 0;
};
static_assert(offsetof(TPluginHostInfo, mainView) == 0);
static_assert(offsetof(TPluginHostInfo, container) == 8);
static_assert(offsetof(TPluginHostInfo, transferValue) == 92);

// Base of the plug-in frames: one virtual added after the inherited ones.
class Tkt930Frame : public QFrame {
public:
    explicit Tkt930Frame(QWidget *parent = nullptr) : QFrame(parent) {}
    // Re-reads whatever the frame shows from disk; called by the host when it
    // shows the frame again.
    virtual void ReloadData() {}
};

class TAutoSeqEditFrame;

extern "C" {
KT930_EXPORT const char *KT930_STDCALL initialize(std::uint32_t unused);
KT930_EXPORT std::int32_t KT930_STDCALL setup(TPluginHostInfo *hostData, void *hostData2);
KT930_EXPORT const char *getMainButton();
KT930_EXPORT const char *getConfigButton();
KT930_EXPORT Tkt930Frame *getMainForm();
KT930_EXPORT Tkt930Frame *getConfigForm();
KT930_EXPORT std::int32_t pshutdown();
KT930_EXPORT void Initialize();
KT930_EXPORT void Finalize();
KT930_EXPORT extern TAutoSeqEditFrame *_AutoSeqEditFrame;
}

// Function pointer types for hosts that resolve the exports at run time.
using TinitializeProc = const char *(KT930_STDCALL *)(std::uint32_t);
using TsetupProc = std::int32_t(KT930_STDCALL *)(TPluginHostInfo *, void *);
using TtextProc = const char *(*)();
using TformProc = Tkt930Frame *(*)();
using TshutdownProc = std::int32_t (*)();
using TpackageProc = void (*)();
