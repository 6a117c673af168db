#include "diskproperties.h"

#include <KxQts/corefoundation.h>
#include <KxQts/registry/prefs.h>

#include <array>
#include <cstdio>

namespace Kx {

namespace {

/// The number of a property; −1 for none.
int indexOf(const char* key) {
    for (int i = 0; i < 31; ++i) {
        if (std::string(Korvex::dpKeys[i]) == key)
            return i;
    }
    return -1;
}

template <class... Values>
std::string formatted(const char* format, Values... values) {
    constexpr std::size_t room = 64;
    std::array<char, room> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

} // namespace

DiskProperties::DiskProperties(const std::string& diskName)
    : props(Korvex::createFromBSDName(diskName.c_str())) {}

std::string DiskProperties::text(const char* key) const {
    QString value;
    const int index = indexOf(key);
    if (props->getQStringProperty(index, value) != 0)
        return {};
    // Paths are bytes, other texts are characters.
    const bool isPath = std::string(key) == "DAVolumePath";
    return (isPath ? value.toLatin1() : value.toUtf8()).toStdString();
}

unsigned long long DiskProperties::number(const char* key) const {
    // More than the 32 bits that the property itself is read with.
    const void* value =
        getCFDictionaryKeyValue(props->description, QString::fromLatin1(key), CFNumberGetTypeID());
    long long number = 0;
    if (value)
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberLongLongType, &number);
    CFRelease(value);
    return static_cast<unsigned long long>(number);
}

bool DiskProperties::flag(const char* key) const {
    bool value = false;
    return props->getBooleanProperty(indexOf(key), value) == 0 && value;
}

std::string identifierText(unsigned disk, unsigned slice) {
    constexpr unsigned largest = 255; // that an identifier can hold
    return disk > largest || slice > largest ? "-" : formatted("0x%08x", slice << 8 | disk);
}

std::string sizeText(unsigned long long bytes) {
    constexpr std::array units{"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
    constexpr double step = 1024;
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= step && unit + 1 < units.size(); ++unit)
        size /= step;
    return formatted(unit == 0 ? "%.0f %s" : "%.1f %s", size, units[unit]);
}

} // namespace Kx
