/* A tool in C as it has been written for Windows for years: what is usual around the calls, that is
   types, macros, constants, call-backs and small helpers, and every family of calls once. */

#define WIN32_LEAN_AND_MEAN
#define STRICT
#define _WIN32_WINNT 0x0600
#include <SDKDDKVer.h>
#include <shellapi.h>
#include <stdio.h>
#include <tchar.h>
#include <windows.h>
#include <winioctl.h>

typedef BOOL(CALLBACK* ENTRYPROC)(LPCTSTR name, LPARAM parameter);

typedef struct tagTOTALS {
    WORD id;
    DWORD entries;
    SIZE_T characters;
} TOTALS, *PTOTALS, FAR* LPTOTALS;

C_ASSERT(sizeof(DWORD) == 4 && sizeof(LONG) == 4 && sizeof(DWORD_PTR) == sizeof(void*));
C_ASSERT(CTL_CODE(FILE_DEVICE_UNKNOWN, 0x800, METHOD_BUFFERED, FILE_ANY_ACCESS) == 0x222000);

static int failed(const char* what) {
    fprintf(stderr, "failed: %s (%u)\n", what, GetLastError());
    return 1;
}

static BOOL CALLBACK count(LPCTSTR name, LPARAM parameter) {
    PTOTALS totals = (PTOTALS)parameter;
    totals->characters += (SIZE_T)lstrlen(name);
    return ++totals->entries < 3;
}

static VOID WINAPI enumerate(ENTRYPROC proc, LPARAM parameter) {
    static const LPCTSTR names[] = {TEXT("a"), TEXT("bc"), TEXT("def"), TEXT("ghij")};
    for (UINT i = 0; i < ARRAYSIZE(names); ++i)
        if (!proc(names[i], parameter))
            break;
}

static int checkMacros(void) {
    TOTALS totals, *found;
    BYTE bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const DWORD value = (DWORD)MAKELONG(0x1234, 0xABCD);
    ZeroMemory(&totals, sizeof totals);
    enumerate(count, (LPARAM)&totals);
    if (totals.entries != 3 || totals.characters != 6)
        return failed("call-backs are called");
    found = CONTAINING_RECORD(&totals.entries, TOTALS, entries);
    if (found != &totals || FIELD_OFFSET(TOTALS, id) != 0)
        return failed("a record is found by its field");
    if (HIWORD(value) != 0xABCD || LOBYTE(LOWORD(value)) != 0x34 || LOWORD(MAKELPARAM(1, 2)) != 1)
        return failed("words are put together and taken apart");
    MoveMemory(bytes + 1, bytes, 4);
    FillMemory(bytes + 6, 2, 0xFF);
    if (bytes[4] != 4 || bytes[7] != MAXBYTE || min(3, 4) != 3 || max(3, 4) != 4)
        return failed("memory is moved and filled");
    if (!FAILED(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)) || FAILED(S_FALSE))
        return failed("results tell success");
    return 0;
}

static int checkHelpers(void) {
    const FILETIME early = {1, 0}, late = {0, 1};
    LPTSTR text = (LPTSTR)LocalAlloc(LPTR, 20 * sizeof(TCHAR));
    if (!text || *text)
        return failed("memory is had");
    lstrcpy(text, TEXT("one"));
    lstrcat(text, TEXT(" two"));
    const BOOL same = lstrcmpi(text, TEXT("ONE TWO")) == 0;
    wsprintf(text, TEXT("%s %d"), TEXT("three"), 4);
    const BOOL printed = lstrcmp(text, TEXT("three 4")) == 0;
    LocalFree(text);
    if (!same || !printed || lstrlen(NULL) != 0)
        return failed("texts are put together");
    if (CompareFileTime(&early, &late) != -1 || CompareFileTime(&late, &late) != 0)
        return failed("times are compared");
    return GetCurrentProcessId() > 0 ? 0 : failed("the process has a number");
}

static int checkFiles(void) {
    LARGE_INTEGER size = {{0, 0}};
    WIN32_FIND_DATA data;
    DWORD done = 0;
    HANDLE file = CreateFile(TEXT("tool.txt"), GENERIC_READ | GENERIC_WRITE, 0, NULL, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_SEQUENTIAL_SCAN, NULL);
    if (file == NULL || file == INVALID_HANDLE_VALUE || !WriteFile(file, "text", 4, &done, NULL))
        return failed("a file takes text");
    if (!GetFileSizeEx(file, &size) || size.QuadPart != 4 || !CloseHandle(file))
        return failed("a file has a size");
    HANDLE search = FindFirstFile(TEXT("tool.*"), &data);
    if (search == INVALID_HANDLE_VALUE || FindNextFile(search, &data) || !FindClose(search))
        return failed("a file is found once");
    search = FindFirstFileA("tool.*", (LPWIN32_FIND_DATAA)&data);
    if (FindNextFileA(search, NULL) || FindNextFileW(search, NULL) || !FindClose(search))
        return failed("a search knows either form");
    if (!CopyFile(TEXT("tool.txt"), TEXT("copy.txt"), TRUE) || !DeleteFile(TEXT("tool.txt")))
        return failed("a file is copied and deleted");
    return MoveFile(TEXT("copy.txt"), TEXT("tool.txt")) ? 0 : failed("a file is moved");
}

static int checkSystem(void) {
    TCHAR name[MAX_COMPUTERNAME_LENGTH + 1], clock[32], folder[MAX_PATH];
    DWORD size = ARRAYSIZE(name);
    SYSTEMTIME now;
    GetLocalTime(&now);
    if (!GetComputerName(name, &size) || lstrlen(name) == 0)
        return failed("the computer has a name");
    if (!GetTimeFormat(LOCALE_USER_DEFAULT, TIME_FORCE24HOURFORMAT, &now, NULL, clock, 32))
        return failed("a time is told");
    if (GetTempPath(MAX_PATH, folder) == 0 || GetSystemDirectory(folder, MAX_PATH) == 0)
        return failed("there are folders");
    return 0;
}

/* Calls that are there and say that they are not supported. */
static int checkUnsupported(void) {
    LPTSTR message = NULL;
    const DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    SetLastError(ERROR_SUCCESS);
    if (FormatMessage(flags, NULL, ERROR_FILE_NOT_FOUND, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                      (LPTSTR)&message, 0, NULL) != 0)
        return failed("messages are not formatted");
    if (message || GetLastError() != ERROR_NOT_SUPPORTED || GetKeyboardLayout(0) != NULL)
        return failed("what is not supported says so");
    if ((INT_PTR)ShellExecute(NULL, TEXT("open"), TEXT("x"), NULL, NULL, SW_SHOWNORMAL) > 32)
        return failed("nothing is opened");
    return GetDriveType(TEXT("/")) == DRIVE_UNKNOWN ? 0 : failed("drives have no type");
}

static int checkEvents(void) {
    LPCTSTR strings[] = {TEXT("started")};
    DWORD data = 5;
    HANDLE log = RegisterEventSource(NULL, TEXT("client"));
    const BOOL told =
        ReportEvent(log, EVENTLOG_INFORMATION_TYPE, 0, 1, NULL, 1, sizeof data, strings, &data);
    return DeregisterEventSource(log) && told ? 0 : failed("an event is told");
}

int _tmain(int argc, TCHAR* argv[]) {
    UNREFERENCED_PARAMETER(argc);
    UNREFERENCED_PARAMETER(argv);
    if (checkMacros() || checkHelpers() || checkFiles() || checkSystem())
        return 1;
    return checkUnsupported() || checkEvents();
}
