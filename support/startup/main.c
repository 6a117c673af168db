#define _POSIX_C_SOURCE 200809L

#include "startup.h"

#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

extern char** environ;

wchar_t** kxmain_environment;

// Kept where a leak checker sees it after main has returned.
static wchar_t** arguments;

static void* room(size_t count, size_t size) {
    void* memory = calloc(count, size);
    if (!memory) {
        perror("wmain");
        exit(EXIT_FAILURE);
    }
    return memory;
}

// A byte that is no character of the locale becomes the character of that number: a file name in
// another encoding must not keep the program from starting.
static wchar_t* toWide(const char* text) {
    size_t left = strlen(text);
    wchar_t* const wide = room(left + 1, sizeof *wide);
    mbstate_t state;
    memset(&state, 0, sizeof state);
    for (wchar_t* end = wide; left > 0; ++end) {
        size_t used = mbrtowc(end, text, left, &state);
        if (used > left) {
            *end = (unsigned char)*text;
            used = 1;
            memset(&state, 0, sizeof state);
        }
        text += used;
        left -= used;
    }
    return wide;
}

static wchar_t** allToWide(char** texts) {
    size_t count = 0;
    while (texts[count])
        ++count;
    wchar_t** const wide = room(count + 1, sizeof *wide);
    for (size_t i = 0; i < count; ++i)
        wide[i] = toWide(texts[i]);
    return wide;
}

// The user's locale is in force for the conversion only: the program starts in the "C" locale, as
// every program does.
int main(int argc, char** argv) {
    static char* none[] = {NULL};
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", (locale_t)0);
    const locale_t before = locale ? uselocale(locale) : (locale_t)0;
    arguments = allToWide(argv);
    kxmain_environment = allToWide(environ ? environ : none);
    if (locale) {
        uselocale(before);
        freelocale(locale);
    }
    return wmain(argc, arguments, kxmain_environment);
}
