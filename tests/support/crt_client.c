/* A client in C99: every function of the C runtime is declared, linked and callable from it. */

#include "support/crt_client.h"

#include <KxQts/windows.h>

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition))                                                                          \
            return #condition;                                                                     \
    } while (0)

static const char* strings(void) {
    char text[16] = "a";
    wchar_t wide[16] = L"a";
    CHECK(strcat_s(text, 16, "b") == 0 && wcscat_s(wide, 16, L"b") == 0);
    CHECK(strcmp(text, "ab") == 0 && wcscmp(wide, L"ab") == 0);
    CHECK(strcpy_s(text, 3, "cd") == 0 && wcscpy_s(wide, 3, L"cd") == 0);
    CHECK(strncpy_s(text, 9, "x", 2) == 0 && wcsncpy_s(wide, 9, L"x", 2) == 0);
    CHECK(sprintf_s(text, 16, "%s%d", "n", 5) == 0 && strcmp(text, "n5") == 0);
    CHECK(_snprintf_s(text, 16, 2, "%s", "xyz") == 0 && strcmp(text, "x") == 0);
    CHECK(*_strupr(text) == 'X' && *_wcsupr(wide) == L'X');
    CHECK(_wcsicmp(L"a", L"A") == 0);
    memset(text, 0, sizeof text);
    memset(wide, 0, sizeof wide);
    CHECK(_strupr_s(text, 8) == 0 && _wcsupr_s(wide, 8) == 0);
    return NULL;
}

static const char* numbers(void) {
    char text[70];
    wchar_t wide[70];
    CHECK(strcmp(_itoa(-1, text, 16), "ffffffff") == 0 && wcscmp(_itow(7, wide, 2), L"111") == 0);
    CHECK(strcmp(_ltoa(-1, text, 10), "-1") == 0 && wcscmp(_ltow(8, wide, 8), L"10") == 0);
    CHECK(strcmp(_ultoa(9, text, 10), "9") == 0 && wcscmp(_ultow(9, wide, 10), L"9") == 0);
    CHECK(_itoa_s(1, text, 2, 10) == 0 && _itow_s(1, wide, 2, 10) == 0);
    CHECK(_ltoa_s(1, text, 2, 10) == 0 && _ltow_s(1, wide, 2, 10) == 0);
    CHECK(_ultoa_s(1, text, 2, 10) == 0 && _ultow_s(1, wide, 1, 10) == 22);
    return NULL;
}

static const char* paths(void) {
    char drive[_MAX_DRIVE], dir[_MAX_DIR], fname[_MAX_FNAME], ext[_MAX_EXT], path[_MAX_PATH];
    wchar_t wideName[_MAX_FNAME], widePath[_MAX_PATH];
    _splitpath("/Volumes/Disk/dir/f.txt", drive, dir, fname, ext);
    CHECK(strcmp(drive, "umes") == 0 && strcmp(dir, "Disk/dir") == 0);
    CHECK(strcmp(fname, "f") == 0 && strcmp(ext, "txt") == 0);
    _wsplitpath(L"a/b", NULL, NULL, wideName, NULL);
    CHECK(wcscmp(wideName, L"b") == 0);
    CHECK(_splitpath_s("a/b", drive, 9, dir, 9, fname, 9, ext, 9) == 0);
    CHECK(_wsplitpath_s(L"a/b", NULL, 0, NULL, 0, wideName, 1, NULL, 0) == 34);
    CHECK(strcmp(_makepath(path, NULL, "dir", "file", "txt"), "/dir/file.txt") == 0);
    CHECK(wcscmp(_wmakepath(widePath, NULL, L"d", L"f", NULL), L"/d/f") == 0);
    CHECK(_makepath_s(path, 20, NULL, "dir", "file", "txt") == 0);
    CHECK(strcmp(path, "dir/file.txt") == 0);
    CHECK(_wmakepath_s(widePath, 3, NULL, L"d", L"f", NULL) == 22 && errno == 22);
    return NULL;
}

static const char* times(void) {
    char text[9];
    wchar_t wide[9];
    const time_t start = 0;
    SYSTEMTIME now;
    GetLocalTime(&now);
    CHECK(now.wYear > 2000 && now.wMilliseconds == 0);
    CHECK(strlen(_strdate(text)) == 8 && wcslen(_wstrdate(wide)) == 8);
    CHECK(strlen(_strtime(text)) == 8 && wcslen(_wstrtime(wide)) == 8);
    CHECK(_strdate_s(text, 9) == 8 && _wstrdate_s(wide, 9) == 8);
    CHECK(_strtime_s(text, 9) == 8 && _wstrtime_s(wide, 8) == -1);
    CHECK(wcslen(_wctime(&start)) == 25);
    return NULL;
}

static const char* system_calls(void) {
    int (*const lead)(unsigned int) = _ismbblead;
    CHECK(lead != NULL);
    CHECK(_wgetenv(L"KXQTS_MISSING") == NULL);
    CHECK(_wrmdir(L"missing") == -1 && errno == ERROR_FILE_NOT_FOUND);
    return NULL;
}

const char* crtClientFailure(void) {
    const char* (*const all[])(void) = {strings, numbers, paths, times, system_calls};
    for (size_t i = 0; i < sizeof all / sizeof *all; ++i) {
        const char* const failure = all[i]();
        if (failure)
            return failure;
    }
    return NULL;
}
