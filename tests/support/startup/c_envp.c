#include "report.h"

int wmain(int argc, wchar_t** argv, wchar_t** envp) {
    report_arguments(argc, argv);
    return report_environment(envp);
}
