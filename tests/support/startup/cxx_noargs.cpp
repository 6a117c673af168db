#include "report.h"

int wmain() {
    return REPORT_STATUS;
}
