#include "common/noplaceleft.h"
#include "files/folder.h"
#include "files/search.h"
#include "handles/addresses.h"

#include <KxQts/files/find.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/find.h>
#include <KxQts/winapi/handles.h>

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Find = KxTest::InOwnFolder;

/// How many names match: the first one and all that follow it.
int matches(const char* pattern) {
    HANDLE search = FindFirstFileA(pattern, nullptr);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    int count = 1;
    while (FindNextFile(search, nullptr))
        ++count;
    EXPECT_TRUE(FindClose(search));
    return count;
}

void expectNoMatch(const char* pattern) {
    errno = 77;
    EXPECT_EQ(FindFirstFileA(pattern, nullptr), INVALID_HANDLE_VALUE) << (pattern ? pattern : "");
    EXPECT_EQ(errno, 2);
}

} // namespace

TEST_F(Find, WalksTheMatchesAndWritesNoData) {
    makeFile("a.txt");
    makeFile("b.txt");
    makeFile("c.log");
    alignas(WIN32_FIND_DATA) std::array<unsigned char, sizeof(WIN32_FIND_DATA)> record{};
    record.fill(0xAB);
    auto& data = reinterpret_cast<WIN32_FIND_DATA&>(record);
    errno = 77;
    HANDLE search = FindFirstFileA("*.txt", &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindNextFile(search, &data), TRUE);
    EXPECT_EQ(errno, 77) << "successes leave it alone";
    EXPECT_EQ(FindNextFile(search, &data), FALSE);
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(FindClose(search), TRUE) << "also behind the end";
    EXPECT_TRUE(std::all_of(record.begin(), record.end(), [](auto byte) { return byte == 0xAB; }));
}

TEST_F(Find, TakesPatternsOfEveryForm) {
    makeFile("caf\u00e9.txt");
    makeFile("\u4e2d.txt");
    EXPECT_EQ(matches("caf\xe9.*"), 1);
    WIN32_FIND_DATA data;
    HANDLE search = FindFirstFileW(L"\u4e2d.*", &data);
    EXPECT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(FindClose(search));
    search = findFirstFile(QStringLiteral("*.txt"), &data);
    EXPECT_TRUE(FindNextFile(search, &data));
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, FollowsTheRulesOfWildcards) {
    for (const char* name : {"a1", "b1", "c1", "a12"})
        makeFile(name);
    EXPECT_EQ(matches("?1"), 3);
    EXPECT_EQ(matches("a?*"), 2);
    EXPECT_EQ(matches("[ab]1"), 2);
    EXPECT_EQ(matches("[b-c]1"), 2);
    EXPECT_EQ(matches("[!a]1"), 2);
    EXPECT_EQ(matches("a1"), 1) << "no wildcard at all";
    expectNoMatch("a");
    expectNoMatch("a1;b1");
}

TEST_F(Find, MakesNoDifferenceBetweenUpperAndLowerCase) {
    makeFile("A.TXT");
    EXPECT_EQ(matches("a.txt"), 1);
    EXPECT_EQ(matches("[A]*.Txt"), 1);
}

TEST_F(Find, AStarListsFoldersAndTheFoldersOwnEntries) {
    makeFile("a");
    makeFolder("inner");
    EXPECT_EQ(matches("*"), 4) << "a, inner, . and ..";
    EXPECT_EQ(matches(".*"), 2);
    EXPECT_EQ(matches("*.*"), 2) << "a dot is no matter of course";
}

TEST_F(Find, ListsNothingHiddenSpecialOrLost) {
    makeFile(".hidden");
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    fs::create_symlink("missing", "lost");
    fs::create_symlink(".", "link");
    EXPECT_EQ(matches("*"), 3) << "link, . and ..";
    expectNoMatch(".hidden");
    expectNoMatch("fifo");
    expectNoMatch("lost");
}

TEST_F(Find, APatternWithAFolderMatchesNothing) {
    makeFile("a.txt");
    makeFolder("inner");
    makeFile("inner/b.txt");
    for (const char* pattern : {"./*", "./a.txt", "inner/*", "inner/b.txt", "/tmp/*", "missing/*"})
        expectNoMatch(pattern);
    expectNoMatch((folder / "a.txt").c_str());
}

