#include "platform/linux/sysfs.h"

#include "platform/descriptor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace Korvex::Sysfs {

namespace {

std::string_view withoutEnd(std::string_view text) {
    const std::size_t last = text.find_last_not_of(" \t\n");
    return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

} // namespace

std::optional<std::string> read(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen())
        return std::nullopt;
    std::array<char, 4096> contents{}; // a page, which the kernel's files do not exceed
    const ssize_t got = ::read(file.get(), contents.data(), contents.size());
    if (got < 0)
        return std::nullopt;
    return std::string(withoutEnd({contents.data(), static_cast<std::size_t>(got)}));
}

std::optional<unsigned long long> number(std::string_view text) {
    unsigned long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<unsigned long long> readNumber(const std::string& path) {
    const std::optional<std::string> text = read(path);
    return text ? number(*text) : std::nullopt;
}

std::string_view field(std::string_view contents, std::string_view key) {
    while (!contents.empty()) {
        const std::size_t end = std::min(contents.find('\n'), contents.size());
        const std::string_view line = contents.substr(0, end);
        if (line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=')
            return line.substr(key.size() + 1);
        contents.remove_prefix(std::min(end + 1, contents.size()));
    }
    return {};
}

std::string linkName(const std::string& path) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    const std::string_view whole(target.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    return std::string(whole.substr(whole.rfind('/') + 1));
}

std::vector<std::string> namesIn(const std::string& path) {
    const TerminationDeferred untilClosed;
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace Korvex::Sysfs
