#include "common/unprivileged.h"
#include "files/folder.h"

#include <KxQts/files/copymove.h>
#include <KxQts/winapi/filesystem.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <memory>

namespace fs = std::filesystem;

using KxTest::contentsOf;

namespace {

class Move : public KxTest::InOwnFolder {
protected:
    [[nodiscard]] long entries() const {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }
};

} // namespace

TEST_F(Move, RenamesAFile) {
    makeFile("a", "text");
    errno = 77;
    EXPECT_EQ(MoveFileA("a", "b"), TRUE);
    EXPECT_EQ(errno, 2) << "also after a success";
    EXPECT_FALSE(isThere("a"));
    EXPECT_EQ(contentsOf("b"), "text");
    EXPECT_TRUE(MoveFileW(L"b", L"\u4e2d"));
    EXPECT_TRUE(moveFile(QString::fromWCharArray(L"\u4e2d"), QStringLiteral("c")));
    EXPECT_EQ(contentsOf("c"), "text");
    EXPECT_EQ(entries(), 1);
}

TEST_F(Move, TakesTheTargetFromTheCurrentFolder) {
    makeFolder("inner");
    makeFile("inner/a", "text");
    EXPECT_TRUE(MoveFileA("inner/a", "b"));
    EXPECT_EQ(contentsOf("b"), "text") << "not beside the source";
    EXPECT_TRUE(MoveFileA((folder / "b").c_str(), (folder / "inner/c").c_str()));
    EXPECT_EQ(contentsOf("inner/c"), "text");
}

TEST_F(Move, RenamesAFolderWithAllInIt) {
    makeFolder("inner");
    makeFile("inner/a", "text");
    EXPECT_TRUE(MoveFileA("inner", "other"));
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(contentsOf("other/a"), "text");
    EXPECT_FALSE(isThere("inner"));
}

TEST_F(Move, OfAMissingFileFailsAndLeavesTheTarget) {
    makeFile("b", "kept");
    fs::create_symlink("missing", "link");
    for (const char* source : {"missing", "link", "", static_cast<const char*>(nullptr)}) {
        errno = 77;
        EXPECT_FALSE(MoveFileA(source, "b"));
        EXPECT_EQ(errno, 2);
    }
    EXPECT_EQ(contentsOf("b"), "kept");
}

TEST_F(Move, ReplacesAnExistingFile) {
    makeFile("a", "new");
    makeFile("b", "old and longer");
    errno = 77;
    EXPECT_TRUE(MoveFileA("a", "b"));
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(contentsOf("b"), "new");
    EXPECT_FALSE(isThere("a"));
    EXPECT_EQ(entries(), 1);
}

TEST_F(Move, ReplacesALinkWhereverItLeads) {
    makeFolder("inner");
    makeFile("old", "kept");
    for (const char* destination : {"missing", "old", "inner"}) {
        makeFile("a", "new");
        fs::create_symlink(destination, "link");
        EXPECT_TRUE(MoveFileA("a", "link")) << destination;
        EXPECT_FALSE(fs::is_symlink("link")) << destination;
        EXPECT_EQ(contentsOf("link"), "new") << destination;
        EXPECT_FALSE(isThere("missing"));
        fs::remove("link");
    }
    EXPECT_EQ(contentsOf("old"), "kept");
}

TEST_F(Move, NeverReplacesAFolder) {
    makeFile("a", "kept");
    makeFolder("empty");
    makeFolder("inner");
    EXPECT_FALSE(MoveFileA("a", "empty"));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_FALSE(MoveFileA("inner", "empty"));
    EXPECT_EQ(contentsOf("a"), "kept");
    EXPECT_TRUE(fs::is_directory("empty"));
    EXPECT_TRUE(fs::is_directory("inner"));
}

TEST_F(Move, OfAFolderReplacesAFile) {
    makeFolder("inner");
    makeFile("inner/a", "text");
    makeFile("b");
    EXPECT_TRUE(MoveFileA("inner", "b"));
    EXPECT_EQ(contentsOf("b/a"), "text");
    EXPECT_EQ(entries(), 1);
}

TEST_F(Move, OfAFolderReplacesAFileThatIsNamedByWayOfIt) {
    makeFolder("inner");
    makeFile("inner/a", "text");
    makeFile("b");
    EXPECT_TRUE(MoveFileA("inner", "inner/../b"));
    EXPECT_EQ(contentsOf("b/a"), "text");
    EXPECT_EQ(entries(), 1) << "nothing stays beside it";
}

