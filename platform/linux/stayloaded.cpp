#include "platform/stayloaded.h"

#include <dlfcn.h>

namespace Korvex {

namespace {

bool pin() {
    Dl_info module{};
    // In a program that holds this code itself there is nothing to be unloaded.
    return dladdr(reinterpret_cast<void*>(&stayLoaded), &module) != 0 &&
           dlopen(module.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE) != nullptr;
}

} // namespace

void stayLoaded() {
    [[maybe_unused]] static const bool pinned = pin();
}

} // namespace Korvex
