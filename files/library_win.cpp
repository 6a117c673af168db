#include <KxQts/errors.h>
#include <KxQts/files/library.h>
#include <KxQts/winapi/modules.h>

#include "platform/withoutmemory.h"
#include "support/wintext.h"

#include <algorithm>
#include <cerrno>
#include <string>

namespace Error = Korvex::Error;
using Korvex::windowsText;
using Korvex::WLibrary;

namespace {

std::string textOf(const QString& name, char) {
    return name.toLatin1().toStdString();
}

std::wstring textOf(const QString& name, wchar_t) {
    return name.toStdWString();
}

template <class Character>
DWORD moduleFileName(HMODULE module, Character* buffer, DWORD size) {
    errno = Error::None;
    QString name;
    if (!buffer || !WLibrary::findLibrary(module, name))
        return 0;
    return Korvex::withoutMemory(0, [&]() -> DWORD {
        const auto text = textOf(name, Character());
        if (size == 0) {
            errno = Error::BufferTooSmall;
            return 0;
        }
        const std::size_t stored = std::min<std::size_t>(text.size(), size - 1);
        text.copy(buffer, stored);
        buffer[stored] = 0;
        errno = stored == text.size() ? Error::None : Error::BufferTooSmall;
        return static_cast<DWORD>(stored);
    });
}

} // namespace

HMODULE GetModuleHandleA(LPCSTR name) {
    return Korvex::keepingErrorNumber(
        nullptr, [&] { return WLibrary::getLibrary(windowsText(name), false); });
}

HMODULE GetModuleHandleW(LPCWSTR name) {
    return Korvex::keepingErrorNumber(
        nullptr, [&] { return WLibrary::getLibrary(windowsText(name), false); });
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    return Korvex::keepingErrorNumber(nullptr, [&] {
        WLibrary* library = WLibrary::getWLibraryObject(module);
        return library && name ? reinterpret_cast<FARPROC>(library->resolve(name)) : nullptr;
    });
}

BOOL FreeLibrary(HMODULE module) {
    return WLibrary::freeLibrary(module) ? TRUE : FALSE;
}

DWORD GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size) {
    return moduleFileName(module, buffer, size);
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size) {
    return moduleFileName(module, buffer, size);
}
