#include "modules/moduleevents.h"

#include <atomic>

namespace {

std::atomic<const KxTest::ModuleEvents*> inForce{nullptr};

} // namespace

// The libraries find these by name.
extern "C" __attribute__((visibility("default"))) void kxtestModuleLoading() {
    const KxTest::ModuleEvents* events = inForce;
    if (events && events->loading)
        events->loading();
}

extern "C" __attribute__((visibility("default"))) void kxtestModuleUnloading() {
    const KxTest::ModuleEvents* events = inForce;
    if (events && events->unloading)
        events->unloading();
}

extern "C" __attribute__((visibility("default"))) void kxtestModuleEntered() {
    const KxTest::ModuleEvents* events = inForce;
    if (events && events->entered)
        events->entered();
}

namespace KxTest {

ModuleEventsScope::ModuleEventsScope(ModuleEvents toUse) : events(std::move(toUse)) {
    inForce = &events;
}

ModuleEventsScope::~ModuleEventsScope() {
    inForce = nullptr;
}

} // namespace KxTest
