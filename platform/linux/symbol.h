#pragma once

#include <dlfcn.h>

namespace Korvex {

/// Finds a function of a library that was loaded. \return Whether it is there.
template <class Function>
[[nodiscard]] bool findSymbol(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

} // namespace Korvex
