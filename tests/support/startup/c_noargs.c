#include "report.h"

int wmain(void) {
    return REPORT_STATUS;
}
