#include <KxQts/registry/prefs.h>
#include <KxQts/winapi/registry.h>

#include "registry/predefinedkeys.h"

#include <algorithm>
#include <array>

bool Korvex::isPredefinedKey(const void* handle) {
    const std::array known{HKEY_CLASSES_ROOT,     HKEY_CURRENT_USER,       HKEY_LOCAL_MACHINE,
                           HKEY_PERFORMANCE_DATA, HKEY_CURRENT_CONFIG,     HKEY_DYN_DATA,
                           HKEY_PERFORMANCE_TEXT, HKEY_PERFORMANCE_NLSTEXT};
    return std::find(known.begin(), known.end(), handle) != known.end();
}

DWORD RegCloseKey(HKEY hKey) {
    if (Korvex::isPredefinedKey(hKey))
        return ERROR_SUCCESS;
    return Korvex::WPrefs::disposeKey(hKey) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}
