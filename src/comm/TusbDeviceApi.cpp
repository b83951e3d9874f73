#include "TusbDeviceApi.h"
#include "TftdiDeviceApi.h"
#include <mutex>

namespace {
std::mutex factoryMutex;
TusbDeviceApi::Factory factory;
TusbDeviceApi::OpenAttempt lastAttempt;
}

void TusbDeviceApi::setFactory(Factory f)
{
    std::lock_guard lock(factoryMutex);
    factory = std::move(f);
}

std::unique_ptr<TusbDeviceApi> TusbDeviceApi::create()
{
    std::lock_guard lock(factoryMutex);
    if (factory)
        return factory();
    return std::make_unique<TftdiDeviceApi>();
}

void TusbDeviceApi::noteOpenAttempt(OpenAttempt attempt)
{
    std::lock_guard lock(factoryMutex);
    lastAttempt = std::move(attempt);
}

TusbDeviceApi::OpenAttempt TusbDeviceApi::lastOpenAttempt()
{
    std::lock_guard lock(factoryMutex);
    return lastAttempt;
}
