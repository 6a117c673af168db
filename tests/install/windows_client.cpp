// A client as it is written for Windows, in C++: plain names for the calls, TCHAR for text, _tmain.

#include <Windows.h>

#include <tchar.h>

#include <cstdio>
#include <string>

namespace {

using Text = std::basic_string<TCHAR>;

DWORD WINAPI sizeOf(LPCTSTR path) {
    HANDLE file = CreateFile(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    if (!file)
        return INVALID_FILE_SIZE;
    const DWORD size = GetFileSize(file, nullptr);
    CloseHandle(file);
    return size;
}

bool write(const Text& path, const Text& text) {
    HANDLE file = CreateFile(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    const DWORD bytes = static_cast<DWORD>(text.size() * sizeof(TCHAR));
    const BOOL good = WriteFile(file, text.data(), bytes, &written, nullptr);
    return CloseHandle(file) && good && written == bytes;
}

} // namespace

int _tmain(int, TCHAR*[]) {
    const Text path = _T("windows.txt");
    const Text text = _T("text");
    if (!write(path, text) || sizeOf(path.c_str()) != text.size() * sizeof(TCHAR)) {
        std::fprintf(stderr, "failed: error %u\n", static_cast<unsigned>(GetLastError()));
        return 1;
    }
    return 0;
}
