#include "common/unprivileged.h"
#include "files/folder.h"

#include <KxQts/files/copymove.h>
#include <KxQts/winapi/filesystem.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>

namespace fs = std::filesystem;

using KxTest::contentsOf;

namespace {

class Copy : public KxTest::InOwnFolder {
protected:
    /// How many entries the test's folder has: nothing may be left beside the files.
    [[nodiscard]] long entries() const {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }
};

using Delete = KxTest::InOwnFolder;

} // namespace

TEST_F(Copy, TakesContentsAndPermissions) {
    makeFile("a", "text");
    chmod("a", 0750);
    errno = 77;
    EXPECT_EQ(CopyFileA("a", "b", TRUE), TRUE);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(contentsOf("b"), "text");
    EXPECT_EQ(contentsOf("a"), "text");
    EXPECT_EQ(modeOf("b"), 0750u);
    EXPECT_TRUE(CopyFileW(L"a", L"c", FALSE));
    EXPECT_TRUE(copyFile(QStringLiteral("a"), QStringLiteral("d"), false));
    EXPECT_EQ(entries(), 4);
}

TEST_F(Copy, TakesAnEmptyFileAndALargeOne) {
    makeFile("empty", "");
    std::string large;
    for (int i = 0; i < 1'000'000; ++i)
        large += static_cast<char>(i * 7 + i / 256);
    makeFile("large", large);
    EXPECT_TRUE(CopyFileA("empty", "empty2", TRUE));
    EXPECT_TRUE(CopyFileA("large", "large2", TRUE));
    EXPECT_EQ(contentsOf("empty2"), "");
    EXPECT_TRUE(contentsOf("large2") == large);
}

TEST_F(Copy, OfAMissingFileFails) {
    makeFile("b", "kept");
    for (const char* source : {"missing", "", static_cast<const char*>(nullptr)}) {
        errno = 77;
        EXPECT_FALSE(CopyFileA(source, "b", FALSE));
        EXPECT_EQ(errno, 2);
    }
    errno = 77;
    EXPECT_FALSE(CopyFileW(nullptr, L"b", TRUE));
    EXPECT_EQ(errno, 2) << "asked before the target is looked for";
    EXPECT_EQ(contentsOf("b"), "kept");
}

TEST_F(Copy, ReplacesAnExistingFileOnlyWhenAllowed) {
    makeFile("a", "new");
    makeFile("b", "old and longer");
    errno = 77;
    EXPECT_FALSE(CopyFileA("a", "b", TRUE));
    EXPECT_EQ(errno, 80);
    EXPECT_FALSE(CopyFileA("a", "b", 7)) << "every value but 0 refuses";
    EXPECT_EQ(contentsOf("b"), "old and longer");
    errno = 77;
    EXPECT_TRUE(CopyFileA("a", "b", FALSE));
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(contentsOf("b"), "new");
    EXPECT_EQ(entries(), 2);
}

TEST_F(Copy, ReplacesAReadOnlyFile) {
    makeFile("a", "new");
    makeFile("b", "old");
    chmod("a", 0644);
    chmod("b", 0444);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] { EXPECT_TRUE(CopyFileA("a", "b", FALSE)); }));
    EXPECT_EQ(contentsOf("b"), "new");
    EXPECT_EQ(modeOf("b"), 0644u);
}

TEST_F(Copy, OntoItselfFailsAndLeavesTheFile) {
    const std::string path = makeFile("a", "kept");
    fs::create_symlink(".", "here");
    for (const std::string& same :
         {std::string("a"), path, std::string("./a"), std::string("here/a")}) {
        errno = 77;
        EXPECT_FALSE(CopyFileA("a", same.c_str(), FALSE)) << same;
        EXPECT_EQ(errno, 1287) << same;
        errno = 77;
        EXPECT_FALSE(CopyFileA("a", same.c_str(), TRUE)) << same;
        EXPECT_EQ(errno, 80) << same;
        EXPECT_EQ(contentsOf("a"), "kept") << same;
    }
}

TEST_F(Copy, OfALinkOntoWhatItLeadsToFailsAndLeavesTheFile) {
    makeFile("a", "kept");
    fs::create_symlink("a", "link");
    EXPECT_FALSE(CopyFileA("link", "a", FALSE));
    EXPECT_EQ(errno, 1287);
    EXPECT_EQ(contentsOf("a"), "kept");
}

