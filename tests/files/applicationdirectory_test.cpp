// The application's own directories, and the library's own path.

#include <KxQts/files/knowndirectories.h>

#include "fakes/imagelist.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// A process whose program has a path.
struct Program {
    explicit Program(const std::string& path) { images.list = {{path, nullptr}}; }

    KxTest::FakeImageList images;
};

std::string directory() {
    QString path;
    return getApplicationDirectory(path) ? path.toStdString() : "none";
}

std::string fullPath() {
    QString path;
    return getApplicationFullPath(path) ? path.toStdString() : "none";
}

const std::string longest = "/top/" + std::string(254, 'x'); // of a bundle

} // namespace

TEST(ApplicationDirectory, IsThatAroundTheBundle) {
    {
        const Program program("/Applications/Some.app/Contents/MacOS/Some");
        EXPECT_EQ(directory(), "/Applications");
        EXPECT_EQ(fullPath(), "/Applications/Some.app");
    }
    {
        const Program program("/usr/local/bin/some");
        EXPECT_EQ(directory(), "/usr/local");
        EXPECT_EQ(fullPath(), "/usr/local/bin") << "the folder stands for a bundle";
    }
    {
        const Program program("/Some.bundle/Contents/MacOS/Some");
        EXPECT_EQ(fullPath(), "/Some.bundle/Contents/MacOS") << "no application";
    }
    {
        const Program program("/some");
        EXPECT_EQ(directory(), "");
        EXPECT_EQ(fullPath(), "/");
    }
}

TEST(ApplicationDirectory, IsNotToldWhenTheBundleIsNotKnownOrHasALongPath) {
    {
        const Program program(longest + "/some");
        EXPECT_EQ(fullPath(), longest);
        EXPECT_EQ(directory(), "/top");
    }
    for (const std::string& path : {longest + "x/some", std::string(), std::string("/磁/some")}) {
        const Program program(path);
        QString kept = "kept";
        std::array<char, 8> buffer{"kept"};
        unsigned long length = 7;
        errno = 99;
        EXPECT_FALSE(getApplicationDirectory(kept));
        EXPECT_FALSE(getApplicationFullPath(kept));
        EXPECT_FALSE(getApplicationDirectory(buffer.data(), &length));
        EXPECT_EQ(GetApplicationDirectoryA(buffer.data(), 8), 0u);
        EXPECT_EQ(errno, 99);
        EXPECT_EQ(kept, "kept");
        EXPECT_STREQ(buffer.data(), "kept");
        EXPECT_EQ(length, 7u);
    }
}

TEST(ApplicationDirectory, IsInMacRoman) {
    const Program program("/\xC3\xA4/x/some"); // ä, which is 0x8A there
    EXPECT_EQ(directory(), QString::fromLatin1("/\x8A").toStdString());
    std::array<char, 260> buffer{};
    unsigned long length = 0;
    EXPECT_TRUE(getApplicationDirectory(buffer.data(), &length));
    EXPECT_STREQ(buffer.data(), "/\x8A");
    EXPECT_EQ(length, 2u);
}

TEST(ApplicationDirectory, IsGivenWhenItFits) {
    const Program program("/usr/bin/some");
    std::array<char, 8> text{};
    std::array<wchar_t, 8> wide{};
    for (const DWORD size : {0U, 1U, 4U}) {
        text.fill('#');
        wide.fill(L'#');
        errno = 99;
        EXPECT_EQ(GetApplicationDirectoryA(text.data(), size), 0u);
        EXPECT_EQ(errno, 234);
        errno = 99;
        EXPECT_EQ(GetApplicationDirectoryW(wide.data(), size), 0u);
        EXPECT_EQ(errno, 234);
        EXPECT_EQ(text[0], '#');
        EXPECT_EQ(wide[0], L'#');
    }
    for (const DWORD size : {5U, 8U}) {
        text.fill('#');
        wide.fill(L'#');
        errno = 99;
        EXPECT_EQ(GetApplicationDirectoryA(text.data(), size), 4u);
        EXPECT_EQ(errno, 0);
        errno = 99;
        EXPECT_EQ(GetApplicationDirectoryW(wide.data(), size), 4u);
        EXPECT_EQ(errno, 0);
        EXPECT_STREQ(text.data(), "/usr");
        EXPECT_STREQ(wide.data(), L"/usr");
        EXPECT_EQ(text[5], '#');
        EXPECT_EQ(wide[5], L'#');
    }
    errno = 99;
    EXPECT_EQ(GetApplicationDirectoryA(nullptr, 8), 0u);
    EXPECT_EQ(GetApplicationDirectoryW(nullptr, 8), 0u);
    EXPECT_FALSE(getApplicationDirectory(nullptr, nullptr));
    EXPECT_EQ(errno, 99);
}

TEST(ApplicationDirectory, ThatDoesNotFitIsTheErrorEvenWithoutABuffer) {
    const Program program("/usr/bin/some");
    errno = 99;
    EXPECT_EQ(GetApplicationDirectoryA(nullptr, 0), 0u);
    EXPECT_EQ(errno, 234);
    errno = 99;
    EXPECT_EQ(GetApplicationDirectoryW(nullptr, 4), 0u);
    EXPECT_EQ(errno, 234);
}

TEST(ApplicationDirectory, EndsInItsWideFormWhereTheLocaleCannotReadIt) {
    const Program program("/u\xC3\xA4u/x/some");
    std::array<wchar_t, 16> wide{};
    wide.fill(L'#');
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    EXPECT_EQ(GetApplicationDirectoryW(wide.data(), 16), 4u);
    EXPECT_EQ(errno, 0);
    EXPECT_STREQ(wide.data(), L"/u");
}

TEST(ApplicationDirectory, OfThisProgramIsReal) {
    const fs::path bundle = fs::read_symlink("/proc/self/exe").parent_path();
    EXPECT_EQ(fullPath(), bundle.string());
    EXPECT_EQ(directory(), bundle.parent_path().string());
}

TEST(ModulePath, IsThatOfTheImageThatTheLibraryIs) {
    KxTest::FakeImageList images;
    images.own = "own";
    images.list = {{"/bin/program", images.own}};
    EXPECT_EQ(Korvex::getModulePath(), nullptr) << "one image only";
    images.list.push_back({"/lib/other", "other"});
    EXPECT_EQ(Korvex::getModulePath(), nullptr) << "the program itself is not looked at";
    images.list.push_back({"/lib/library", images.own});
    const char* const path = Korvex::getModulePath();
    EXPECT_STREQ(path, "/lib/library");
    images.list.clear();
    EXPECT_STREQ(path, "/lib/library") << "it stays";
    images.list = {{"/bin/program", nullptr}, {"/lib/library", images.own}};
    EXPECT_EQ(Korvex::getModulePath(), path) << "and is the same one";
}

TEST(ModulePath, IsNoneHereWhereTheLibraryIsPartOfTheProgram) {
    EXPECT_EQ(Korvex::getModulePath(), nullptr);
}
