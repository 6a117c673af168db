#include "common/unprivileged.h"
#include "files/folder.h"

#include <KxQts/files/attributes.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Attributes = KxTest::InOwnFolder;

constexpr DWORD invalid = 0xFFFFFFFFu;
constexpr DWORD normal = 0x80u;

unsigned long long valueOf(const FILETIME& time) {
    return (static_cast<unsigned long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

/// Sets the times of reading and writing, in seconds since 1970.
void setTimes(const std::string& path, std::int64_t read, std::int64_t written) {
    const timespec times[] = {{static_cast<time_t>(read), 0}, {static_cast<time_t>(written), 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

WIN32_FILE_ATTRIBUTE_DATA dataOf(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data));
    return data;
}

} // namespace

TEST_F(Attributes, AUsersWritableFileIsNormal) {
    EXPECT_EQ(GetFileAttributesA(makeFile("file").c_str()), normal);
    EXPECT_EQ(GetFileAttributesW(L"file"), normal);
    EXPECT_EQ(getFileAttributes(QStringLiteral("file")), normal);
}

TEST_F(Attributes, AUsersWritableFolderIsNoDifferent) {
    makeFolder("inner");
    EXPECT_EQ(GetFileAttributesA("inner"), normal);
}

TEST_F(Attributes, WhatIsMissingIsInvalid) {
    EXPECT_EQ(GetFileAttributesA("missing"), invalid);
    EXPECT_EQ(GetFileAttributesA(""), invalid);
    EXPECT_EQ(GetFileAttributesA(nullptr), invalid);
    EXPECT_EQ(GetFileAttributesW(nullptr), invalid);
    fs::create_symlink("missing", "link");
    EXPECT_EQ(GetFileAttributesA("link"), invalid);
}

TEST_F(Attributes, AHiddenFileIsInvalid) {
    makeFile(".hidden");
    EXPECT_EQ(GetFileAttributesA(".hidden"), invalid);
}

TEST_F(Attributes, WhatBelongsToRootIsInvalid) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make a writable file of root's";
    makeFile("file");
    EXPECT_EQ(GetFileAttributesA("file"), normal);
    ASSERT_EQ(chown("file", 0, 0), 0);
    EXPECT_EQ(GetFileAttributesA("file"), invalid);
}

TEST_F(Attributes, WhatMayNotBeWrittenOrReadIsInvalid) {
    makeFile("file");
    makeFolder("inner");
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_EQ(GetFileAttributesA("file"), normal);
        chmod("file", 0444);
        EXPECT_EQ(GetFileAttributesA("file"), invalid);
        chmod("file", 0222);
        EXPECT_EQ(GetFileAttributesA("file"), invalid);
        chmod("inner", 0555);
        EXPECT_EQ(GetFileAttributesA("inner"), invalid);
        chmod("inner", 0755);
    }));
}

TEST_F(Attributes, AskingLeavesErrnoAlone) {
    makeFile("file");
    for (const char* path : {"file", "missing"}) {
        errno = 77;
        static_cast<void>(GetFileAttributesA(path));
        EXPECT_EQ(errno, 77) << path;
    }
}

TEST_F(Attributes, NamesBeyondLatin1ReachTheFileInWideForm) {
    makeFile("\u0416\u4e2d\U0001F600");
    EXPECT_EQ(GetFileAttributesW(L"\u0416\u4e2d\U0001F600"), normal);
}

TEST_F(Attributes, EightBitNamesAreLatin1) {
    makeFile("caf\u00e9");
    EXPECT_EQ(GetFileAttributesA("caf\xe9"), normal);
}

