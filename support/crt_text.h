#pragma once

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <string_view>

/// What the narrow and the wide forms of the C runtime functions have in common, so that each pair
/// is one template.
namespace Korvex::Crt {

/// Characters before the terminator, counted up to \a limit: nothing behind that is read.
inline std::size_t lengthWithin(const char* text, std::size_t limit) {
    return strnlen(text, limit);
}

/// \overload
inline std::size_t lengthWithin(const wchar_t* text, std::size_t limit) {
    constexpr std::size_t most = PTRDIFF_MAX / sizeof(wchar_t);
    return wcsnlen(text, limit < most ? limit : most);
}

/// A character in upper case, by the program's locale.
inline char upperCase(char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

/// \overload
inline wchar_t upperCase(wchar_t c) {
    return static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
}

/// The texts that paths are put together from and taken apart at.
template <class Char>
struct PathMarks {
    static constexpr Char separator = '/';
    static constexpr Char extension = '.';
    /// Begins a path that names its volume; it takes the place of a drive letter.
    static constexpr Char volumes[] = {'/', 'V', 'o', 'l', 'u', 'm', 'e', 's', 0};
};

} // namespace Korvex::Crt
