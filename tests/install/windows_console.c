/* A console program in the manner of the C runtime's own documentation: it includes the C library's
   headers, finds in them what Windows has beside, and prints in the text type it is built for. */

#include <direct.h>
#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tchar.h>
#include <time.h>

static int failed(const char* what) {
    fprintf(stderr, "failed: %s (%d)\n", what, errno);
    return 1;
}

static int __cdecl compose(char* text, size_t size, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int needed = _vscprintf(format, arguments);
    va_end(arguments);
    va_start(arguments, format);
    const int length = vsprintf_s(text, size, format, arguments);
    va_end(arguments);
    return length == needed ? length : -1;
}

static int checkPaths(void) {
    char path[_MAX_PATH], drive[_MAX_DRIVE], dir[_MAX_DIR], name[_MAX_FNAME], ext[_MAX_EXT];
    errno_t error = _makepath_s(path, _MAX_PATH, NULL, "sample/crt", "crt_makepath_s", "c");
    if (error != 0 || strcmp(path, "sample/crt/crt_makepath_s.c") != 0)
        return failed("a path is made of its parts");
    error = _splitpath_s(path, drive, _countof(drive), dir, _countof(dir), name, _countof(name),
                         ext, _countof(ext));
    if (error != 0 || strcmp(dir, "sample/crt") != 0 || strcmp(name, "crt_makepath_s") != 0)
        return failed("a path is taken apart");
    return 0;
}

static int checkTexts(void) {
    char text[40], line[] = "one two,three", *rest = NULL;
    int words = 0;
    for (char* word = strtok_s(line, " ,", &rest); word; word = strtok_s(NULL, " ,", &rest))
        ++words;
    char* copy = _strdup("The String");
    const int same = _stricmp(_strlwr(copy), "THE STRING") == 0 && strcmp(copy, "the string") == 0;
    free(copy);
    if (words != 3 || !same || _strnicmp("abX", "ABy", 2) != 0)
        return failed("texts are compared and taken apart");
    if (compose(text, sizeof text, "%s-%d", "text", 5) != 6 || strcmp(text, "text-5") != 0)
        return failed("a text is composed");
    if (_snprintf(text, 4, "%s", "abcdef") != -1 || strcmp(text, "abc") != 0)
        return failed("a text that does not fit is told by -1");
    if (compose(text, 6, "%s", "abcdef") != -1 || *text != 0)
        return failed("a text that does not fit is refused");
    if (memcpy_s(text, 2, "abc", 3) != ERANGE || memcpy_s(text, 3, "abc", 3) != 0)
        return failed("memory is copied where it fits");
    return 0;
}

static int checkEnvironment(void) {
    char value[16], *copy = NULL;
    size_t length = 0;
    if (_putenv_s("KXQTS_CLIENT", "value") != 0 ||
        getenv_s(&length, value, sizeof value, "KXQTS_CLIENT") != 0 || length != 6)
        return failed("a variable is told");
    if (_dupenv_s(&copy, NULL, "KXQTS_CLIENT") != 0 || strcmp(copy, "value") != 0)
        return failed("a variable is copied");
    free(copy);
    if (_putenv_s("KXQTS_CLIENT", "") != 0 || getenv("KXQTS_CLIENT"))
        return failed("a variable is removed");
    return 0;
}

static int checkFiles(void) {
    FILE* stream = NULL;
    char folder[_MAX_PATH];
    if (fopen_s(&stream, "missing/file", "r") != ENOENT || stream)
        return failed("a file that is not there is told");
    if (_mkdir("folder") != 0 || _chdir("folder") != 0 || !_getcwd(folder, sizeof folder))
        return failed("a folder can be made");
    const int file = _open("file", _O_CREAT | _O_RDWR | _O_BINARY, _S_IREAD | _S_IWRITE);
    if (_write(file, "ab", 2) != 2 || _lseek(file, 0, SEEK_END) != 2 || _close(file) != 0)
        return failed("a descriptor takes text");
    if (_access("file", 0) != 0 || _unlink("file") != 0 || _chdir("..") != 0)
        return failed("a file can be removed");
    return _rmdir("folder") == 0 ? 0 : failed("a folder can be removed");
}

static int checkTimes(void) {
    char text[26];
    struct tm parts;
    __time64_t now = 0;
    _time64(&now);
    if (localtime_s(&parts, &now) != 0 || asctime_s(text, sizeof text, &parts) != 0)
        return failed("a time is taken apart");
    return ctime_s(text, 25, &now) == EINVAL ? 0 : failed("too little room is told");
}

/* Text of either kind, which is printed in between by calls that take one kind only. */
static int checkTexting(const TCHAR* program) {
    TCHAR text[100], line[] = _T("a b,c"), word[20] = _T(""), letter = 0;
    int words = 0;
    __int64 number = 0;
    _stprintf(text, _T("%s|%5s|%c|%d"), _T("text"), _T("r"), _T('c'), 5);
    if (_tcscmp(text, _T("text|    r|c|5")) != 0)
        return failed("a text is put into a text");
    for (TCHAR* part = _tcstok(line, _T(" ,")); part; part = _tcstok(NULL, _T(" ,")))
        ++words;
    if (words != 3 || _tcsinc(text) != text + 1 || _tcsicmp(_T("Ab"), _T("aB")) != 0)
        return failed("a text is taken apart");
    if (_stscanf(_T("12 word x"), _T("%lld %19s %c"), &number, word, &letter) != 3 ||
        number != 12 || _tcscmp(word, _T("word")) != 0 || letter != _T('x'))
        return failed("a text is scanned");
    if (_tprintf(_T("1 %s\n"), text) < 0 || printf("2 %d\n", 2) < 0 || _putts(_T("3")) < 0 ||
        _ftprintf(stdout, _T("4 %s\n"), program) < 0 || puts("5") < 0)
        return failed("both kinds are printed");
    return 0;
}

int __cdecl _tmain(int argc, TCHAR* argv[]) {
    if (argc != 1 || _getpid() <= 0)
        return failed("the program is started");
    if (checkPaths() || checkTexts() || checkEnvironment() || checkFiles())
        return 1;
    return checkTimes() || checkTexting(argv[0]);
}
