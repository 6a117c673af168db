#pragma once

#include <KxQts/winapi/files.h>

#include <gtest/gtest.h>

#include <string>

namespace KxTest {

inline constexpr DWORD readWrite = GENERIC_READ | GENERIC_WRITE;

inline HANDLE openFile(const std::string& name, DWORD access, DWORD disposition, DWORD share = 0,
                       DWORD flags = 0) {
    return CreateFileA(name.c_str(), access, share, nullptr, disposition, flags, nullptr);
}

/// What one read gives; of short files, all from the position on.
inline std::string readAll(HANDLE file) {
    std::string text(1000, '\0');
    DWORD done = 0;
    EXPECT_TRUE(ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr));
    text.resize(done);
    return text;
}

} // namespace KxTest