TEST_F(Move, OfALinkMovesTheLink) {
    makeFile("a", "text");
    fs::create_symlink("a", "link");
    EXPECT_TRUE(MoveFileA("link", "other"));
    EXPECT_TRUE(fs::is_symlink("other"));
    EXPECT_EQ(contentsOf("other"), "text");
}

TEST_F(Move, OntoItselfDoesNothing) {
    const std::string path = makeFile("a", "kept");
    makeFolder("inner");
    fs::create_symlink(".", "here");
    for (const std::string& same :
         {std::string("a"), path, std::string("./a"), std::string("here/a")}) {
        errno = 77;
        EXPECT_TRUE(MoveFileA("a", same.c_str())) << same;
        EXPECT_EQ(errno, 2) << same;
        EXPECT_EQ(contentsOf("a"), "kept") << same;
    }
    EXPECT_TRUE(MoveFileA("inner", "./inner"));
    EXPECT_TRUE(isThere("inner"));
}

TEST_F(Move, OntoItselfWithASecondNameDoesNothing) {
    makeFile("a", "kept");
    fs::create_hard_link("a", "b");
    EXPECT_TRUE(MoveFileA("a", "./a"));
    EXPECT_EQ(contentsOf("a"), "kept");
    EXPECT_EQ(contentsOf("b"), "kept");
}

TEST_F(Move, OntoItselfSeenThroughAnotherMountDoesNothing) {
    const std::string inner = makeFolder("inner");
    const std::string view = makeFolder("view");
    makeFile("inner/a", "kept");
    if (mount(inner.c_str(), view.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "nothing can be mounted";
    EXPECT_TRUE(MoveFileA("inner/a", "view/a"));
    EXPECT_EQ(contentsOf("inner/a"), "kept");
    umount2(view.c_str(), MNT_DETACH);
}

TEST_F(Move, OntoASecondNameOfTheFileLeavesOneName) {
    makeFile("a", "text");
    fs::create_hard_link("a", "b");
    EXPECT_TRUE(MoveFileA("a", "b"));
    EXPECT_EQ(errno, 2);
    EXPECT_FALSE(isThere("a"));
    EXPECT_EQ(contentsOf("b"), "text");
    EXPECT_EQ(entries(), 1);
}

TEST_F(Move, IntoAMissingFolderFails) {
    makeFile("a", "kept");
    EXPECT_FALSE(MoveFileA("a", "missing/b"));
    EXPECT_FALSE(MoveFileA("a", ""));
    EXPECT_FALSE(MoveFileA("a", nullptr));
    EXPECT_EQ(contentsOf("a"), "kept");
    EXPECT_EQ(entries(), 1);
}

TEST_F(Move, OfAPathThatEndsWithASlashFails) {
    makeFolder("inner");
    errno = 77;
    EXPECT_FALSE(MoveFileA("inner/", "other"));
    EXPECT_EQ(errno, 2);
    EXPECT_TRUE(isThere("inner"));
}

TEST_F(Move, ToAPathThatEndsWithASlashIsForFolders) {
    makeFolder("inner");
    makeFolder("other");
    makeFile("inner/a", "kept");
    makeFile("b", "kept");
    EXPECT_TRUE(MoveFileA("inner", "new/"));
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(contentsOf("new/a"), "kept");
    EXPECT_TRUE(MoveFileA("new", "new/")) << "nothing to be done";
    EXPECT_FALSE(MoveFileA("b", "file/"));
    for (const char* target : {"b/", "other/"})
        EXPECT_FALSE(MoveFileA("new", target)) << target;
    EXPECT_EQ(contentsOf("new/a"), "kept");
    EXPECT_EQ(contentsOf("b"), "kept");
    EXPECT_EQ(entries(), 3);
}

TEST_F(Move, OfAFolderIntoItselfFails) {
    makeFolder("inner");
    EXPECT_FALSE(MoveFileA("inner", "inner/deeper"));
    EXPECT_TRUE(isThere("inner"));
}

TEST_F(Move, ThatTheSystemRefusesLeavesBothFiles) {
    makeFolder("inner");
    makeFile("inner/a", "one");
    makeFile("b", "other");
    chmod("inner", 0555);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_FALSE(MoveFileA("inner/a", "b"));
        EXPECT_FALSE(MoveFileA("b", "inner/a"));
        EXPECT_FALSE(MoveFileA("inner/a", "new"));
    }));
    chmod("inner", 0755);
    EXPECT_EQ(contentsOf("inner/a"), "one");
    EXPECT_EQ(contentsOf("b"), "other");
    EXPECT_EQ(entries(), 2);
}

