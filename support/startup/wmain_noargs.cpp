#include "startup.h"

int wmain(int, const wchar_t* const*) {
    return wmain();
}
