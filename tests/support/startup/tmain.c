/* Written for Windows, to be built with and without UNICODE, as C and as C++. */
#include <direct.h>
#include <tchar.h>
#include <windows.h>

#include <string.h>

/* C has no nullptr. */
/* NOLINTBEGIN(modernize-use-nullptr) */

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            printf("failed: %s\n", #condition);                                                    \
            exit(1);                                                                               \
        }                                                                                          \
    } while (0)

#define FILE_NAME TEXT("tmain.txt")

static void check_text(void) {
    TCHAR text[20];
    _TCHAR copy[20] = _T("abc");
    LPTSTR writable = text;
    LPCTSTR constant = _TEXT("abc");
    CHECK(_tcscpy_s(text, _countof(text), constant) == 0 && _tcscmp(text, copy) == 0);
    CHECK(_tcscat_s(text, _countof(text), TEXT("D")) == 0 && _tcslen(writable) == 4);
    CHECK(_tcsncpy_s(copy, _countof(copy), _T("abcd"), 5) == 0 && _tcsicmp(copy, text) == 0);
    CHECK(*_tcsupr(text) == _T('A') && _tcschr(text, _T('D')) == text + 3);
    CHECK(_stprintf_s(text, _countof(text), _T("%d-%x"), 5, 255u) >= 0);
    CHECK(_tcscmp(text, _T("5-ff")) == 0);
    CHECK(_istdigit(text[0]) && _totupper(_T('f')) == _T('F'));
}

static void check_numbers(void) {
    TCHAR text[40];
    CHECK(_ttoi(_T("42")) == 42 && _ttol(_T("-7")) == -7 && _tstof(_T("0.5")) > 0.4);
    CHECK(_ttoi64(_T("5000000000")) == 5000000000LL && _tcstoul(_T("ff"), NULL, 16) == 255);
    CHECK(_tcscmp(_itot(-1, text, 16), _T("ffffffff")) == 0);
    CHECK(_ltot_s(9, text, _countof(text), 2) == 0 && _tcscmp(text, _T("1001")) == 0);
}

static void check_paths(void) {
    TCHAR drive[_MAX_DRIVE], dir[_MAX_DIR], fname[_MAX_FNAME], ext[_MAX_EXT], path[_MAX_PATH];
    _tsplitpath(_T("/Volumes/Disk/dir/f.txt"), drive, dir, fname, ext);
    CHECK(_tcscmp(drive, _T("umes")) == 0 && _tcscmp(ext, _T("txt")) == 0);
    CHECK(_tmakepath_s(path, _MAX_PATH, NULL, _T("dir"), _T("file"), ext) == 0);
    CHECK(_tcscmp(path, _T("dir/file.txt")) == 0);
    CHECK(_tgetenv(_T("KXQTS_MISSING")) == NULL && _trmdir(_T("missing")) != 0);
}

static void check_times(void) {
    TCHAR text[9];
    const time_t start = 0;
    CHECK(_tcslen(_tstrdate(text)) == 8 && _tstrtime_s(text, 9) == 8);
    CHECK(_tcslen(_tctime(&start)) == 25);
}

static void check_files(void) {
    HANDLE event = CreateEvent(NULL, FALSE, TRUE, TEXT("name"));
    HANDLE file =
        CreateFile(FILE_NAME, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    DWORD written = 0;
    CHECK(file != NULL && WriteFile(file, "x", 1, &written, NULL) && written == 1);
    CHECK(CloseHandle(file));
    CHECK(_trename(FILE_NAME, _T("renamed.txt")) == 0 && _tremove(_T("renamed.txt")) == 0);
    CHECK(WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0 && CloseHandle(event));
    SetLastError(ERROR_INVALID_PARAMETER);
    CHECK(GetLastError() == ERROR_INVALID_PARAMETER && ERROR_SUCCESS == NO_ERROR);
}

/* Words that are no C. */
typedef DWORD(WINAPI* Routine)(IN LPVOID parameter, OUT OPTIONAL DWORD FAR* result);

__declspec(dllexport) DWORD WINAPI routine(_In_ LPVOID parameter, _Out_opt_ DWORD* result);
__declspec(noinline) static DWORD CALLBACK twice(LPVOID parameter, DWORD* result) {
    UNREFERENCED_PARAMETER(result);
    return 2 * *(CONST DWORD*)parameter;
}
static __forceinline unsigned __int64 square(unsigned __int32 number) {
    return (unsigned __int64)number * number;
}
static __declspec(thread) int perThread = 5;
static __declspec(align(64)) char aligned[64];

DWORD WINAPI routine(LPVOID parameter, DWORD* result) {
    *result = twice(parameter, NULL);
    return 0;
}

static VOID check_words(void) {
    DWORD number = 21, result = 0;
    Routine call = routine;
    CHECK(call(&number, &result) == 0 && result == 42);
    CHECK(square(0xFFFFFFFFu) == 0xFFFFFFFE00000001ull && sizeof(__int64) == 8);
    CHECK(perThread == 5 && (DWORD_PTR)aligned % 64 == 0);
    CHECK(LOWORD(0x12345678) == 0x5678 && HIWORD(0x12345678) == 0x1234);
    CHECK(LOBYTE(0x1234) == 0x34 && HIBYTE(0x1234) == 0x12);
    CHECK(MAKEWORD(0x34, 0x12) == 0x1234 && MAKELONG(0x5678, 0xF234) == (LONG)0xF2345678);
    CHECK(ARRAYSIZE(aligned) == 64);
}

int _tmain(int argc, TCHAR* argv[]) {
    check_text();
    check_numbers();
    check_paths();
    check_times();
    check_files();
    check_words();
    if (argc != 2)
        return 2;
    printf("%d bit characters:", (int)(8 * sizeof(TCHAR)));
    for (const TCHAR* c = argv[1]; *c; ++c)
        printf(" %x", (unsigned)*c & (sizeof(TCHAR) == 1 ? 0xFFu : 0xFFFFFFFFu));
    return 0;
}

/* NOLINTEND(modernize-use-nullptr) */
