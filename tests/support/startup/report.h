#pragma once

#include <stdio.h>
#include <stdlib.h>
#include <wchar.h>

/* What a program of this folder prints: its arguments as code points, and the variable
   KXQTS_STARTUP where it was given an environment. */

#define REPORT_STATUS 7 /* what each program returns */

static inline void print_text(const wchar_t* text) {
    putchar('[');
    for (; *text; ++text)
        printf(text[1] ? "%x " : "%x", (unsigned int)*text);
    putchar(']');
}

static inline int report_environment(wchar_t* const* list) {
    const wchar_t name[] = L"KXQTS_STARTUP=";
    for (; *list; ++list)
        if (wcsncmp(*list, name, wcslen(name)) == 0)
            print_text(*list + wcslen(name));
    return REPORT_STATUS;
}

/* Arguments but the first, the program's name. */
static inline int report_arguments(int count, wchar_t* const* list) {
    for (int i = 1; i < count; ++i)
        print_text(list[i]);
    return list[count] ? EXIT_FAILURE : REPORT_STATUS;
}
