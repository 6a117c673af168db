// The system, its users and processes. Exported names tell what calls take; here is also what they
// give.

#include "calls.h"

#include <KxQts/KxQts.h>

namespace {

using namespace Korvex;

static_assert(is<bool (*)(QString&)>(&getComputerName));
static_assert(is<bool (*)(QString&)>(&getHostName));
static_assert(is<bool (*)(QString&)>(&getUserName));
static_assert(is<bool (*)(QString&)>(&getOSKernelReleaseString));
static_assert(is<bool (*)(QString&)>(&Korvex::getOSKernelRelease));
static_assert(is<bool (*)(QString&)>(&getModel));
static_assert(is<bool (*)(QString&)>(&getSerialNumber));
static_assert(is<bool (*)(QString&)>(&getBundlePath));
static_assert(is<bool (*)(QString&)>(&getBundleExecutablePath));
static_assert(is<bool (*)(unsigned&, unsigned&, unsigned*)>(&getOSKernelVersion));
static_assert(is<bool (*)()>(&isNewerThenLeopard));
static_assert(is<bool (*)()>(&isNewerThenSnowLeopard));
static_assert(is<bool (*)()>(&isSnowLeopard));
static_assert(is<bool (*)()>(&isLion));
static_assert(is<bool (*)()>(&Korvex::isMacOsxLion));
static_assert(is<bool (*)()>(&Korvex::isMacOsxMountainLion));
static_assert(is<bool (*)(QString&, QString*)>(&getProductVersion));
static_assert(is<bool (*)(unsigned&, unsigned&)>(&getSystemVersionNumber));
static_assert(is<bool (*)(unsigned&, unsigned&, unsigned&)>(&getSystemBuildNumber));
static_assert(is<bool (*)(QString&, CFStringRef)>(&CFStringToQString));
static_assert(is<int (*)(bool&)>(&getSecureVirtualMemoryState));
static_assert(is<int (*)(const char*, unsigned short&)>(&getFileMode));
static_assert(
    is<bool (*)(LCID, DWORD, const SYSTEMTIME*, const QString&, QString&)>(&getDateFormat));
static_assert(
    is<bool (*)(LCID, DWORD, const SYSTEMTIME*, const QString&, QString&)>(&getTimeFormat));

static_assert(is<BOOL (*)(LPSTR, LPDWORD)>(&GetComputerNameA));
static_assert(is<BOOL (*)(LPWSTR, LPDWORD)>(&GetComputerNameW));
static_assert(is<HKL (*)()>(&GetKeyboardLayout));
static_assert(is<int (*)(LCID, DWORD, const SYSTEMTIME*, LPCSTR, LPSTR, int)>(&GetDateFormatA));
static_assert(is<int (*)(LCID, DWORD, const SYSTEMTIME*, LPCSTR, LPSTR, int)>(&GetTimeFormatA));
static_assert(is<int (*)(LCID, DWORD, const SYSTEMTIME*, LPCWSTR, LPWSTR, int)>(&GetDateFormatW));
static_assert(is<int (*)(LCID, DWORD, const SYSTEMTIME*, LPCWSTR, LPWSTR, int)>(&GetTimeFormatW));

static_assert(
    is<OSStatus (*)(const AuthorizationOpaqueRef*&, unsigned long)>(&requestAuthorization));
static_assert(
    is<OSStatus (*)(const char*, const char* const*, unsigned long)>(&runPrivilegedCommandOnce));
static_assert(is<OSStatus (*)(const char*, const char* const*)>(&runPrivilegedCommand));
static_assert(is<void (*)()>(&authDestructor));
static_assert(is<void (*)()>(&forceRestart));
static_assert(is<void (*)()>(&forceLogOut));
static_assert(is<void (*)()>(&forceShutDown));
static_assert(is<OSErr (*)(unsigned long)>(&sendEventToSystemProcess));
static_assert(is<int (*)(const char*)>(&forceApplicationQuit));
static_assert(is<int (*)(kinfo_proc**, unsigned long*)>(&GetBSDProcessList));
static_assert(is<int (*)(const char*, bool*, int*)>(&checkApplicationAlreadyRunning));
static_assert(
    is<void (*)(unsigned long*, unsigned long*, unsigned long*, unsigned long*)>(&getRandomInput));

} // namespace
