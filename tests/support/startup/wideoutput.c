/* Prints wide text and other text to one stream: what has come first is the argument. */
#include <KxQts/windows/kxwideformat.h>

#include <stdio.h>
#include <string.h>
#include <wchar.h>

int main(int argc, char** argv) {
    const char* first = argc > 1 ? argv[1] : "";
    if (strcmp(first, "bytes") == 0)
        printf("bytes ");
    if (strcmp(first, "wide") == 0)
        wprintf(L"wide ");
    const int before = fwide(stdout, 0);
    if (kx_wprintf(L"%s %d, ", L"gr\u00fcn", 5) != 8 || kx_fputws(L"text", stdout) < 0 ||
        kx_fputwc(L'!', stdout) != L'!' || kx_fwprintf(stdout, L"%hs", "?") != 1)
        return 1;
    if (fwide(stdout, 0) != before)
        return 2;
    if (before > 0)
        wprintf(L" wide");
    else
        printf(" bytes");
    return 7;
}
