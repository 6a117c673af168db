#include "report.h"

int wmain(int argc, wchar_t* argv[]) {
    return report_arguments(argc, argv);
}
