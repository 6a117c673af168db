#pragma once

#include <string>

namespace DiskUtil {

/// A file system of the ext family on a device. Its own programs do the work. Operations throw
/// \ref Failure.
class ExtFileSystem {
public:
    /// Reads what it tells of itself.
    explicit ExtFileSystem(std::string onDevice);

    /// Whether a file system of a type is of the family.
    static bool isOne(const std::string& type);

    [[nodiscard]] unsigned long long size() const { return blocks * blockSize; }

    /// A size down to whole blocks.
    [[nodiscard]] unsigned long long wholeBlocks(unsigned long long bytes) const {
        return bytes - bytes % blockSize;
    }

    /// The smallest size that its data leaves. That of a mounted one is written out before.
    [[nodiscard]] unsigned long long minimumSize() const;

    /// Checks it, and mends what can be mended without a question. It must not be mounted.
    void check() const;

    /// Changes its size, down to whole blocks. Growing it may be mounted, where the system allows
    /// that; shrinking it must have been checked.
    void resize(unsigned long long bytes);

private:
    void read();

    const std::string device;
    unsigned long long blockSize = 0;
    unsigned long long blocks = 0;
};

} // namespace DiskUtil
