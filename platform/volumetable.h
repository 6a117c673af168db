#pragma once

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace Korvex {

/// What a volume lies on.
struct VolumeBacking {
    int error = 0;            ///< Other than 0 when it cannot be told; the rest means nothing then
    bool isNetworked = false; ///< Behind a network, so that there is no device
    std::string device;       ///< "disk1s2"; anything else when it lies on no disk
};

/// One mounted volume.
struct Volume {
    int error = 0;     ///< Other than 0 when nothing is known of it
    int reference = 0; ///< Negative; its own while it is mounted
    QString name;      ///< At most 255 characters
    VolumeBacking backing;
    int rootError = 0; ///< Other than 0 when the mount point cannot be told
    std::string root;  ///< The mount point, as the system takes it
};

/// The volumes that are mounted. Any thread may ask; nothing here waits for a network or a service.
class VolumeTable {
public:
    virtual ~VolumeTable() = default;

    /// All volumes, in the order in which they were mounted, each once. Throws `std::bad_alloc`
    /// without memory.
    [[nodiscard]] virtual std::vector<Volume> volumes() = 0;

    /// Where a path lies.
    struct Place {
        int error = 0; ///< Other than 0 when that cannot be told; the rest means nothing then
        VolumeBacking backing;
    };
    /// \return Nothing when there is nothing at the path. What lies on no volume has an empty
    /// device.
    [[nodiscard]] virtual std::optional<Place> placeOf(const char* path) = 0;
};

/// The table in force.
VolumeTable& volumeTable();

} // namespace Korvex
