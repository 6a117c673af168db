#include <KxQts/errors.h>
#include <KxQts/winapi/knowndirectories.h>

#include "files/applicationdirectory.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

/// Gives the directory out by \a copy if it fits. \return Its length, or 0.
template <class Copy>
DWORD give(bool hasBuffer, DWORD size, Copy copy) {
    Korvex::ApplicationPath path{};
    if (!Korvex::readApplicationDirectory(path))
        return 0;
    const auto length = static_cast<DWORD>(std::strlen(path.data()));
    if (length >= size) {
        errno = Korvex::Error::MoreData;
        return 0;
    }
    if (!hasBuffer)
        return 0;
    copy(path.data(), length);
    errno = Korvex::Error::None;
    return length;
}

} // namespace

DWORD GetApplicationDirectoryA(LPSTR buffer, DWORD size) {
    return give(buffer != nullptr, size,
                [&](const char* text, DWORD length) { std::memcpy(buffer, text, length + 1); });
}

DWORD GetApplicationDirectoryW(LPWSTR buffer, DWORD size) {
    return give(buffer != nullptr, size, [&](const char* text, DWORD length) {
        // What the program's locale cannot read ends the text, which is whole up to there.
        std::fill_n(buffer, length + 1, L'\0');
        (void)std::mbstowcs(buffer, text, size);
    });
}
