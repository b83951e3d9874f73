#pragma once
// The connection holder: admits one USB device, serial port or socket at a time.
// acquire(kind) returns the address of the slot (a std::unique_ptr of the kind's
// class) or null when the holder is in use or the kind is unknown.
#include "TCommPort.h"
#include "TusbDeviceApi.h"
#include <memory>

class QTcpSocket;

class QRTcommClass {
public:
    enum Kind { USB = 1, Serial = 2, Socket = 3 };

    QRTcommClass();
    ~QRTcommClass();
    QRTcommClass(const QRTcommClass &) = delete;
    QRTcommClass &operator=(const QRTcommClass &) = delete;

    void *acquire(int kind);
    // -1 when nothing was acquired, else frees what is held and returns 0.
    int release();
    bool inUse() const { return m_inUse; }

    std::unique_ptr<TusbDeviceApi> &usbSlot() { return m_usb; }
    std::unique_ptr<TCommPort> &serialSlot() { return m_serial; }
    std::unique_ptr<QTcpSocket> &socketSlot() { return m_socket; }

private:
    std::unique_ptr<TusbDeviceApi> m_usb;
    std::unique_ptr<TCommPort> m_serial;
    std::unique_ptr<QTcpSocket> m_socket; // created on the acquiring (worker) thread
    bool m_inUse = false;
};