namespace {

/// Has a folder `disk` that is another file system.
class MoveElsewhere : public Move {
protected:
    void SetUp() override {
        Move::SetUp();
        disk = std::make_unique<KxTest::SmallFileSystem>(makeFolder("disk"), 64);
        if (!disk->isMounted())
            GTEST_SKIP() << "no second file system can be mounted";
    }
    void TearDown() override {
        disk.reset();
        Move::TearDown();
    }

private:
    std::unique_ptr<KxTest::SmallFileSystem> disk;
};

} // namespace

TEST_F(MoveElsewhere, TakesAFile) {
    makeFile("a", "text");
    chmod("a", 0750);
    errno = 77;
    EXPECT_TRUE(MoveFileA("a", "disk/a"));
    EXPECT_EQ(errno, 2);
    EXPECT_FALSE(isThere("a"));
    EXPECT_EQ(contentsOf("disk/a"), "text");
    EXPECT_EQ(modeOf("disk/a"), 0750u);
}

TEST_F(MoveElsewhere, ReplacesAFile) {
    makeFile("a", "text");
    makeFile("disk/a", "old and longer");
    EXPECT_TRUE(MoveFileA("a", "disk/a"));
    EXPECT_FALSE(isThere("a"));
    EXPECT_EQ(contentsOf("disk/a"), "text");
    EXPECT_EQ(std::distance(fs::directory_iterator("disk"), fs::directory_iterator()), 1);
}

TEST_F(MoveElsewhere, WithoutRoomLeavesBothFiles) {
    const std::string large(400'000, 'l');
    makeFile("a", large);
    makeFile("disk/a", "kept");
    EXPECT_FALSE(MoveFileA("a", "disk/a"));
    EXPECT_EQ(contentsOf("disk/a"), "kept");
    EXPECT_FALSE(MoveFileA("a", "disk/b"));
    EXPECT_TRUE(contentsOf("a") == large);
    EXPECT_EQ(std::distance(fs::directory_iterator("disk"), fs::directory_iterator()), 1);
}

TEST_F(MoveElsewhere, WithLessThanABuffersRoomLeavesBothFiles) {
    const std::string small(9'000, 's');
    makeFile("a", small);
    makeFile("disk/filler", std::string(60'000, 'f'));
    EXPECT_FALSE(MoveFileA("a", "disk/b"));
    EXPECT_TRUE(contentsOf("a") == small);
    EXPECT_FALSE(isThere("disk/b"));
}

TEST_F(MoveElsewhere, OfAFileThatMayNotBeRemovedLeavesBothFiles) {
    makeFolder("inner");
    makeFile("inner/a", "text");
    makeFile("disk/a", "kept");
    chmod("inner", 0555);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        EXPECT_FALSE(MoveFileA("inner/a", "disk/a"));
        EXPECT_EQ(errno, EACCES);
        EXPECT_FALSE(MoveFileA("inner/a", "disk/b"));
    }));
    chmod("inner", 0755);
    EXPECT_EQ(contentsOf("inner/a"), "text");
    EXPECT_EQ(contentsOf("disk/a"), "kept");
    EXPECT_FALSE(isThere("disk/b"));
}

TEST_F(MoveElsewhere, OfALinkTakesWhatItLeadsTo) {
    makeFile("a", "text");
    fs::create_symlink("a", "link");
    EXPECT_TRUE(MoveFileA("link", "disk/a"));
    EXPECT_FALSE(isThere("link"));
    EXPECT_FALSE(fs::is_symlink("disk/a"));
    EXPECT_EQ(contentsOf("disk/a"), "text");
    EXPECT_EQ(contentsOf("a"), "text");
}

TEST_F(MoveElsewhere, RefusesAFolderAndLeavesItAndTheTarget) {
    makeFolder("inner");
    makeFile("inner/a", "text");
    makeFile("disk/b", "kept");
    EXPECT_FALSE(MoveFileA("inner", "disk/inner"));
    EXPECT_EQ(errno, EXDEV);
    EXPECT_FALSE(MoveFileA("inner", "disk/b"));
    EXPECT_EQ(contentsOf("inner/a"), "text");
    EXPECT_EQ(contentsOf("disk/b"), "kept");
    EXPECT_FALSE(isThere("disk/inner"));
}

TEST_F(Move, TheWideStreamCallsFormAnswersWith0And1) {
    makeFile("a", "text");
    makeFile("b", "old");
    errno = 77;
    EXPECT_EQ(_wrename(L"a", L"b"), 0);
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(contentsOf("b"), "text");
    EXPECT_EQ(_wrename(L"a", L"b"), 1);
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(_wrename(nullptr, nullptr), 1);
}
