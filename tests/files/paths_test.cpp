#include <KxQts/files/paths.h>

#include "fakes/diskarbiter.h"
#include "fakes/volumetable.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <limits>

namespace fs = std::filesystem;

using KxTest::FakeArbiter;

namespace {

QString made(const QString& path, const QString& drive, const QString& dir, const QString& fname,
             const QString& ext) {
    QString result = path;
    EXPECT_EQ(&makePath(result, drive, dir, fname, ext), &result);
    return result;
}

struct Parts {
    QString drive = "old";
    QString dir = "old";
    QString fname = "old";
    QString ext = "old";

    explicit Parts(const QString& path) { splitPath(path, drive, dir, fname, ext); }

    [[nodiscard]] std::string text() const {
        return (drive + '|' + dir + '|' + fname + '|' + ext).toStdString();
    }
};

/// A machine with a volume mounted on "/Volumes/Data" and one on "/".
class SplitPath : public testing::Test {
protected:
    SplitPath() {
        table.places["/Volumes/Data"] = {0, KxTest::onDevice("disk1s2")};
        table.places["/"] = {0, KxTest::onDevice("disk0s1")};
        FakeArbiter::setPath(arbiter.addDisk("disk1s2"), "DAVolumePath", "/Volumes/Data");
        FakeArbiter::setPath(arbiter.addDisk("disk0s1"), "DAVolumePath", "/");
    }
    ~SplitPath() override { EXPECT_EQ(arbiter.liveObjects(), 0); }

    FakeArbiter arbiter;
    KxTest::FakeVolumeTable table;
};

} // namespace

TEST(MakePath, PutsSeparatorsWhereTheyAreMissing) {
    EXPECT_EQ(made("", "", "/usr", "lib", "dylib"), "/usr/lib.dylib");
    EXPECT_EQ(made("", "", "/usr/", "lib", "dylib"), "/usr/lib.dylib");
    EXPECT_EQ(made("", "", "/usr", "/lib", ".dylib"), "/usr/lib.dylib");
    EXPECT_EQ(made("", "", "/usr/", "lib.", "dylib"), "/usr/lib.dylib");
    EXPECT_EQ(made("", "", "/usr", "lib", ".txt"), "/usr/lib.txt");
}

TEST(MakePath, PutsASeparatorAtTheVeryStartToo) {
    EXPECT_EQ(made("", "", "usr", "", ""), "/usr");
    EXPECT_EQ(made("", "", "", "name", ""), "/name");
    EXPECT_EQ(made("", "", "", "", "ext"), ".ext");
    EXPECT_EQ(made("", "", "", "", ""), "");
}

TEST(MakePath, AddsToWhatIsThereWithoutADrive) {
    EXPECT_EQ(made("/old", "", "dir", "name", "ext"), "/old/dir/name.ext");
    EXPECT_EQ(made("/old", "/Volumes/Data", "dir", "name", "ext"), "/Volumes/Data/dir/name.ext");
    EXPECT_EQ(made("/old/", "", "", "name", ""), "/old/name");
    EXPECT_EQ(made("/old", "/new", "", "", ""), "/new");
}

TEST(MakePath, KeepsDoubledSeparators) {
    EXPECT_EQ(made("a/", "", "/b/", "/c.", ".d"), "a//b//c..d");
}

TEST_F(SplitPath, TakesTheVolumeOff) {
    EXPECT_EQ(Parts("/Volumes/Data/dir/file.txt").text(), "/Volumes/Data|/dir|file|txt");
    EXPECT_EQ(Parts("/Volumes/Data/file").text(), "/Volumes/Data||file|");
    EXPECT_EQ(Parts("/Volumes/Data").text(), "/Volumes/Data|||");
    EXPECT_EQ(Parts("/dir/sub/file.txt").text(), "/|dir/sub|file|txt");
    EXPECT_EQ(Parts("/file").text(), "/||file|");
    EXPECT_EQ(Parts("/").text(), "/|||");
}

TEST_F(SplitPath, SplitsAtTheLastDotAnywhere) {
    EXPECT_EQ(Parts("/Volumes/Data/a.b/c").text(), "/Volumes/Data||a|b/c");
    EXPECT_EQ(Parts("/Volumes/Data/a.b.c").text(), "/Volumes/Data||a.b|c");
    EXPECT_EQ(Parts("/Volumes/Data/dir/.hidden").text(), "/Volumes/Data|/dir||hidden");
    EXPECT_EQ(Parts("/Volumes/Data/dir/name.").text(), "/Volumes/Data|/dir|name|");
    EXPECT_EQ(Parts("/Volumes/Data/dir/").text(), "/Volumes/Data|/dir||");
}

