#include "platform/linux/disknumbers.h"

#include "platform/linux/sysfs.h"

#include <algorithm>
#include <climits>

namespace Korvex {

namespace {

/// Takes what stands before the next separator from the front of a text.
std::string_view take(std::string_view& rest, char separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

} // namespace

DiskNumbers::Key DiskNumbers::keyOf(const AttachedDisk& disk) {
    return {disk.sequence, disk.device.systemName};
}

DiskNumbers DiskNumbers::parse(std::string_view text, std::string_view boot) {
    DiskNumbers numbers;
    if (take(text, '\n') != boot)
        return numbers;
    while (!text.empty()) {
        std::string_view line = take(text, '\n');
        const auto number = Sysfs::number(take(line, ' '));
        const auto sequence = Sysfs::number(take(line, ' '));
        if (number && *number <= UINT_MAX && sequence && !line.empty())
            numbers.disks.try_emplace(static_cast<unsigned>(*number),
                                      Key{*sequence, std::string(line)});
    }
    return numbers;
}

std::string DiskNumbers::text(std::string_view boot) const {
    std::string written(boot);
    written += '\n';
    for (const auto& [number, key] : disks)
        written += std::to_string(number) + ' ' + std::to_string(key.sequence) + ' ' +
                   key.systemName + '\n';
    return written;
}

void DiskNumbers::update(const std::vector<AttachedDisk>& attached) {
    std::erase_if(disks, [&](const auto& entry) {
        return std::none_of(attached.begin(), attached.end(),
                            [&](const AttachedDisk& disk) { return keyOf(disk) == entry.second; });
    });
    for (const bool physical : {true, false}) {
        for (const AttachedDisk& disk : attached) {
            if (disk.isPhysical == physical && !numberOf(disk))
                add(disk);
        }
    }
}

void DiskNumbers::add(const AttachedDisk& disk) {
    unsigned number = 0;
    while (disks.contains(number))
        ++number;
    disks.emplace(number, keyOf(disk));
}

std::optional<unsigned> DiskNumbers::numberOf(const AttachedDisk& disk) const {
    const auto found = std::find_if(disks.begin(), disks.end(), [&](const auto& entry) {
        return entry.second.sequence == disk.sequence &&
               entry.second.systemName == disk.device.systemName;
    });
    return found == disks.end() ? std::nullopt : std::optional(found->first);
}

std::optional<DiskNumbers::Key> DiskNumbers::diskOf(unsigned number) const {
    const auto found = disks.find(number);
    return found == disks.end() ? std::nullopt : std::optional(found->second);
}

} // namespace Korvex
