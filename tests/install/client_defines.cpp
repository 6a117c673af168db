// A client that has functions of its own under names that the library exports. Its own calls reach
// them; the library's calls must not.

#include <KxQts/KxQts.h>

#include <cstdio>
#include <unistd.h>

namespace {
int captured = 0;
}

QFile* createFile(const QString&, unsigned int, unsigned int, _SECURITY_ATTRIBUTES*, unsigned int,
                  unsigned int, void*) {
    ++captured;
    return nullptr;
}

QFile* createFile(QFile* file, unsigned int, unsigned int, _SECURITY_ATTRIBUTES*, unsigned int,
                  unsigned int, void*) {
    ++captured;
    delete file;
    return nullptr;
}

BOOL Korvex::WEvent::set(WEvent*) {
    ++captured;
    return FALSE;
}

int main() {
    HANDLE file = CreateFileA("own.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    const bool works =
        SetEvent(event) && CloseHandle(event) && CloseHandle(file) && access("own.txt", F_OK) == 0;
    std::printf("the library's calls %s, %d of them ended in the client\n", works ? "work" : "fail",
                captured);

    const bool own = !createFile(QString(), 0, 0, nullptr, 0, 0, nullptr) && captured == 1;
    return works && own ? 0 : 1;
}