TEST_F(SplitPath, LeavesTheDriveEmptyWithoutAVolume) {
    table.places.clear();
    EXPECT_EQ(Parts("relative.txt").text(), "||relative|txt");
    EXPECT_EQ(Parts("").text(), "|||");
    EXPECT_EQ(Parts("/a/b.c").text(), "|/a|b|c");
    table.places["/net"] = {0, {0, true, ""}};
    EXPECT_EQ(Parts("/net/b.c").text(), "|/net|b|c");
    table.places["/gone"] = {0, KxTest::onDevice("disk7")};
    EXPECT_EQ(Parts("/gone/b.c").text(), "|/gone|b|c");
    arbiter.addDisk("disk7");
    EXPECT_EQ(Parts("/gone/b.c").text(), "|/gone|b|c") << "without a mount path";
}

TEST_F(SplitPath, KeepsThePathWhereItDoesNotBeginWithTheMountPoint) {
    table.places["/link"] = {0, KxTest::onDevice("disk1s2")};
    EXPECT_EQ(Parts("/link/b.c").text(), "/Volumes/Data|/link|b|c");
    table.places["/volumes"] = {0, KxTest::onDevice("disk1s2")};
    EXPECT_EQ(Parts("/volumes/data/b").text(), "/Volumes/Data|/volumes/data|b|");
}

TEST_F(SplitPath, MayWriteOverItsInput) {
    QString path = "/Volumes/Data/dir/file.txt";
    QString dir;
    QString fname;
    QString ext;
    splitPath(path, path, dir, fname, ext);
    EXPECT_EQ(path, "/Volumes/Data");
    EXPECT_EQ(dir, "/dir");
}

TEST_F(SplitPath, LeavesErrnoAlone) {
    errno = 99;
    (void)Parts("/Volumes/Data/dir/file.txt");
    EXPECT_EQ(errno, 99);
}

TEST(SplitPathHere, GivesTheRealMountPoint) {
    errno = 99;
    const Parts parts(QString::fromStdString(fs::current_path() / "no/such.file"));
    EXPECT_EQ(errno, 99);
    EXPECT_EQ(parts.ext, "file");
    EXPECT_EQ(parts.fname, "such");
    EXPECT_TRUE(parts.dir.endsWith("/no")) << parts.text();
}

class ShortPaths : public testing::Test {
protected:
    ShortPaths() { std::ofstream("name.txt").close(); }
    ~ShortPaths() override { fs::remove("name.txt"); }
};

TEST_F(ShortPaths, AreLengthsOfThePathAndItsNameAgain) {
    const QString path = QString::fromStdString(fs::current_path() / "name.txt");
    const auto whole = static_cast<unsigned>(path.size()) + 9;
    QString kept = "kept";
    errno = 99;
    for (const unsigned limit :
         {whole, whole + 1, unsigned{std::numeric_limits<int>::max()}, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(getShortPathname(path, kept, limit), whole) << limit;
    EXPECT_EQ(getShortPathname(path, kept, whole - 1), whole - 1);
    EXPECT_EQ(getShortPathname(path, kept, 3), 3u);
    EXPECT_EQ(getShortPathname(path, kept, 0), 0u);
    EXPECT_EQ(getShortPathname("name.txt", kept, 1000), 17u) << "as the path is given";
    EXPECT_EQ(getShortPathname("./name.txt", kept, 1000), 19u);
    EXPECT_EQ(getShortPathname("missing", kept, 1000), 0u);
    EXPECT_EQ(getShortPathname("", kept, 1000), 0u);
    EXPECT_EQ(kept, "kept");
    EXPECT_EQ(errno, 99);
}

TEST_F(ShortPaths, LeaveBuffersAsTheyAre) {
    std::array<char, 32> text{"kept"};
    std::array<wchar_t, 32> wide{L"kept"};
    const auto textBefore = text;
    const auto wideBefore = wide;
    errno = 99;
    EXPECT_EQ(GetShortPathNameA("name.txt", text.data(), 32), 17u);
    EXPECT_EQ(GetShortPathNameW(L"name.txt", wide.data(), 32), 17u);
    EXPECT_EQ(GetShortPathNameA("name.txt", text.data(), 4), 4u);
    EXPECT_EQ(GetShortPathNameA("missing", text.data(), 32), 0u);
    EXPECT_EQ(GetShortPathNameW(L"missing", wide.data(), 32), 0u);
    EXPECT_EQ(GetShortPathNameA(nullptr, text.data(), 32), 0u);
    EXPECT_EQ(GetShortPathNameW(nullptr, wide.data(), 32), 0u);
    EXPECT_EQ(GetShortPathNameA("name.txt", nullptr, 0), 0u);
    EXPECT_EQ(text, textBefore);
    EXPECT_EQ(wide, wideBefore);
    EXPECT_EQ(errno, 99);
}
