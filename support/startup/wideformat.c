#include "wideformat.h"

#include <errno.h>
#include <stdlib.h>

// A format may grow: a size in front of a letter, where Windows needs none.
#define LONGEST_GROWTH 2

struct Formats {
    const wchar_t* from;
    wchar_t* to;
};

static void copyWhile(struct Formats* formats, const wchar_t* accepted) {
    while (*formats->from && wcschr(accepted, *formats->from))
        *formats->to++ = *formats->from++;
}

static size_t beginsWith(const wchar_t* text, const wchar_t* start) {
    const size_t length = wcslen(start);
    return wcsncmp(text, start, length) == 0 ? length : 0;
}

// Sizes that only Windows knows. Its "I" is as wide as a pointer.
static void takeIntegerSize(struct Formats* formats) {
    size_t length;
    if ((length = beginsWith(formats->from, L"I64"))) {
        *formats->to++ = L'l';
        *formats->to++ = L'l';
    } else if (!(length = beginsWith(formats->from, L"I32")) &&
               (length = beginsWith(formats->from, L"I"))) {
        *formats->to++ = L'z';
    }
    formats->from += length;
}

// Text and characters are wide unless an "h" or a capital letter says otherwise.
static void takeText(struct Formats* formats, wchar_t size) {
    const wchar_t letter = *formats->from++;
    const int capital = letter == L'S' || letter == L'C';
    if (size != L'h' && (!capital || size != 0))
        *formats->to++ = L'l';
    *formats->to++ = letter == L'S' ? L's' : letter == L'C' ? L'c' : letter;
}

// What may stand in the brackets of a scan set, the closing one included.
static void copySet(struct Formats* formats) {
    copyWhile(formats, L"^");
    if (*formats->from == L']')
        *formats->to++ = *formats->from++;
    while (*formats->from && *formats->from != L']')
        *formats->to++ = *formats->from++;
}

// What follows on a percent sign.
static void takeConversion(struct Formats* formats) {
    copyWhile(formats, L"-+ #0123456789.*'$");
    const wchar_t* const start = formats->from;
    wchar_t size = 0;
    if (*start == L'h' || *start == L'l' || *start == L'w')
        size = *start;
    const wchar_t* const letter = size ? start + 1 : start;
    if (*letter && wcschr(L"sScC[", *letter)) {
        formats->from = letter;
        const int set = *letter == L'[';
        takeText(formats, size);
        if (set)
            copySet(formats);
        return;
    }
    takeIntegerSize(formats);
    copyWhile(formats, L"hlLqjzt");
    if (*formats->from)
        *formats->to++ = *formats->from++;
}

wchar_t* kxmain_toCFormat(const wchar_t* format) {
    wchar_t* const result = calloc((wcslen(format) + 1) * LONGEST_GROWTH, sizeof *result);
    if (!result) {
        errno = ENOMEM;
        return NULL;
    }
    struct Formats formats = {format, result};
    while (*formats.from) {
        const wchar_t character = *formats.from++;
        *formats.to++ = character;
        if (character == L'%')
            takeConversion(&formats);
    }
    return result;
}
