#include <KxQts/files/knowndirectories.h>
#include <KxQts/winapi/knowndirectories.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <functional>
#include <string>

namespace {

/// One directory in all the forms that it is asked for in.
struct Directory {
    std::string path;
    std::function<bool(QString&)> typed;
    std::function<DWORD(char*, DWORD)> narrow;
    std::function<DWORD(wchar_t*, DWORD)> wide;
};

class FixedDirectory : public testing::TestWithParam<Directory> {};

const std::array directories{
    Directory{"/usr/local/lib/Korvex", getSystemDirectory, GetSystemDirectoryA,
              GetSystemDirectoryW},
    Directory{"/Library/Preferences", getWindowsDirectory, GetWindowsDirectoryA,
              GetWindowsDirectoryW},
    Directory{"/tmp", getTempPath,
              [](char* buffer, DWORD size) { return GetTempPathA(size, buffer); },
              [](wchar_t* buffer, DWORD size) { return GetTempPathW(size, buffer); }},
};

/// What a call gives for a buffer of a size: the result and all that is in the buffer afterwards.
template <class Character>
void expectRule(const std::string& path, const std::function<DWORD(Character*, DWORD)>& call) {
    using Text = std::basic_string<Character>;
    const auto length = static_cast<DWORD>(path.size());
    for (DWORD size : {DWORD(0), DWORD(1), length}) {
        Text buffer(length + 2, '#');
        EXPECT_EQ(call(buffer.data(), size), length + 1) << size;
        EXPECT_EQ(buffer, Text(length + 2, '#')) << "nothing is written";
    }
    for (DWORD size : {length + 1, length + 2}) {
        Text buffer(length + 2, '#');
        EXPECT_EQ(call(buffer.data(), size), length) << size;
        EXPECT_EQ(buffer.substr(0, length), Text(path.begin(), path.end()));
        EXPECT_EQ(buffer[length], Character(0));
        EXPECT_EQ(buffer[length + 1], Character('#'));
    }
    EXPECT_EQ(call(nullptr, length + 1), 0u);
}

} // namespace

TEST_P(FixedDirectory, IsGivenWhenItFitsAndSaysWhatItNeedsElse) {
    errno = 99;
    expectRule<char>(GetParam().path, GetParam().narrow);
    expectRule<wchar_t>(GetParam().path, GetParam().wide);
    EXPECT_EQ(errno, 99);
}

TEST_P(FixedDirectory, IsAssignedToAString) {
    QString path = "before";
    EXPECT_TRUE(GetParam().typed(path));
    EXPECT_EQ(path.toStdString(), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(All, FixedDirectory, testing::ValuesIn(directories));

TEST(FixedDirectories, NeedTheRoomThatCallersCountOn) {
    std::array<char, 32> buffer{};
    EXPECT_EQ(GetTempPathA(4, buffer.data()), 5u);
    EXPECT_EQ(GetTempPathA(5, buffer.data()), 4u);
    EXPECT_STREQ(buffer.data(), "/tmp");
    EXPECT_EQ(GetWindowsDirectoryA(buffer.data(), 20), 21u);
    EXPECT_EQ(GetSystemDirectoryA(buffer.data(), 21), 22u);
}
