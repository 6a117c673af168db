#include "files/knowndirectories.h"

#include <KxQts/winapi/knowndirectories.h>

#include <algorithm>
#include <iterator>

namespace {

/// Copies a text with its terminator if it fits. \return Its length, or the room that it needs.
template <class Character, DWORD room>
DWORD give(const char (&text)[room], Character* buffer, DWORD size) {
    if (!buffer)
        return 0;
    if (room > size)
        return room;
    std::copy(std::begin(text), std::end(text), buffer);
    return room - 1;
}

} // namespace

UINT GetSystemDirectoryA(LPSTR buffer, UINT size) {
    return give(Korvex::systemDirectory, buffer, size);
}

UINT GetSystemDirectoryW(LPWSTR buffer, UINT size) {
    return give(Korvex::systemDirectory, buffer, size);
}

UINT GetWindowsDirectoryA(LPSTR buffer, UINT size) {
    return give(Korvex::windowsDirectory, buffer, size);
}

UINT GetWindowsDirectoryW(LPWSTR buffer, UINT size) {
    return give(Korvex::windowsDirectory, buffer, size);
}

DWORD GetTempPathA(DWORD size, LPSTR buffer) {
    return give(Korvex::temporaryDirectory, buffer, size);
}

DWORD GetTempPathW(DWORD size, LPWSTR buffer) {
    return give(Korvex::temporaryDirectory, buffer, size);
}
