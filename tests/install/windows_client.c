/* A client as it is written for Windows, in C99: plain names for the calls, TCHAR for text, _tmain.
 */

#include <windows.h>

#include <stdio.h>
#include <tchar.h>

static int failed(const char* what) {
    fprintf(stderr, "failed: %s (%u)\n", what, (unsigned)GetLastError());
    return 1;
}

int _tmain(int argc, TCHAR** argv) {
    const TCHAR text[] = _T("written under a plain name");
    TCHAR copy[sizeof text / sizeof *text];
    DWORD count = 0;
    HANDLE event = CreateEvent(NULL, FALSE, TRUE, NULL);
    HANDLE file = CreateFile(TEXT("windows.txt"), GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
    if (argc < 1 || argv[argc] != NULL || _tcslen(argv[0]) == 0)
        return failed("the program knows its name");
    if (!file || !WriteFile(file, text, sizeof text, &count, NULL) || count != sizeof text)
        return failed("a file takes text");
    if (!CloseHandle(file) || WaitForSingleObject(event, 0) != WAIT_OBJECT_0 || !CloseHandle(event))
        return failed("handles can be closed");

    file = CreateFile(TEXT("windows.txt"), GENERIC_READ, 0, NULL, OPEN_EXISTING, 0, NULL);
    if (!file || !ReadFile(file, copy, sizeof copy, &count, NULL) || _tcscmp(copy, text) != 0)
        return failed("the text is read back");
    if (!CloseHandle(file))
        return failed("the file can be closed");
    SetLastError(ERROR_SUCCESS);
    Sleep(1);
    return GetLastError() == ERROR_SUCCESS ? 0 : failed("there is no error left");
}
