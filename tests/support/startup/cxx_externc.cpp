#include "report.h"

extern "C" int wmain(int argc, wchar_t** argv) {
    return report_arguments(argc, argv);
}
