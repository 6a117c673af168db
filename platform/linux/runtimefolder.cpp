#include "platform/runtimefolder.h"

#include "platform/rootfolder.h"

namespace Korvex {

const std::string& runTimeFolder() {
    // Never deleted: what is kept there may be asked for until the process ends.
    static const auto* const folder = new std::string((rootFolder() + "/run/korvex").toStdString());
    return *folder;
}

} // namespace Korvex
