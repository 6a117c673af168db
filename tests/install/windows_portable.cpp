// A source for several systems, which has macros of its own for what it misses on those other than
// Windows. They stay in force, and the headers with Windows' names do not stumble over them.

#ifndef _WIN32
#define sprintf_s snprintf
#define strcpy_s(dst, size, src) strncpy(dst, src, size)
#define strcat_s(dst, size, src) strcat(dst, src)
#define localtime_s(parts, moment) (localtime_r(moment, parts) == nullptr)
#define fopen_s(stream, path, mode) ((*(stream) = fopen(path, mode)) == nullptr)
#define _snprintf snprintf
#define _stricmp(a, b) strcasecmp(a, b)
#define _fileno fileno
#define strtok_s strtok_r
#endif

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <time.h>

#include <string>

#ifndef _WIN32
#define _strdup(text) strdup(text)
#define _getcwd getcwd
#endif

// Names that other sources have for members.
struct Channel {
    int _read = 0;
    int _close = 0;
    int read() const { return _read; }
    int close() const { return _close; }
};

extern "C" {
#include <windows.h>
}

int main() {
    char text[20];
    tm parts;
    FILE* stream = nullptr;
    const time_t now = 0;
    char* copy = _strdup("Text");
    const bool same = _stricmp(copy, "tEXT") == 0;
    free(copy);
    const bool printed =
        sprintf_s(text, sizeof text, "%d", 5) == 1 && _snprintf(text, 20, "xyz") == 3;
    strcpy_s(text, sizeof text, "abc");
    strcat_s(text, sizeof text, "d");
    const bool told = !localtime_s(&parts, &now) && fopen_s(&stream, "missing", "r");
    const bool works = same && printed && told && strcmp(text, "abcd") == 0;
    return works && Channel().read() == 0 && _fileno(stdout) == 1 && !CloseHandle(nullptr) ? 0 : 1;
}
