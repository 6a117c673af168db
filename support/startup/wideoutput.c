#define _POSIX_C_SOURCE 200809L

#include "wideoutput.h"

#include <KxQts/windows/kxwideformat.h>

#include <errno.h>
#include <limits.h>
#include <locale.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

// The bytes of a character in the user's locale, which the program need not have set.
static size_t inUsersLocale(char* bytes, wchar_t character) {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", (locale_t)0);
    if (!locale)
        return (size_t)-1;
    mbstate_t state;
    memset(&state, 0, sizeof state);
    const locale_t before = uselocale(locale);
    const size_t count = wcrtomb(bytes, character, &state);
    uselocale(before);
    freelocale(locale);
    return count;
}

static size_t toBytes(char* bytes, wchar_t character, mbstate_t* state) {
    const mbstate_t before = *state;
    size_t count = wcrtomb(bytes, character, state);
    if (count != (size_t)-1)
        return count;
    *state = before;
    count = inUsersLocale(bytes, character);
    if (count != (size_t)-1)
        return count;
    *bytes = '?';
    return 1;
}

// Past the stream's buffer, which is empty as long as nothing has been written to the stream: so it
// is still open which kind of text the stream is for.
static int writeAtOnce(const char* bytes, size_t count, FILE* stream) {
    while (count > 0) {
        const ssize_t written = write(fileno(stream), bytes, count);
        if (written < 0 && errno != EINTR)
            return 0;
        if (written > 0) {
            bytes += written;
            count -= (size_t)written;
        }
    }
    return 1;
}

static int writeBytes(const wchar_t* text, size_t length, FILE* stream) {
    char* const bytes = malloc(length * MB_LEN_MAX + 1);
    if (!bytes)
        return 0;
    mbstate_t state;
    memset(&state, 0, sizeof state);
    size_t count = 0;
    for (size_t i = 0; i < length; ++i)
        count += toBytes(bytes + count, text[i], &state);
    const int written = fwide(stream, 0) < 0 ? fwrite(bytes, 1, count, stream) == count
                                             : writeAtOnce(bytes, count, stream);
    free(bytes);
    return written;
}

static int writeWide(const wchar_t* text, size_t length, FILE* stream) {
    for (size_t i = 0; i < length; ++i)
        if (putwc(text[i], stream) == WEOF)
            return 0;
    return 1;
}

int kxmain_write(const wchar_t* text, size_t length, FILE* stream) {
    const int errorBefore = errno;
    const int isWide = fwide(stream, 0) > 0 || fileno(stream) < 0;
    errno = errorBefore;
    return isWide ? writeWide(text, length, stream) : writeBytes(text, length, stream);
}

int kx_fputws(const wchar_t* text, FILE* stream) {
    return kxmain_write(text, wcslen(text), stream) ? 0 : EOF;
}

wint_t kx_fputwc(wchar_t character, FILE* stream) {
    return kxmain_write(&character, 1, stream) ? (wint_t)character : WEOF;
}
