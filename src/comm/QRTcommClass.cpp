#include "QRTcommClass.h"
#include <QTcpSocket>

QRTcommClass::QRTcommClass() = default;

QRTcommClass::~QRTcommClass()
{
    release();
}

void *QRTcommClass::acquire(int kind)
{
    if (m_inUse)
        return nullptr;
    m_inUse = true;
    switch (kind) {
    case USB:
        m_usb = TusbDeviceApi::create();
        return &m_usb;
    case Serial:
        m_serial = std::make_unique<TCommPort>();
        return &m_serial;
    case Socket:
        m_socket = std::make_unique<QTcpSocket>();
        return &m_socket;
    default:
        m_inUse = false;
        return nullptr;
    }
}

int QRTcommClass::release()
{
    if (!m_inUse)
        return -1;
    m_usb.reset();
    m_serial.reset();
    m_socket.reset();
    m_inUse = false;
    return 0;
}
