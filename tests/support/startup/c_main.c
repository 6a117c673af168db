/* Has a main of its own; its wmain is nothing but a function of that name. */
#include "report.h"

int wmain(int argc, wchar_t** argv) {
    (void)argv;
    return argc;
}

int main(void) {
    puts("main");
    return wmain(REPORT_STATUS, NULL);
}
