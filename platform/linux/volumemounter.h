#pragma once

#include "platform/disknames.h"

#include <KxQts/platformtypes.h>

#include <string>

namespace Korvex {

/// Mounts and unmounts file systems on disks and slices. Operations may take as long as a drive or
/// a service takes, within limits; the results are those of `DADissenterGetStatus`.
class VolumeMounter {
public:
    virtual ~VolumeMounter() = default;

    /// \param target The folder; empty leaves the choice to the mounter.
    virtual DAReturn mount(const DiskNode& node, const std::string& target) = 0;
    /// \param force Whether a volume whose service does not answer is unmounted too. One in use is
    /// not.
    virtual DAReturn unmount(const DiskNode& node, bool force) = 0;
};

/// The mounter for this process's rights: root mounts itself, others ask the system's service.
VolumeMounter& volumeMounter();

/// Mounts by itself, which takes root's rights.
VolumeMounter& directMounter();

/// Asks the UDisks2 service on the system bus, which decides who may do what.
VolumeMounter& serviceMounter();

} // namespace Korvex
