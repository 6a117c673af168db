#pragma once

#include "platform/linux/blockdevices.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Korvex {

/// Which disk has which number.
class DiskNumbers {
public:
    /// What tells a disk from every other one of this machine's run.
    struct Key {
        unsigned long long sequence = 0;
        std::string systemName;
        bool operator==(const Key&) const = default;
    };

    [[nodiscard]] static Key keyOf(const AttachedDisk& disk);

    /// Reads what \ref text has written. What is damaged is left out, and all of another run of the
    /// machine than \a boot.
    [[nodiscard]] static DiskNumbers parse(std::string_view text, std::string_view boot);
    [[nodiscard]] std::string text(std::string_view boot) const;

    /// Gives the smallest free numbers to those that have none, to physical ones first and else in
    /// the order given. Numbers of disks that are not there are free.
    void update(const std::vector<AttachedDisk>& attached);

    [[nodiscard]] std::optional<unsigned> numberOf(const AttachedDisk& disk) const;
    [[nodiscard]] std::optional<Key> diskOf(unsigned number) const;

    bool operator==(const DiskNumbers&) const = default;

private:
    void add(const AttachedDisk& disk);

    std::map<unsigned, Key> disks;
};

} // namespace Korvex
