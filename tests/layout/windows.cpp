// Scalars and structures under their Windows names. Programs read and write them in place, so they
// are laid out as on Windows, where 32-bit and 64-bit programs differ as they do here. Only WCHAR
// is twice as wide.

#include "either.h"

#include <KxQts/windows.h>

static_assert(sizeof(BOOL) == 4 && sizeof(BYTE) == 1 && sizeof(WORD) == 2 && sizeof(DWORD) == 4);
static_assert(sizeof(INT) == 4 && sizeof(UINT) == 4 && sizeof(LONG) == 4 && sizeof(ULONG) == 4);
static_assert(sizeof(LONGLONG) == 8 && sizeof(ULONGLONG) == 8 && sizeof(WCHAR) == 4);
static_assert(BOOL(-1) < 0 && LONG(-1) < 0 && DWORD(-1) > 0 && UINT(-1) > 0);
static_assert(sizeof(HANDLE) == either<4, 8> && sizeof(HKEY) == sizeof(HANDLE));
static_assert(sizeof(HMODULE) == sizeof(HANDLE) && sizeof(HWND) == sizeof(HANDLE));
static_assert(sizeof(DWORD_PTR) == either<4, 8> && sizeof(SIZE_T) == either<4, 8>);

static_assert(sizeof(LARGE_INTEGER) == 8 && offsetof(LARGE_INTEGER, u.HighPart) == 4);
static_assert(sizeof(ULARGE_INTEGER) == 8 && offsetof(ULARGE_INTEGER, u.HighPart) == 4);

static_assert(sizeof(FILETIME) == 8 && offsetof(FILETIME, dwLowDateTime) == 0 &&
              offsetof(FILETIME, dwHighDateTime) == 4);

static_assert(sizeof(SYSTEMTIME) == 16 && offsetof(SYSTEMTIME, wMonth) == 2 &&
              offsetof(SYSTEMTIME, wDayOfWeek) == 4 && offsetof(SYSTEMTIME, wDay) == 6 &&
              offsetof(SYSTEMTIME, wHour) == 8 && offsetof(SYSTEMTIME, wMinute) == 10 &&
              offsetof(SYSTEMTIME, wSecond) == 12 && offsetof(SYSTEMTIME, wMilliseconds) == 14);

static_assert(sizeof(SECURITY_ATTRIBUTES) == either<12, 24> &&
              offsetof(SECURITY_ATTRIBUTES, lpSecurityDescriptor) == either<4, 8> &&
              offsetof(SECURITY_ATTRIBUTES, bInheritHandle) == either<8, 16>);

static_assert(sizeof(OVERLAPPED) == either<20, 32> &&
              offsetof(OVERLAPPED, Offset) == either<8, 16> &&
              offsetof(OVERLAPPED, OffsetHigh) == either<12, 20> &&
              offsetof(OVERLAPPED, hEvent) == either<16, 24>);

static_assert(sizeof(WIN32_FILE_ATTRIBUTE_DATA) == 36 &&
              offsetof(WIN32_FILE_ATTRIBUTE_DATA, dwFileAttributes) == 0 &&
              offsetof(WIN32_FILE_ATTRIBUTE_DATA, ftCreationTime) == 4 &&
              offsetof(WIN32_FILE_ATTRIBUTE_DATA, ftLastAccessTime) == 12 &&
              offsetof(WIN32_FILE_ATTRIBUTE_DATA, ftLastWriteTime) == 20 &&
              offsetof(WIN32_FILE_ATTRIBUTE_DATA, nFileSizeHigh) == 28 &&
              offsetof(WIN32_FILE_ATTRIBUTE_DATA, nFileSizeLow) == 32);

static_assert(sizeof(WIN32_FIND_DATA) == 320 && offsetof(WIN32_FIND_DATA, ftCreationTime) == 4 &&
              offsetof(WIN32_FIND_DATA, nFileSizeHigh) == 28 &&
              offsetof(WIN32_FIND_DATA, dwReserved1) == 40 &&
              offsetof(WIN32_FIND_DATA, cFileName) == 44 &&
              offsetof(WIN32_FIND_DATA, cAlternateFileName) == 304);

template <typename Info>
inline constexpr bool startupInfoHolds =
    sizeof(Info) == either<68, 104>&& offsetof(Info, lpReserved) ==
    either<4, 8>&& offsetof(Info, lpTitle) == either<12, 24>&& offsetof(Info, dwX) ==
    either<16, 32>&& offsetof(Info, dwFlags) == either<44, 60>&& offsetof(Info, wShowWindow) ==
    either<48, 64>&& offsetof(Info, lpReserved2) == either<52, 72>&& offsetof(Info, hStdInput) ==
    either<56, 80>&& offsetof(Info, hStdError) == either<64, 96>;
static_assert(startupInfoHolds<STARTUPINFOA> && startupInfoHolds<STARTUPINFOW>);

static_assert(sizeof(PROCESS_INFORMATION) == either<16, 24> &&
              offsetof(PROCESS_INFORMATION, hThread) == either<4, 8> &&
              offsetof(PROCESS_INFORMATION, dwProcessId) == either<8, 16> &&
              offsetof(PROCESS_INFORMATION, dwThreadId) == either<12, 20>);
