#include "platform/runtimefolder.h"

#include <cstdlib>

namespace Korvex {

const std::string& runTimeFolder() {
    // Null for a process that has more rights than whoever started it and set the variable.
    static const char* const root = secure_getenv("KXQTS_ROOT");
    static const auto* const folder =
        new std::string((root ? root : "") + std::string("/run/korvex"));
    return *folder;
}

} // namespace Korvex
