#include "platform/kernelrelease.h"

#include "platform/replaceable.h"

#include <sys/utsname.h>

namespace Korvex {

namespace {

class LinuxKernelRelease final : public KernelRelease {
public:
    std::string text() override {
        utsname names{};
        return uname(&names) == 0 ? std::string(static_cast<const char*>(names.release))
                                  : std::string();
    }
};

} // namespace

KernelRelease& kernelRelease() {
    static LinuxKernelRelease release;
    return inForce<KernelRelease>(release);
}

} // namespace Korvex
