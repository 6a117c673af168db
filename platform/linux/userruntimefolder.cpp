#include "platform/userruntimefolder.h"

#include "platform/rootfolder.h"
#include "platform/runtimefolder.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvex {

namespace {

bool isOwn(const std::string& folder) {
    struct stat status {};
    return folder.starts_with('/') && stat(folder.c_str(), &status) == 0 &&
           S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

std::string find() {
    const std::string user = std::to_string(geteuid());
    const char* const named = secure_getenv("XDG_RUNTIME_DIR");
    if (rootFolder().isEmpty()) {
        for (const std::string& folder : {std::string(named ? named : ""), "/run/user/" + user}) {
            if (isOwn(folder))
                return folder + "/korvex";
        }
    }
    return runTimeFolder() + "/users/" + user;
}

} // namespace

const std::string& userRuntimeFolder() {
    // Never deleted: what is kept there may be asked for until the process ends.
    static const auto* const folder = new std::string(find());
    return *folder;
}

} // namespace Korvex
