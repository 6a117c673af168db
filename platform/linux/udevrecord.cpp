#include "platform/linux/udevrecord.h"

#include <charconv>
#include <fstream>
#include <iterator>

namespace Korvex {

namespace {

std::string unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        unsigned char byte = 0;
        const bool isEscape = text.size() >= 4 && text.starts_with("\\x") &&
                              std::from_chars(&text[2], &text[2] + 2, byte, 16).ptr == &text[2] + 2;
        plain += isEscape ? static_cast<char>(byte) : text.front();
        text.remove_prefix(isEscape ? 4 : 1);
    }
    return plain;
}

} // namespace

std::optional<UdevRecord> UdevRecord::of(const DiskNode& node) {
    std::ifstream file("/run/udev/data/b" + std::to_string(node.major) + ':' +
                       std::to_string(node.minor));
    if (!file)
        return std::nullopt;
    return UdevRecord(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::string UdevRecord::property(std::string_view name) const {
    const std::string line = "\nE:" + std::string(name) + '=';
    const std::string all = '\n' + text;
    const std::size_t place = all.find(line);
    if (place == std::string::npos)
        return {};
    const std::size_t begin = place + line.size();
    return unescaped(std::string_view(all).substr(begin, all.find('\n', begin) - begin));
}

} // namespace Korvex
