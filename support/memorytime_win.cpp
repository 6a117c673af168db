#include <KxQts/winapi/text.h>

#include "platform/clock.h"

#include <chrono>
#include <cstdlib>
#include <cstring>

void ZeroMemory(void* dst, size_t len) {
    if (dst)
        std::memset(dst, 0, len);
}

HLOCAL LocalFree(HLOCAL p) {
    std::free(p);
    return nullptr;
}

DWORD GetTickCount(void) {
    const auto time = Korvex::systemClock().sinceStartUp();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

int kx_sleep(unsigned int ms) {
    return Korvex::systemClock().sleep(std::chrono::milliseconds(ms));
}