TEST_F(Find, PatternsThatCannotMatchMatchNothing) {
    makeFile("a");
    for (const char* pattern : {"", "[", "[a", "b*", static_cast<const char*>(nullptr)}) {
        testing::internal::CaptureStderr();
        expectNoMatch(pattern);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
    EXPECT_EQ(FindFirstFileW(nullptr, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(errno, 2);
    expectNoMatch(std::string(100'000, 'x').c_str());
}

TEST_F(Find, AFolderThatIsGoneHasNoMatch) {
    const std::string inner = makeFolder("inner");
    fs::current_path(inner);
    fs::remove(inner);
    expectNoMatch("*");
    fs::current_path(folder);
}

TEST_F(Find, ANameThatIsGoneFailsOnceAndTheWalkGoesOnBehindIt) {
    for (const char* name : {"a", "b", "c"})
        makeFile(name);
    HANDLE search = FindFirstFileA("?", nullptr); // ., a, b, c
    fs::remove("b");
    EXPECT_TRUE(FindNextFile(search, nullptr));
    EXPECT_FALSE(FindNextFile(search, nullptr));
    EXPECT_EQ(errno, 2);
    EXPECT_TRUE(FindNextFile(search, nullptr));
    EXPECT_FALSE(FindNextFile(search, nullptr));
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, TheFirstNameIsNotLookedForAgain) {
    makeFile("a.txt");
    makeFile("b.txt");
    HANDLE search = FindFirstFileA("*.txt", nullptr);
    fs::remove("a.txt");
    EXPECT_TRUE(FindNextFile(search, nullptr));
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, NamesAreLookedForInTheFolderThatIsCurrentNow) {
    makeFile("a.txt");
    makeFile("b.txt");
    makeFile("c.txt");
    makeFolder("inner");
    makeFile("inner/c.txt");
    HANDLE search = FindFirstFileA("*.txt", nullptr);
    fs::current_path("inner");
    EXPECT_FALSE(FindNextFile(search, nullptr)) << "b.txt";
    EXPECT_TRUE(FindNextFile(search, nullptr)) << "c.txt";
    fs::current_path(folder);
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, NamesAreInTheOrderOfAFoldersListing) {
    const std::vector<const char*> names{"b",  "A",       "c1", "C2", "a2",      "_x",
                                         "Zz", "\u00c4x", "zy", "10", "\u00e4a", "9"};
    for (const char* name : names)
        makeFile(name);
    HANDLE search = FindFirstFileA("*", nullptr);
    ASSERT_NE(Korvex::searchBehind(search), nullptr);
    EXPECT_EQ(Korvex::searchBehind(search)->names,
              QDir(QStringLiteral(".")).entryList({QStringLiteral("*")}));
    EXPECT_EQ(Korvex::searchBehind(search)->names.size(), static_cast<qsizetype>(names.size()) + 2);
    EXPECT_EQ(Korvex::searchBehind(search)->index, 0);
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, TheListIsTakenOnce) {
    makeFile("a.txt");
    HANDLE search = FindFirstFileA("*.txt", nullptr);
    makeFile("b.txt");
    EXPECT_FALSE(FindNextFile(search, nullptr));
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, BehindTheEndItStaysAtTheEnd) {
    makeFile("a.txt");
    HANDLE search = FindFirstFileA("*.txt", nullptr);
    for (int i = 0; i < 1000; ++i)
        EXPECT_FALSE(FindNextFile(search, nullptr));
    EXPECT_EQ(Korvex::searchBehind(search)->index, 1000) << "every step counts";
    Korvex::searchBehind(search)->index = std::numeric_limits<int>::max();
    EXPECT_FALSE(FindNextFile(search, nullptr)) << "and the count does not wrap";
    EXPECT_TRUE(FindClose(search));
}

namespace {

void expectRefused(HANDLE handle) {
    errno = 77;
    EXPECT_EQ(FindNextFile(handle, nullptr), FALSE);
    EXPECT_EQ(errno, 2);
    errno = 77;
    EXPECT_EQ(FindClose(handle), FALSE);
    EXPECT_EQ(errno, 6);
}

} // namespace

TEST_F(Find, NullAndInvalidHandlesAreRefused) {
    expectRefused(nullptr);
    expectRefused(INVALID_HANDLE_VALUE);
}

TEST_F(Find, AClosedSearchIsRefused) {
    makeFile("a.txt");
    HANDLE search = FindFirstFileA("*.txt", nullptr);
    EXPECT_TRUE(FindClose(search));
    expectRefused(search);
}

TEST_F(Find, WhatIsNoSearchIsRefused) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE file =
        CreateFileA(makeFile("a").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    int own = 0;
    expectRefused(event);
    expectRefused(file);
    expectRefused(&own);
    expectRefused(reinterpret_cast<HANDLE>(uintptr_t{0x80000002}));
    expectRefused(reinterpret_cast<HANDLE>(uintptr_t{8}));
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(Find, OnlyItsOwnCallClosesASearch) {
    makeFile("a.txt");
    makeFile("b.txt");
    HANDLE search = FindFirstFileA("*.txt", nullptr);
    EXPECT_FALSE(Korvex::HandleAddresses::mayBeObject(search)) << "nothing is read through it";
    errno = 77;
    EXPECT_FALSE(CloseHandle(search));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(WaitForSingleObject(search, 0), WAIT_FAILED);
    EXPECT_TRUE(FindNextFile(search, nullptr));
    EXPECT_TRUE(FindClose(search));
}

TEST_F(Find, SearchesOfDifferentThreadsDoNotDisturbEachOther) {
    for (int i = 0; i < 20; ++i)
        makeFile(std::to_string(i) + ".txt");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ(matches("*.txt"), 20);
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(Find, WithoutMemoryTheErrorIs12) {
    makeFile("a.txt");
    const KxTest::NoPlaceLeft exhausted;
    errno = 77;
    EXPECT_EQ(FindFirstFileA("*.txt", nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(errno, 12);
}

TEST_F(Find, ManySearchesMayBeOpen) {
    makeFile("a.txt");
    std::vector<HANDLE> searches;
    for (int i = 0; i < 2000; ++i)
        searches.push_back(FindFirstFileA("*.txt", nullptr));
    for (HANDLE search : searches)
        EXPECT_TRUE(FindClose(search));
}