TEST_F(Copy, OfALinkOntoItselfOrALinkOnItsWayFailsAndLeavesAll) {
    makeFile("a", "kept");
    fs::create_symlink("a", "link");
    fs::create_symlink("link", "outer");
    for (const char* source : {"link", "outer"}) {
        errno = 77;
        EXPECT_FALSE(CopyFileA(source, "./link", FALSE)) << source;
        EXPECT_EQ(errno, 1287) << source;
        EXPECT_TRUE(fs::is_symlink("link")) << source;
    }
    EXPECT_TRUE(CopyFileA("link", "outer", FALSE)) << "the source does not need this one";
    EXPECT_FALSE(fs::is_symlink("outer"));
    EXPECT_EQ(contentsOf("outer"), "kept");
    EXPECT_EQ(entries(), 3);
}

TEST_F(Copy, OntoALinkReplacesTheLink) {
    makeFile("a", "text");
    fs::create_symlink("a", "link");
    EXPECT_TRUE(CopyFileA("a", "link", FALSE));
    EXPECT_FALSE(fs::is_symlink("link"));
    EXPECT_EQ(contentsOf("link"), "text");
    EXPECT_EQ(contentsOf("a"), "text");
}

TEST_F(Copy, OntoASecondNameOfTheFileMakesTwoFiles) {
    makeFile("a", "text");
    fs::create_hard_link("a", "b");
    EXPECT_TRUE(CopyFileA("a", "b", FALSE));
    EXPECT_EQ(fs::hard_link_count("a"), 1u);
    EXPECT_EQ(contentsOf("b"), "text");
}

TEST_F(Copy, FollowsALinkToItsFile) {
    makeFile("a", "text");
    fs::create_symlink("a", "link");
    EXPECT_TRUE(CopyFileA("link", "b", TRUE));
    EXPECT_FALSE(fs::is_symlink("b"));
    EXPECT_EQ(contentsOf("b"), "text");
}

TEST_F(Copy, OfAFolderFails) {
    makeFolder("inner");
    makeFile("a", "kept");
    errno = 77;
    EXPECT_FALSE(CopyFileA("inner", "b", FALSE));
    EXPECT_EQ(errno, 1287);
    EXPECT_FALSE(isThere("b"));
    errno = 77;
    EXPECT_FALSE(CopyFileA("inner", "a", FALSE));
    EXPECT_EQ(errno, 1287);
    EXPECT_EQ(contentsOf("a"), "kept");
}

TEST_F(Copy, OntoAFolderFails) {
    makeFolder("inner");
    makeFile("a");
    errno = 77;
    EXPECT_FALSE(CopyFileA("a", "inner", FALSE));
    EXPECT_EQ(errno, 1287);
    errno = 77;
    EXPECT_FALSE(CopyFileA("a", "inner", TRUE));
    EXPECT_EQ(errno, 80);
    EXPECT_TRUE(fs::is_directory("inner"));
    EXPECT_EQ(entries(), 2);
}

TEST_F(Copy, OntoAnEmptyNameOrIntoAMissingFolderFails) {
    makeFile("a");
    for (const char* target : {"missing/b", "", static_cast<const char*>(nullptr)}) {
        errno = 77;
        EXPECT_FALSE(CopyFileA("a", target, FALSE));
        EXPECT_EQ(errno, 1287);
    }
    EXPECT_EQ(entries(), 1);
}

TEST_F(Copy, OfAnUnreadableFileLeavesTheTarget) {
    makeFile("a", "secret");
    makeFile("b", "kept");
    chmod("a", 0);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_FALSE(CopyFileA("a", "b", FALSE));
        EXPECT_EQ(errno, 1287);
    }));
    EXPECT_EQ(contentsOf("b"), "kept");
    EXPECT_EQ(entries(), 2);
}

TEST_F(Copy, IntoAFolderThatMayNotBeWrittenLeavesTheTarget) {
    makeFile("a", "new");
    makeFolder("inner");
    makeFile("inner/b", "kept");
    chmod("inner", 0555);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_FALSE(CopyFileA("a", "inner/b", FALSE));
        EXPECT_EQ(errno, 1287);
        EXPECT_FALSE(CopyFileA("a", "inner/c", FALSE));
        EXPECT_EQ(errno, 1287);
    }));
    chmod("inner", 0755);
    EXPECT_EQ(contentsOf("inner/b"), "kept");
    EXPECT_EQ(entries(), 2);
}

