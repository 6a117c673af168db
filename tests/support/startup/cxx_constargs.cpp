#include "report.h"

int wmain(int argc, const wchar_t* argv[]) {
    return report_arguments(argc, const_cast<wchar_t**>(argv));
}
