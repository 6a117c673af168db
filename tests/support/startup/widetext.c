/* What wide formats of Windows give. Tells the line of the first that gives something else. */
#include <KxQts/windows/kxwideformat.h>

#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <wchar.h>

static int wrong;

static void expect(const wchar_t* expected, const wchar_t* text, int line) {
    if (wcscmp(text, expected) != 0 && wrong == 0) {
        printf("line %d gives '%ls'\n", line, text);
        wrong = 1;
    }
}

#define EXPECT(expected, ...)                                                                      \
    do {                                                                                           \
        wchar_t text[100];                                                                         \
        kx_swprintf(text, 100, __VA_ARGS__);                                                       \
        expect(expected, text, __LINE__);                                                          \
    } while (0)

static void texts(void) {
    EXPECT(L"wide", L"%s", L"wide");
    EXPECT(L"wide", L"%ls", L"wide");
    EXPECT(L"wide", L"%ws", L"wide");
    EXPECT(L"narrow", L"%hs", "narrow");
    EXPECT(L"narrow", L"%S", "narrow");
    EXPECT(L"wide", L"%lS", L"wide");
    EXPECT(L"narrow", L"%hS", "narrow");
    EXPECT(L"[  r][l  ][cu]", L"[%3s][%-3s][%.2s]", L"r", L"l", L"cut");
    EXPECT(L"[  a]", L"[%*.*s]", 3, 1, L"abc");
    EXPECT(L"xyzxy", L"%c%C%hc%lc%wc", L'x', 'y', 'z', (wint_t)L'x', (wint_t)L'y');
}

static void numbers(void) {
    EXPECT(L"1099511627776", L"%I64d", 1LL << 40);
    EXPECT(L"00ff", L"%04I64x", 255ULL);
    EXPECT(L"7 -7", L"%I32u %I32d", 7u, -7);
    EXPECT(L"5 6", L"%Iu %Id", (size_t)5, (size_t)6);
    EXPECT(L"-1 2 3 4", L"%d %ld %lld %zu", -1, 2L, 3LL, (size_t)4);
    EXPECT(L"1.50 0x1f +2", L"%.2f %#x %+d", 1.5, 0x1F, 2);
}

static void rest(void) {
    EXPECT(L"100%", L"%d%%", 100);
    EXPECT(L"%s", L"%%s");
    EXPECT(L"plain", L"plain");
    EXPECT(L"b a", L"%2$s %1$s", L"a", L"b");
    EXPECT(L"5%", L"%hhd%%", 5);
    EXPECT(L"", L"");
}

/* Of each text the room and the text that is left. */
static void bounds(void) {
    wchar_t text[6] = L"-----";
    if (kx_swprintf(text, 4, L"%s", L"abc") != 3)
        wrong = 1;
    expect(L"abc", text, __LINE__);
    if (kx_swprintf(text, 4, L"%s", L"abcd") >= 0)
        wrong = 1;
    expect(L"abc", text, __LINE__);
    if (text[4] != L'-')
        wrong = 1;
    errno = 0;
    if (kx_swprintf(text, 0, L"%s", L"x") != -1 || errno != EINVAL)
        wrong = 1;
    if (kx_swprintf_unbounded(text, L"%s-%d", L"ab", 5) != 4)
        wrong = 1;
    expect(L"ab-5", text, __LINE__);
}

static void scans(void) {
    wchar_t word[10] = L"", set[10] = L"", brackets[10] = L"", character = 0;
    char narrow[10] = "";
    int64_t number = 0;
    const int count = kx_swscanf(L"5000000000 word abc^]]z n", L"%I64d %9s %9[a-c]%9[]^]%c %9hs",
                                 &number, word, set, brackets, &character, narrow);
    if (count != 6 || number != 5000000000 || narrow[0] != 'n')
        wrong = 1;
    expect(L"word", word, __LINE__);
    expect(L"abc", set, __LINE__);
    expect(L"^]]", brackets, __LINE__);
    expect(L"z", (wchar_t[]){character, 0}, __LINE__);
}

int main(void) {
    texts();
    numbers();
    rest();
    bounds();
    scans();
    return wrong ? 1 : 7;
}
