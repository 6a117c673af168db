#include "common/unprivileged.h"
#include "files/folder.h"

#include <KxQts/files/directories.h>
#include <KxQts/winapi/filesystem.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Directories = KxTest::InOwnFolder;
using Existence = KxTest::InOwnFolder;

struct Answer {
    int status = -1;
    bool exists = false;
    bool isFolder = false;
};

/// Asks with the outputs set to the given value before.
Answer ask(const QString& path, bool before) {
    Answer answer{-1, before, before};
    answer.status = isFileOrFolderExist(path, answer.exists, &answer.isFolder);
    return answer;
}

void expectStatus(int status, const QString& path) {
    for (bool before : {false, true}) {
        errno = 77;
        const Answer answer = ask(path, before);
        EXPECT_EQ(errno, 77);
        EXPECT_EQ(answer.status, status) << path.toStdString();
        EXPECT_FALSE(answer.exists);
        EXPECT_EQ(answer.isFolder, before) << "left alone";
    }
}

} // namespace

TEST_F(Directories, AreMadeAndRemoved) {
    SECURITY_ATTRIBUTES security{sizeof security, nullptr, TRUE};
    errno = 77;
    EXPECT_EQ(CreateDirectoryA("a", &security), TRUE);
    EXPECT_EQ(CreateDirectoryW(L"a/\u4e2d", nullptr), TRUE);
    EXPECT_TRUE(createDirectory(QStringLiteral("c"), nullptr));
    EXPECT_TRUE(CreateDirectoryA((folder / "d").c_str(), nullptr));
    EXPECT_TRUE(fs::is_directory("a/\u4e2d"));
    EXPECT_TRUE(fs::is_directory("d"));
    EXPECT_EQ(RemoveDirectoryW(L"a/\u4e2d"), TRUE);
    EXPECT_EQ(RemoveDirectoryA("a"), TRUE);
    EXPECT_TRUE(removeDirectory(QStringLiteral("c")));
    EXPECT_EQ(errno, 77) << "successes leave it alone";
    EXPECT_FALSE(isThere("a"));
    EXPECT_FALSE(isThere("c"));
}

TEST_F(Directories, FollowTheMaskOfTheProcess) {
    const mode_t mask = umask(027);
    EXPECT_TRUE(CreateDirectoryA("a", nullptr));
    umask(mask);
    EXPECT_EQ(modeOf("a"), 0750u);
}

TEST_F(Directories, NeedAParent) {
    EXPECT_FALSE(CreateDirectoryA("missing/a", nullptr));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(isThere("missing"));
}

TEST_F(Directories, AreNotMadeTwice) {
    makeFolder("a");
    makeFile("b");
    EXPECT_FALSE(CreateDirectoryA("a", nullptr));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(CreateDirectoryA("b", nullptr));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(fs::is_regular_file("b"));
}

TEST_F(Directories, NeedALastComponent) {
    makeFolder("a");
    for (const char* path : {"", "/", "b/", static_cast<const char*>(nullptr)}) {
        errno = 77;
        EXPECT_FALSE(CreateDirectoryA(path, nullptr));
        EXPECT_EQ(errno, ENOENT);
    }
    EXPECT_FALSE(RemoveDirectoryA("a/"));
    EXPECT_FALSE(RemoveDirectoryW(nullptr));
    EXPECT_TRUE(isThere("a"));
    EXPECT_FALSE(isThere("b"));
}

TEST_F(Directories, AreRemovedOnlyWhenEmptyAndOneAtATime) {
    makeFolder("a");
    makeFolder("a/b");
    EXPECT_FALSE(RemoveDirectoryA("a"));
    EXPECT_EQ(errno, ENOTEMPTY);
    EXPECT_TRUE(RemoveDirectoryA("a/b"));
    EXPECT_TRUE(isThere("a"));
}

TEST_F(Directories, RemovingTakesNeitherFilesNorLinksNorWhatIsMissing) {
    makeFolder("a");
    makeFile("file");
    fs::create_symlink("a", "link");
    EXPECT_FALSE(RemoveDirectoryA("file"));
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_FALSE(RemoveDirectoryA("link"));
    EXPECT_FALSE(RemoveDirectoryA("missing"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(isThere("file"));
    EXPECT_TRUE(isThere("link"));
    EXPECT_TRUE(isThere("a"));
}

TEST_F(Existence, AFileIsNoFolder) {
    makeFile("a");
    errno = 77;
    for (bool before : {false, true}) {
        const Answer answer = ask(QStringLiteral("a"), before);
        EXPECT_EQ(answer.status, 0);
        EXPECT_TRUE(answer.exists);
        EXPECT_FALSE(answer.isFolder);
    }
    EXPECT_EQ(errno, 77);
}

TEST_F(Existence, AFolderIsOne) {
    for (const QString& path : {QString::fromStdString(folder.string()), QStringLiteral("."),
                                QStringLiteral("./"), QStringLiteral("/")}) {
        const Answer answer = ask(path, false);
        EXPECT_EQ(answer.status, 0);
        EXPECT_TRUE(answer.exists);
        EXPECT_TRUE(answer.isFolder) << path.toStdString();
    }
}

TEST_F(Existence, TheSecondAnswerNeedNotBeWanted) {
    bool exists = false;
    EXPECT_EQ(isFileOrFolderExist(QStringLiteral("."), exists, nullptr), 0);
    EXPECT_TRUE(exists);
    EXPECT_EQ(isFileOrFolderExist(QStringLiteral("missing"), exists, nullptr), 0);
    EXPECT_FALSE(exists);
}

TEST_F(Existence, AMissingPathIsAnAnswer) {
    expectStatus(0, QStringLiteral("missing"));
    expectStatus(0, QStringLiteral("missing/deeper"));
    expectStatus(0, QString());
}

TEST_F(Existence, LinksAreFollowed) {
    makeFolder("a");
    fs::create_symlink("a", "link");
    EXPECT_TRUE(ask(QStringLiteral("link"), false).isFolder);
    fs::create_symlink("missing", "nowhere");
    expectStatus(0, QStringLiteral("nowhere"));
}

TEST_F(Existence, ALoopOfLinksIsAFailure) {
    fs::create_symlink("two", "one");
    fs::create_symlink("one", "two");
    expectStatus(100062, QStringLiteral("one"));
}

TEST_F(Existence, AFileOnTheWayIsAFailure) {
    makeFile("file");
    expectStatus(-1407, QStringLiteral("file/deeper"));
}

TEST_F(Existence, ANameThatIsTooLongIsAFailure) {
    expectStatus(-1410, QString(300, QLatin1Char('x')));
}

TEST_F(Existence, AMissingRightIsAFailure) {
    makeFolder("inner");
    makeFile("inner/a");
    chmod("inner", 0600);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] { expectStatus(-5000, QStringLiteral("inner/a")); }));
}

TEST_F(Existence, TheNameIsAskedForInLatin1) {
    makeFile("caf\xe9");
    EXPECT_TRUE(ask(QString::fromLatin1("caf\xe9"), false).exists);
    makeFile("\u00e4");
    EXPECT_FALSE(ask(QString::fromUtf8("\u00e4"), false).exists)
        << "other calls find this one by its UTF-8 name";
    EXPECT_TRUE(CopyFileW(L"\u00e4", L"copy", TRUE));
    makeFile("?");
    EXPECT_TRUE(ask(QString::fromUtf8("\u4e2d"), false).exists) << "narrowed to one character";
}
