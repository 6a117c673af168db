#pragma once

#include "mountcontext.h"
#include "platform/disknames.h"

#include <vector>

namespace DiskUtil {

/// Takes a volume off while it lives: it is not mounted meanwhile, and then where and how it was
/// before.
class TakenOff {
public:
    /// Throws \ref Failure when it is in use, with everything where it was.
    explicit TakenOff(const Korvex::DiskNode& node);
    /// Puts it back if \ref putBack has not; what fails then is not told.
    ~TakenOff();
    TakenOff(const TakenOff&) = delete;
    TakenOff& operator=(const TakenOff&) = delete;

    /// Throws \ref Failure when it cannot be mounted again.
    void putBack();

private:
    void takeOff(const std::vector<MountRequest>& mounts);

    std::vector<MountRequest> off; ///< The last one that was taken off at the end
};

} // namespace DiskUtil
