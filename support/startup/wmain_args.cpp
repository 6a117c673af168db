#include "startup.h"

extern "C" int wmain(int argc, wchar_t** argv, wchar_t**) {
    return wmain(argc, argv);
}