TEST_F(Copy, ThatFindsNoRoomLeavesTheTargetAndNothingElse) {
    makeFile("small", std::string(9'000, 's'));
    makeFile("large", std::string(400'000, 'l'));
    const std::string inner = makeFolder("inner");
    const KxTest::SmallFileSystem disk(inner, 64);
    if (!disk.isMounted())
        GTEST_SKIP() << "no small file system can be mounted";
    makeFile("inner/b", "kept");
    makeFile("inner/filler", "");
    EXPECT_FALSE(CopyFileA("large", "inner/b", FALSE));
    EXPECT_EQ(errno, 1287);
    EXPECT_EQ(contentsOf("inner/b"), "kept");
    fs::resize_file("inner/filler", 0);
    makeFile("inner/filler", std::string(50'000, 'f'));
    EXPECT_FALSE(CopyFileA("small", "inner/b", FALSE)) << "less than a buffer's worth";
    EXPECT_EQ(contentsOf("inner/b"), "kept");
    EXPECT_FALSE(CopyFileA("small", "inner/c", FALSE));
    EXPECT_EQ(errno, 1287);
    EXPECT_EQ(std::distance(fs::directory_iterator(inner), fs::directory_iterator()), 2);
}

TEST_F(Copy, GoesToAnotherFileSystem) {
    makeFile("a", "text");
    const std::string inner = makeFolder("inner");
    const KxTest::SmallFileSystem disk(inner, 64);
    if (!disk.isMounted())
        GTEST_SKIP() << "no second file system can be mounted";
    EXPECT_TRUE(CopyFileA("a", "inner/a", TRUE));
    EXPECT_TRUE(CopyFileA("a", "inner/a", FALSE));
    EXPECT_EQ(contentsOf("inner/a"), "text");
}

TEST_F(Copy, TakesNamesOfEitherForm) {
    makeFile("caf\u00e9", "text");
    EXPECT_TRUE(CopyFileA("caf\xe9", "\xe4", TRUE));
    EXPECT_EQ(contentsOf("\u00e4"), "text");
    EXPECT_TRUE(CopyFileW(L"caf\u00e9", L"\u4e2d\U0001F600", TRUE));
    EXPECT_EQ(contentsOf("\u4e2d\U0001F600"), "text");
}

TEST_F(Delete, RemovesAFile) {
    makeFile("a");
    makeFile("b");
    makeFile("c");
    errno = 77;
    EXPECT_EQ(DeleteFileA("a"), TRUE);
    EXPECT_EQ(errno, 0);
    EXPECT_TRUE(DeleteFileW(L"b"));
    EXPECT_TRUE(deleteFile(QStringLiteral("c")));
    for (const char* name : {"a", "b", "c"})
        EXPECT_FALSE(isThere(name)) << name;
}

TEST_F(Delete, OfAMissingFileFails) {
    for (const char* path : {"missing", "", static_cast<const char*>(nullptr)}) {
        errno = 77;
        EXPECT_FALSE(DeleteFileA(path));
        EXPECT_EQ(errno, 2);
    }
    errno = 77;
    EXPECT_FALSE(DeleteFileW(L"missing"));
    EXPECT_EQ(errno, 2);
}

TEST_F(Delete, OfAFolderFails) {
    makeFolder("inner");
    errno = 77;
    EXPECT_FALSE(DeleteFileA("inner"));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_TRUE(isThere("inner"));
}

TEST_F(Delete, RemovesTheLinkAndNotWhatItLeadsTo) {
    makeFile("a");
    fs::create_symlink("a", "link");
    EXPECT_TRUE(DeleteFileA("link"));
    EXPECT_FALSE(isThere("link"));
    EXPECT_TRUE(isThere("a"));
}

TEST_F(Delete, ALinkThatLeadsNowhereDoesNotExist) {
    fs::create_symlink("missing", "link");
    EXPECT_FALSE(DeleteFileA("link"));
    EXPECT_EQ(errno, 2);
    EXPECT_TRUE(isThere("link"));
}

TEST_F(Delete, WhatTheSystemRefusesLeavesItsError) {
    makeFolder("inner");
    makeFile("inner/a");
    chmod("inner", 0555);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_FALSE(DeleteFileA("inner/a"));
        EXPECT_EQ(errno, EACCES);
    }));
    chmod("inner", 0755);
}

TEST_F(Delete, TheWideStreamCallsFormAnswersWith0And1) {
    makeFile("a");
    errno = 77;
    EXPECT_EQ(_wremove(L"a"), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_FALSE(isThere("a"));
    errno = 77;
    EXPECT_EQ(_wremove(L"a"), 1);
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(_wremove(nullptr), 1);
}
