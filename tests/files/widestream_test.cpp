#include "files/folder.h"

#include <KxQts/winapi/filesystem.h>
#include <KxQts/winapi/widestream.h>

#include <cerrno>
#include <clocale>

using KxTest::contentsOf;

namespace {

using WideStream = KxTest::InOwnFolder;

} // namespace

TEST_F(WideStream, NoPathIsOpened) {
    makeFile("file");
    for (const wchar_t* mode : {L"r", L"w", L"a+", L""}) {
        errno = 77;
        EXPECT_EQ(_wfopen(L"file", mode), nullptr);
        EXPECT_EQ(errno, 22);
    }
    EXPECT_EQ(contentsOf("file"), "contents");
    EXPECT_EQ(_wfopen(L"new", L"w"), nullptr);
    EXPECT_FALSE(isThere("new"));
}

TEST_F(WideStream, NorAnEmptyOne) {
    for (const wchar_t* mode : {L"r", L"w", L""}) {
        errno = 77;
        EXPECT_EQ(_wfopen(L"", mode), nullptr);
        EXPECT_EQ(errno, 22);
    }
}

TEST_F(WideStream, NullArgumentsAreRefused) {
    errno = 77;
    EXPECT_EQ(_wfopen(nullptr, L"r"), nullptr);
    EXPECT_EQ(errno, 22);
    errno = 77;
    EXPECT_EQ(_wfopen(L"file", nullptr), nullptr);
    EXPECT_EQ(errno, 22);
    errno = 77;
    EXPECT_EQ(_wfopen(nullptr, nullptr), nullptr);
    EXPECT_EQ(errno, 22);
}

TEST_F(WideStream, TextThatCannotBeConvertedAndLongTextAreRefusedAlike) {
    std::setlocale(LC_ALL, "C");
    errno = 77;
    EXPECT_EQ(_wfopen(L"\U0001F600", L"r"), nullptr);
    EXPECT_EQ(errno, 22);
    const std::wstring longText(100'000, L'x');
    errno = 77;
    EXPECT_EQ(_wfopen(longText.c_str(), longText.c_str()), nullptr);
    EXPECT_EQ(errno, 22);
}
