/* A client in C99 that knows only the installed tree: writes a file, reads it back, and waits for
   an event. Tells what went wrong, if anything did. */

#include <KxQts/windows.h>

#include <stdio.h>
#include <string.h>

static int failed(const char* what) {
    fprintf(stderr, "failed: %s\n", what);
    return 1;
}

static int checkEvent(void) {
    HANDLE event = CreateEventA(NULL, FALSE, FALSE, NULL);
    if (WaitForSingleObject(event, 0) != WAIT_TIMEOUT)
        return failed("a new event is not signalled");
    if (!SetEvent(event) || WaitForSingleObject(event, INFINITE) != WAIT_OBJECT_0)
        return failed("an event that is set ends the wait");
    return CloseHandle(event) ? 0 : failed("an event can be closed");
}

static int checkFile(void) {
    const char text[] = "written and read back";
    char copy[sizeof text] = {0};
    DWORD count = 0;
    LARGE_INTEGER start = {{0, 0}};
    HANDLE file = CreateFileA("client.txt", GENERIC_READ | GENERIC_WRITE, 0, NULL, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, NULL);
    if (!file)
        return failed("a file can be created");
    if (!WriteFile(file, text, sizeof text, &count, NULL) || count != sizeof text)
        return failed("the file takes the text");
    if (!SetFilePointerEx(file, start, NULL, FILE_BEGIN))
        return failed("the file can be rewound");
    if (!ReadFile(file, copy, sizeof copy, &count, NULL) || memcmp(copy, text, sizeof text) != 0)
        return failed("the text is read back");
    return CloseHandle(file) ? 0 : failed("the file can be closed");
}

int main(void) {
    return checkEvent() || checkFile();
}