TEST_F(Attributes, TheRecordIsFilledCompletely) {
    const std::string path = makeFile("file", "12345");
    constexpr std::int64_t read = 1'000'000'000;
    constexpr std::int64_t written = 1'100'000'007;
    setTimes(path, read, written);
    const auto before = static_cast<unsigned long long>(time(nullptr));
    WIN32_FILE_ATTRIBUTE_DATA data;
    std::memset(&data, 0xAB, sizeof data);
    errno = 77;
    EXPECT_EQ(GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data), TRUE);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(data.dwFileAttributes, normal);
    EXPECT_EQ(valueOf(data.ftLastAccessTime), read * 10'000'000ull);
    EXPECT_EQ(valueOf(data.ftLastWriteTime), written * 10'000'000ull);
    const unsigned long long created = valueOf(data.ftCreationTime);
    EXPECT_EQ(created % 10'000'000, 0u) << "whole seconds";
    EXPECT_LE(created / 10'000'000, before);
    EXPECT_GE(created / 10'000'000 + 60, before);
    EXPECT_EQ(data.nFileSizeHigh, 0u);
    EXPECT_EQ(data.nFileSizeLow, 5u);
}

TEST_F(Attributes, TheCreationTimeStaysWhenTheFileChanges) {
    const std::string path = makeFile("file");
    struct statx facts {};
    ASSERT_EQ(statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME | STATX_CTIME, &facts), 0);
    const bool keepsBirth = (facts.stx_mask & STATX_BTIME) != 0;
    const auto expected = keepsBirth ? facts.stx_btime.tv_sec : facts.stx_ctime.tv_sec;
    EXPECT_EQ(valueOf(dataOf(path).ftCreationTime),
              static_cast<unsigned long long>(expected) * 10'000'000);
}

TEST_F(Attributes, WithoutABirthTimeTheLastChangeOfStatusStandsForIt) {
    const std::string inner = makeFolder("ramfs");
    if (mount("none", inner.c_str(), "ramfs", 0, nullptr) != 0)
        GTEST_SKIP() << "no file system without birth times can be mounted";
    const std::string path = makeFile("ramfs/file");
    struct statx facts {};
    EXPECT_EQ(statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME | STATX_CTIME, &facts), 0);
    EXPECT_EQ(facts.stx_mask & STATX_BTIME, 0u) << "no longer a file system without birth times";
    EXPECT_EQ(valueOf(dataOf(path).ftCreationTime),
              static_cast<unsigned long long>(facts.stx_ctime.tv_sec) * 10'000'000);
    umount2(inner.c_str(), MNT_DETACH);
}

TEST_F(Attributes, SizesAbove4GiBNeedBothWords) {
    const std::string path = makeFile("file", "");
    ASSERT_EQ(truncate(path.c_str(), 0x3'8000'0001), 0);
    EXPECT_EQ(dataOf(path).nFileSizeHigh, 3u);
    EXPECT_EQ(dataOf(path).nFileSizeLow, 0x80000001u);
}

TEST_F(Attributes, TimesThat32BitsOfSecondsCannotTellAreAllOnes) {
    if (sizeof(time_t) < sizeof(std::int64_t))
        GTEST_SKIP() << "such times cannot be set with this width of time_t";
    const std::string path = makeFile("file");
    constexpr unsigned long long outOfRange = 0xFFFFFFFFull * 10'000'000;
    setTimes(path, -1, 0x1'0000'0000);
    EXPECT_EQ(valueOf(dataOf(path).ftLastAccessTime), outOfRange);
    EXPECT_EQ(valueOf(dataOf(path).ftLastWriteTime), outOfRange);
    setTimes(path, 0, 0xFFFFFFFE);
    EXPECT_EQ(valueOf(dataOf(path).ftLastAccessTime), 0u);
    EXPECT_EQ(valueOf(dataOf(path).ftLastWriteTime), 0xFFFFFFFEull * 10'000'000);
}

TEST_F(Attributes, TheInformationLevelIsIgnored) {
    makeFile("file");
    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(GetFileAttributesExW(L"file", GetFileExMaxInfoLevel, &data));
    EXPECT_EQ(data.dwFileAttributes, normal);
    EXPECT_TRUE(GetFileAttributesExA("file", static_cast<GET_FILEEX_INFO_LEVELS>(1), &data));
}

TEST_F(Attributes, WithoutARecordTheErrorIs87) {
    makeFile("file");
    for (const char* path : {"file", "missing"}) {
        errno = 77;
        EXPECT_FALSE(GetFileAttributesExA(path, GetFileExInfoStandard, nullptr));
        EXPECT_EQ(errno, 87) << path;
    }
}

