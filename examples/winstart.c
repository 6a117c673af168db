/* Starts a tool and waits until a file of its making is there:

     winstart COMMAND-LINE FILE

   A program as it is written for Windows. It needs <windows.h>, <stdio.h> and <string.h> and
   nothing else. Where process handles cannot be waited for, as with KxQts, it goes by the file. */

#include <windows.h>

#include <stdio.h>
#include <string.h>

#define PATIENCE 10000 /* milliseconds */
#define PAUSE 50

static BOOL isThere(const char* path) {
    HANDLE file = CreateFile(path, GENERIC_READ, 0, NULL, OPEN_EXISTING, 0, NULL);
    if (file == NULL || file == INVALID_HANDLE_VALUE)
        return FALSE;
    CloseHandle(file);
    return TRUE;
}

/* Waits until a file is there. An event that nobody signals makes the pauses. */
static BOOL waitForFile(const char* path) {
    HANDLE pause = CreateEvent(NULL, FALSE, FALSE, NULL);
    DWORD waited = 0;
    while (!isThere(path) && waited < PATIENCE) {
        WaitForSingleObject(pause, PAUSE);
        waited += PAUSE;
    }
    CloseHandle(pause);
    return waited < PATIENCE;
}

static void reportWait(HANDLE process) {
    DWORD code = 0;
    if (WaitForSingleObject(process, PATIENCE) == WAIT_OBJECT_0 &&
        GetExitCodeProcess(process, &code))
        printf("it has ended with %lu\n", (unsigned long)code);
    else
        printf("it is not waited for by its handle (GetExitCodeProcess: error %lu)\n",
               GetExitCodeProcess(process, &code) ? 0UL : (unsigned long)GetLastError());
}

int main(int argc, char** argv) {
    STARTUPINFO startup;
    PROCESS_INFORMATION process;
    if (argc != 3) {
        fprintf(stderr, "usage: winstart COMMAND-LINE FILE\n");
        return 2;
    }
    memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    if (!CreateProcess(NULL, argv[1], NULL, NULL, FALSE, 0, NULL, NULL, &startup, &process)) {
        fprintf(stderr, "winstart: cannot start %s (error %lu)\n", argv[1],
                (unsigned long)GetLastError());
        return 1;
    }
    printf("started %s%s\n", argv[1], process.dwProcessId != 0 ? ", with a process id" : "");
    reportWait(process.hProcess);
    CloseHandle(process.hProcess);
    if (!waitForFile(argv[2])) {
        fprintf(stderr, "winstart: %s did not come\n", argv[2]);
        return 1;
    }
    printf("%s is there\n", argv[2]);
    return 0;
}
