#pragma once

#include "platform/disknames.h"

namespace DiskUtil {

/// A slice as the kernel has it, in bytes from the beginning of the disk. Operations throw
/// \ref Failure.
class Partition {
public:
    explicit Partition(const Korvex::DiskNode& slice);

    [[nodiscard]] unsigned long long start() const { return begin; }
    [[nodiscard]] unsigned long long size() const { return length; }

    /// Where the next slice begins that the kernel knows on this disk, or else the disk ends.
    [[nodiscard]] unsigned long long endOfRoom() const;

    /// Tells the kernel that it has another size now. Nothing is written to the disk.
    void resize(unsigned long long bytes);

private:
    const Korvex::DiskNode node;
    const unsigned long long begin;
    unsigned long long length;
};

/// The whole disk that a slice is part of.
Korvex::DiskNode wholeOf(const Korvex::DiskNode& slice);

} // namespace DiskUtil