TEST_F(Attributes, NothingIsToldOfAnInvalidFileAndErrnoStays) {
    makeFile(".hidden");
    for (const char* path : {"missing", ".hidden"}) {
        WIN32_FILE_ATTRIBUTE_DATA data;
        WIN32_FILE_ATTRIBUTE_DATA untouched;
        std::memset(&data, 0xAB, sizeof data);
        std::memset(&untouched, 0xAB, sizeof untouched);
        errno = 77;
        EXPECT_FALSE(GetFileAttributesExA(path, GetFileExInfoStandard, &data));
        EXPECT_EQ(errno, 77) << path;
        EXPECT_EQ(std::memcmp(&data, &untouched, sizeof data), 0) << path;
    }
}

TEST_F(Attributes, TheOtherFormOfTheQuestionIsNotSupported) {
    makeFile("file");
    WIN32_FILE_ATTRIBUTE_DATA data{};
    errno = 77;
    EXPECT_FALSE(getFileAttributesEx(QStringLiteral("file"), GetFileExInfoStandard, &data));
    EXPECT_EQ(errno, 77);
    EXPECT_EQ(data.dwFileAttributes, 0u);
}

TEST(FileTimes, AreUnitsOf100NanosecondsSince1970) {
    EXPECT_EQ(unixTimeToWinTime(0), 0);
    EXPECT_EQ(unixTimeToWinTime(1), 10'000'000);
    EXPECT_EQ(unixTimeToWinTime(0xFFFFFFFFu), 42'949'672'950'000'000);
}

TEST_F(Attributes, NormalGivesOwnerAndGroupTheirRights) {
    const std::string path = makeFile("file");
    chmod(path.c_str(), 0777);
    errno = 77;
    EXPECT_EQ(SetFileAttributesA(path.c_str(), 0x80), TRUE);
    EXPECT_EQ(errno, 2) << "also after a success";
    EXPECT_EQ(modeOf(path), 0640u);
}

TEST_F(Attributes, EveryValueWithoutNormalMakesReadOnly) {
    const std::string path = makeFile("file");
    for (DWORD value : {0u, 1u, 2u, 0x10u, 0x20u, 0xFFFFFF7Fu}) {
        chmod(path.c_str(), 0777);
        errno = 77;
        EXPECT_TRUE(SetFileAttributesA(path.c_str(), value)) << value;
        EXPECT_EQ(errno, 2) << value;
        EXPECT_EQ(modeOf(path), 0440u) << value;
    }
    EXPECT_TRUE(SetFileAttributesW(L"file", 0x80));
    EXPECT_EQ(modeOf(path), 0640u);
}

TEST_F(Attributes, NormalTogetherWithAnythingElseIsRefused) {
    const std::string path = makeFile("file");
    for (DWORD value : {0x81u, 0xA0u, 0xFFFFFFFFu}) {
        errno = 77;
        EXPECT_FALSE(SetFileAttributesA(path.c_str(), value)) << value;
        EXPECT_EQ(errno, 87) << value;
    }
    EXPECT_EQ(modeOf(path), 0644u);
    errno = 77;
    EXPECT_FALSE(SetFileAttributesA("missing", 0x81));
    EXPECT_EQ(errno, 87) << "asked before the file is looked for";
}

TEST_F(Attributes, AMissingFileCannotBeChanged) {
    for (const char* path : {"missing", "", static_cast<const char*>(nullptr)}) {
        errno = 77;
        EXPECT_FALSE(SetFileAttributesA(path, 0x80));
        EXPECT_EQ(errno, 2);
    }
}

TEST_F(Attributes, AnotherUsersFileCannotBeChanged) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make another user's file";
    const std::string path = makeFile("file");
    ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_FALSE(SetFileAttributesA("file", 0x80));
        EXPECT_EQ(errno, EPERM);
    }));
    EXPECT_EQ(modeOf(path), 0644u);
}
