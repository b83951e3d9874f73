#pragma once
// The settings part that starts every transfer record: how to reach the
// analyzer, what kind of transfer it is, and which worker to start.
#include <cstddef>
#include <cstdint>

class QThread;

enum class TcommMethod : std::uint8_t { USB = 0, Ethernet = 1, Serial = 2 };
enum class TtransferKind : std::uint8_t { Upload = 0, Download = 1 };

#pragma pack(push, 1)
struct TcommSettings {
    std::uint8_t kind = 0;      // 0 upload, 1 download (sync carries 1); read by the progress dialog
    std::uint8_t method = 0;    // 0 USB, 1 Ethernet, 2 serial
    std::uint8_t requested = 0; // set by the editor when a sync was asked for
    std::uint8_t reserved0 = 0;
    std::int32_t serialPort = 0;       // serial only: the N of COMn
    std::int32_t ip[4] = {0, 0, 0, 0}; // Ethernet only: low byte of each is an octet
    std::uint32_t hostValue = 0;       // Ethernet only: the host record's word at offset 92
    QThread *worker = nullptr;         // the worker the progress dialog starts
    std::uint8_t reserved1[4] = {};
};
#pragma pack(pop)
static_assert(sizeof(TcommSettings) == 40);
static_assert(offsetof(TcommSettings, serialPort) == 4);
static_assert(offsetof(TcommSettings, ip) == 8);
static_assert(offsetof(TcommSettings, hostValue) == 24);
static_assert(offsetof(TcommSettings, worker) == 28);
