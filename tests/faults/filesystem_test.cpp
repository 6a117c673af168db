#include "common/scratchfile.h"
#include "faults/sweep.h"
#include "files/folder.h"

#include <KxQts/errors.h>
#include <KxQts/files/directories.h>
#include <KxQts/winapi/filesystem.h>

#include <algorithm>
#include <fstream>
#include <string>

using namespace KxTest;
namespace Error = Korvex::Error;
namespace fs = std::filesystem;

namespace {

/// The texts of a file before and after what is under test.
const std::string sourceText(70'000, 's');
const std::string targetText = "target";

/// Works on a file "source" and mostly on a file "target", which do not belong to root.
class FileSystemFaults : public InOwnFolder {
protected:
    void makeSource() const {
        fs::remove_all("target");
        makeFile("source", sourceText);
    }
    void makeBoth() const {
        makeSource();
        makeFile("target", targetText);
    }

    /// What is left of earlier attempts.
    static void verifyNothingBeside() {
        for (const auto& entry : fs::directory_iterator(fs::current_path())) {
            const std::string name = entry.path().filename();
            EXPECT_TRUE(name == "source" || name == "target" || name == "other")
                << name << " is left";
        }
    }

    static bool isWhole(const char* file, const std::string& text) {
        return fs::exists(file) && contentsOf(file) == text;
    }

    void sweepAll(Scenario scenario) const {
        if (!scenario.prepare)
            scenario.prepare = [this] { makeBoth(); };
        sweep(fileFaults() + memoryFaults(), scenario);
    }
};

} // namespace

TEST_F(FileSystemFaults, CopyingAFile) {
    sweepAll({.name = "copy",
              .prepare = [this] { makeSource(); },
              .run = [] { return CopyFileA("source", "target", TRUE) != FALSE; },
              .verify =
                  [](bool succeeded) {
                      EXPECT_TRUE(isWhole("source", sourceText));
                      EXPECT_TRUE(isWhole("target", sourceText) ||
                                  (!succeeded && !fs::exists("target")));
                      verifyNothingBeside();
                  },
              .reports = {Error::CopyFailed, Error::NotFound}});
}

TEST_F(FileSystemFaults, CopyingOverAFile) {
    sweepAll({.name = "copy over",
              .run = [] { return CopyFileA("source", "target", FALSE) != FALSE; },
              .verify =
                  [](bool succeeded) {
                      EXPECT_TRUE(isWhole("source", sourceText));
                      EXPECT_TRUE(isWhole("target", sourceText) ||
                                  (!succeeded && isWhole("target", targetText)));
                      verifyNothingBeside();
                  },
              .reports = {Error::CopyFailed, Error::NotFound}});
}

TEST_F(FileSystemFaults, MovingAFile) {
    sweepAll({.name = "move",
              .run = [] { return MoveFileA("source", "target") != FALSE; },
              .verify =
                  [](bool succeeded) {
                      const bool moved = !fs::exists("source") && isWhole("target", sourceText);
                      const bool kept =
                          isWhole("source", sourceText) && isWhole("target", targetText);
                      EXPECT_TRUE(succeeded ? moved : kept);
                      verifyNothingBeside();
                  },
              .reports = {Reported::injected, Error::NotFound}});
}

TEST_F(FileSystemFaults, MovingAFileToAnotherFileSystem) {
    makeFolder("other");
    const SmallFileSystem other("other", 1000);
    if (!other.isMounted())
        GTEST_SKIP() << "may not mount";
    sweepAll({.name = "move across",
              .prepare =
                  [this] {
                      makeSource();
                      std::ofstream("other/target") << targetText;
                  },
              .run = [] { return MoveFileA("source", "other/target") != FALSE; },
              .verify =
                  [](bool succeeded) {
                      const bool moved = isWhole("other/target", sourceText);
                      EXPECT_TRUE(moved || (!succeeded && isWhole("other/target", targetText)));
                      EXPECT_TRUE(moved || isWhole("source", sourceText));
                      EXPECT_EQ(std::distance(fs::directory_iterator("other"), {}), 1);
                      verifyNothingBeside();
                  },
              .reports = {Reported::anything}});
}

TEST_F(FileSystemFaults, DeletingAFile) {
    sweepAll(
        {.name = "delete",
         .run = [] { return DeleteFileA("source") != FALSE; },
         .verify = [](bool succeeded) { EXPECT_EQ(isWhole("source", sourceText), !succeeded); },
         .reports = {Reported::injected, Error::NotFound}});
}

TEST_F(FileSystemFaults, MakingAFolder) {
    sweepAll({.name = "make folder",
              .prepare = [] { fs::remove("target"); },
              .run = [] { return CreateDirectoryA("target", nullptr) != FALSE; },
              .verify = [](bool succeeded) { EXPECT_EQ(fs::is_directory("target"), succeeded); },
              .reports = {Reported::injected}});
}

TEST_F(FileSystemFaults, RemovingAFolder) {
    sweepAll({.name = "remove folder",
              .prepare = [] { fs::create_directory("target"); },
              .run = [] { return RemoveDirectoryA("target") != FALSE; },
              .verify = [](bool succeeded) { EXPECT_EQ(fs::is_directory("target"), !succeeded); },
              .reports = {Reported::injected}});
}

TEST_F(FileSystemFaults, ReadingAttributes) {
    sweepAll({.name = "get attributes",
              .run =
                  [] {
                      WIN32_FILE_ATTRIBUTE_DATA data{};
                      return GetFileAttributesA("source") == FILE_ATTRIBUTE_NORMAL &&
                             GetFileAttributesExA("source", GetFileExInfoStandard, &data) &&
                             data.nFileSizeLow == sourceText.size();
                  },
              .reports = {Reported::untouched, Error::NoMemory}});
}

TEST_F(FileSystemFaults, ChangingAttributes) {
    sweepAll({.name = "set attributes",
              .run = [] { return SetFileAttributesA("source", FILE_ATTRIBUTE_NORMAL) != FALSE; },
              .reports = {Reported::injected, Error::NotFound}});
}

TEST_F(FileSystemFaults, AskingWhetherThereIsAFile) {
    const QString source = QStringLiteral("source");
    sweepAll({.name = "is there", .run = [=] {
                  bool exists = false;
                  bool isFolder = true;
                  return isFileOrFolderExist(source, exists, &isFolder) == 0 && exists && !isFolder;
              }});
}
