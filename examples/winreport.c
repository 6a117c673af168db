// A program for Windows: says on which computer it runs, and reports an event to the event log.

#include <windows.h>

#include <stdio.h>

static void showComputer(void) {
    char name[256];
    char time[32];
    DWORD size = sizeof name;
    if (GetComputerNameA(name, &size))
        printf("Computer: %s\n", name);
    if (GetTimeFormatA(0, 0, NULL, "HH:mm:ss", time, sizeof time) > 0)
        printf("Time:     %s\n", time);
}

static BOOL report(WORD category, DWORD event, const char* text, void* data, DWORD size) {
    LPCSTR strings[] = {text};
    HANDLE log = RegisterEventSourceA(NULL, "winreport");
    BOOL done =
        ReportEventA(log, EVENTLOG_INFORMATION_TYPE, category, event, NULL, 1, size, strings, data);
    DeregisterEventSource(log);
    return done;
}

int main(void) {
    unsigned char sector[] = {0xEB, 0x58, 0x90, 0x00};
    showComputer();
    printf("With data:    %s\n",
           report(1, 1000, "sector read", sector, sizeof sector) ? "reported" : "refused");
    printf("Without data: %s\n", report(1, 1001, "disk ready", NULL, 0) ? "reported" : "refused");
    return 0;
}
