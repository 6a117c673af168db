#include <KxQts/errors.h>
#include <KxQts/winapi/filesystem.h>
#include <KxQts/winapi/widestream.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace {

constexpr std::size_t modeSize = 8;

/// Callers count on no path getting through but the empty one, and on no mode either.
template <std::size_t size>
bool convert(const wchar_t* text, std::array<char, size>& buffer) {
    return std::wcstombs(buffer.data(), text, buffer.size()) == 0;
}

} // namespace

FILE* _wfopen(const wchar_t* path, const wchar_t* mode) {
    std::array<char, MAX_PATH> narrowPath{};
    std::array<char, modeSize> narrowMode{};
    const bool converted = path && mode && convert(path, narrowPath) && convert(mode, narrowMode);
    errno = Korvex::Error::InvalidArgument;
    FILE* stream = converted ? std::fopen(narrowPath.data(), narrowMode.data()) : nullptr;
    if (stream)
        std::fwide(stream, 1);
    return stream;
}
