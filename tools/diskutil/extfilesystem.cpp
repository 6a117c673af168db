#include "extfilesystem.h"

#include "child.h"
#include "failure.h"

#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace DiskUtil {

namespace {

/// The number behind a label at the beginning of a line.
std::optional<unsigned long long> numberBehind(std::string_view label, std::string_view text) {
    const std::size_t found = text.find(label);
    if (found == std::string_view::npos || (found > 0 && text[found - 1] != '\n'))
        return std::nullopt;
    text.remove_prefix(found + label.size());
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    unsigned long long number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
        return std::nullopt;
    return number;
}

} // namespace

ExtFileSystem::ExtFileSystem(std::string onDevice) : device(std::move(onDevice)) {
    read();
}

bool ExtFileSystem::isOne(const std::string& type) {
    return type == "ext2" || type == "ext3" || type == "ext4";
}

void ExtFileSystem::read() {
    const ChildResult result = runProgram({"dumpe2fs", "-h", device});
    const auto size = numberBehind("Block size:", result.output);
    const auto count = numberBehind("Block count:", result.output);
    if (result.status != 0 || !size || !count || *size == 0)
        throw Failure("cannot read the file system on " + device + ": " + complaintOf(result));
    blockSize = *size;
    blocks = *count;
}

unsigned long long ExtFileSystem::minimumSize() const {
    const ChildResult result = runProgram({"resize2fs", "-P", device});
    const auto least = numberBehind("Estimated minimum size of the filesystem:", result.output);
    if (result.status != 0 || !least)
        throw Failure("cannot tell the minimum size of " + device + ": " + complaintOf(result));
    return *least * blockSize;
}

void ExtFileSystem::check() const {
    constexpr int mended = 1;
    const ChildResult result = runProgram({"e2fsck", "-f", "-p", device});
    if (result.status > mended)
        throw Failure("the file system on " + device +
                      " needs to be repaired first: " + complaintOf(result));
}

void ExtFileSystem::resize(unsigned long long bytes) {
    const ChildResult result = runProgram({"resize2fs", device, std::to_string(bytes / blockSize)});
    read(); // also behind a failure: a part may have been done
    if (result.status != 0)
        throw Failure("cannot resize the file system on " + device + ": " + complaintOf(result));
}

} // namespace DiskUtil
