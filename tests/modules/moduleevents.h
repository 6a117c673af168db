#pragma once

#include <functional>
#include <utility>

namespace KxTest {

/// What runs inside the initialiser and the finaliser of the libraries that a test loads, and
/// inside the entry point of resource libraries.
struct ModuleEvents {
    std::function<void()> loading;
    std::function<void()> unloading;
    std::function<void()> entered = {};
};

/// Puts a test's own in force while it lives.
class ModuleEventsScope {
public:
    explicit ModuleEventsScope(ModuleEvents events);
    ~ModuleEventsScope();
    ModuleEventsScope(const ModuleEventsScope&) = delete;
    ModuleEventsScope& operator=(const ModuleEventsScope&) = delete;

private:
    ModuleEvents events;
};

} // namespace KxTest
