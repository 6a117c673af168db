/* The inline helpers of <windows.h>, with a kx_sleep of this program's own in the place of the
   library's: what it is asked for is printed, and its third call ends the program. */
#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

int kx_sleep(unsigned int ms) {
    static int calls;
    printf("[%u]", ms);
    errno = 4;
    if (++calls == 3)
        exit(7);
    return -1;
}

int main(void) {
    SetLastError(ERROR_MORE_DATA);
    if (errno != 234 || GetLastError() != ERROR_MORE_DATA)
        return 1;
    Sleep(25);
    if (GetLastError() != ERROR_MORE_DATA)
        return 2;
    Sleep(INFINITE);
    return 3;
}
