#include "size.h"

#include "failure.h"
#include "text.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace DiskUtil {

namespace {

constexpr std::string_view units = "BKMGT";
constexpr unsigned long long step = 1000;
constexpr unsigned long long largest = ~0ULL >> 1;

UsageError badSize(const std::string& text) {
    return UsageError("\"" + printable(text) + "\" is no size, such as 1003520B or 1.5G");
}

/// The factor of a unit; 0 for what is none.
unsigned long long factorOf(std::string_view unit) {
    if (unit.empty() || unit.size() > 2)
        return 0;
    if (unit.size() == 2 && (std::toupper(unit[1]) != 'B' || std::toupper(unit[0]) == 'B'))
        return 0;
    const std::size_t place = units.find(static_cast<char>(std::toupper(unit[0])));
    if (place == std::string_view::npos)
        return 0;
    unsigned long long factor = 1;
    for (std::size_t i = 0; i < place; ++i)
        factor *= step;
    return factor;
}

} // namespace

std::string shownSize(unsigned long long bytes) {
    constexpr std::array names{"B", "kB", "MB", "GB", "TB", "PB", "EB"};
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    // What would be rounded up to 1000.0 has the next unit.
    for (; value >= 999.95 && unit + 1 < names.size(); ++unit)
        value /= step;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f %s (%llu Bytes)", unit == 0 ? 0 : 1, value,
                  names[unit], bytes);
    return text.data();
}

unsigned long long parseSize(const std::string& text) {
    const char* const end = text.data() + text.size();
    unsigned long long whole = 0;
    auto [rest, error] = std::from_chars(text.data(), end, whole);
    double fraction = 0;
    if (error == std::errc() && rest != end && *rest == '.') {
        const auto parsed = std::from_chars(rest, end, fraction, std::chars_format::fixed);
        error = parsed.ec;
        rest = parsed.ptr;
    }
    const unsigned long long factor = factorOf({rest, static_cast<std::size_t>(end - rest)});
    if (error != std::errc() || factor == 0)
        throw badSize(text);
    const auto more =
        static_cast<unsigned long long>(std::floor(fraction * static_cast<double>(factor)));
    if (whole > (largest - more) / factor)
        throw badSize(text);
    return whole * factor + more;
}

} // namespace DiskUtil
