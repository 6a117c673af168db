#include "platform/linux/systemfacts.h"

#include "platform/linux/swaps.h"
#include "platform/replaceable.h"
#include "platform/textfile.h"

#include <algorithm>
#include <string_view>
#include <sys/utsname.h>

namespace Korvex {

namespace {

constexpr std::string_view blanks(" \t\r\n\0", 5);

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::optional<std::string> unlessEmpty(std::string_view text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

/// Takes the first line off a text.
std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return line;
}

/// The value of an assignment as a shell reads it, as far as such files use what shells know.
std::string unquoted(std::string_view value) {
    constexpr std::string_view quotes = "\"'";
    const bool isQuoted = value.size() > 1 &&
                          quotes.find(value.front()) != std::string_view::npos &&
                          value.front() == value.back();
    const bool isLiteral = isQuoted && value.front() == '\'';
    if (isQuoted)
        value = value.substr(1, value.size() - 2);
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && !isLiteral && i + 1 < value.size())
            ++i;
        text += value[i];
    }
    return text;
}

} // namespace

std::optional<std::string> LinuxSystemFacts::kernelRelease() {
    utsname names{};
    return uname(&names) == 0 ? unlessEmpty(names.release) : std::nullopt;
}

std::optional<std::string> LinuxSystemFacts::productVersion() {
    return releaseValue("VERSION_ID");
}

std::optional<std::string> LinuxSystemFacts::productBuild() {
    return releaseValue("BUILD_ID");
}

std::optional<std::string> LinuxSystemFacts::configuredHostName() {
    if (std::optional<std::string> name = firstLineOf("/etc/hostname"))
        return name;
    utsname names{};
    return uname(&names) == 0 ? unlessEmpty(names.nodename) : std::nullopt;
}

std::optional<std::string> LinuxSystemFacts::model() {
    std::optional<std::string> name = firstLineOf("/sys/class/dmi/id/product_name");
    return name ? name : firstLineOf("/proc/device-tree/model");
}

std::optional<std::string> LinuxSystemFacts::serialNumber() {
    std::optional<std::string> number = firstLineOf("/sys/class/dmi/id/product_serial");
    return number ? number : firstLineOf("/proc/device-tree/serial-number");
}

int LinuxSystemFacts::readSwapEncryption(bool& encrypted) {
    return isSwapEncrypted(root, encrypted);
}

/// The first line that says something: a comment does not.
std::optional<std::string> LinuxSystemFacts::firstLineOf(const char* path) const {
    const std::optional<std::string> text = readTextFile(std::string(root) + path);
    std::string_view left = text ? std::string_view(*text) : std::string_view();
    while (!left.empty()) {
        const std::string_view line = trimmed(takeLine(left));
        if (!line.empty() && line.front() != '#')
            return std::string(line);
    }
    return std::nullopt;
}

std::optional<std::string> LinuxSystemFacts::releaseValue(const char* name) const {
    std::optional<std::string> text;
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        if ((text = readTextFile(std::string(root) + path)))
            break;
    }
    const std::string assignment = std::string(name) + '=';
    std::string found; // the last one counts, as in a shell
    std::string_view left = text ? std::string_view(*text) : std::string_view();
    while (!left.empty()) {
        const std::string_view line = trimmed(takeLine(left));
        if (line.starts_with(assignment))
            found = unquoted(line.substr(assignment.size()));
    }
    return unlessEmpty(found);
}

SystemFacts& systemFacts() {
    static LinuxSystemFacts facts;
    return inForce<SystemFacts>(facts);
}

} // namespace Korvex
