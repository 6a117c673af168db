#include "startup.h"

int wmain(int argc, const wchar_t** argv) {
    return wmain(argc, argv, const_cast<const wchar_t**>(kxmain_environment));
}
