#include "report.h"

int wmain(int argc, const wchar_t* argv[], const wchar_t* envp[]) {
    report_arguments(argc, const_cast<wchar_t**>(argv));
    return report_environment(const_cast<wchar_t**>(envp));
}
