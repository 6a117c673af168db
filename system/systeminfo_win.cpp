// The sizes of the buffers for the computer's name are ignored on purpose.

#include <KxQts/errors.h>
#include <KxQts/system/systeminfo.h>

#include <cerrno>
#include <cstring>

BOOL GetComputerNameA(LPSTR lpBuffer, LPDWORD) {
    QString name;
    getComputerName(name);
    const QByteArray bytes = name.toLatin1();
    if (lpBuffer)
        std::memcpy(lpBuffer, bytes.constData(), static_cast<std::size_t>(bytes.size()) + 1);
    return TRUE;
}

BOOL GetComputerNameW(LPWSTR lpBuffer, LPDWORD) {
    QString name;
    getComputerName(name);
    if (lpBuffer)
        lpBuffer[name.toWCharArray(lpBuffer)] = L'\0';
    return TRUE;
}

HKL GetKeyboardLayout(void) {
    errno = Korvex::Error::Unsupported;
    return nullptr;
}
