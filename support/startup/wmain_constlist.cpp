#include "startup.h"

int wmain(int argc, const wchar_t** argv, const wchar_t**) {
    return wmain(argc, static_cast<const wchar_t* const*>(argv));
}
