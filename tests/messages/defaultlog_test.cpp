// The log that the library opens when a program loads it.

#include "common/program.h"
#include "common/scratchfile.h"
#include "modules/modulefolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

using KxTest::contentsOf;
using KxTest::ModuleFolder;
using KxTest::ProgramResult;
using KxTest::runProgram;

namespace {

/// A copy of the library in a folder of its own, where its log lies as well.
class DefaultLog : public testing::Test {
protected:
    DefaultLog() { library = folder.add("libKxQts.so", KXTEST_LIBRARY); }

    [[nodiscard]] ProgramResult run(const std::vector<std::string>& words) const {
        return runProgram(words, {{"LD_LIBRARY_PATH", folder.path().string()},
                                  {"ASAN_OPTIONS", "detect_leaks=0"}});
    }

    [[nodiscard]] std::string logPath() const { return (folder.path() / "libKxQts.log").string(); }

    /// The log without the time that every line has which is not empty.
    [[nodiscard]] std::string log() const {
        constexpr std::size_t timeLength = sizeof "Mar 05 14:03:59 " - 1;
        std::istringstream lines(contentsOf(logPath()));
        std::string text;
        for (std::string line; std::getline(lines, line);)
            text += (line.empty() ? line : line.substr(timeLength)) + '\n';
        return text;
    }

    ModuleFolder folder;
    std::string library;
};

constexpr const char* loadedLine = "KxQts: has been loaded.\n";
constexpr const char* earlyLine = "KxQts: early: sent before main\n\n";
constexpr const char* unloadedLine = "KxQts: has been unloaded.\n";

} // namespace

TEST_F(DefaultLog, LiesBesideTheLibraryAndIsOpenForOtherStaticInitialisers) {
    const ProgramResult result = run({KXTEST_PROBE, "nothing"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(log(), std::string(loadedLine) + earlyLine + unloadedLine);
}

TEST_F(DefaultLog, IsForEveryoneAndGrowsWithEachProcess) {
    const mode_t before = umask(077);
    (void)run({KXTEST_PROBE, "nothing"});
    umask(before);
    const std::string once = log();
    (void)run({KXTEST_PROBE, "nothing"});
    EXPECT_EQ(log(), once + once);
    struct stat status {};
    ASSERT_EQ(stat(logPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0666u);
}

TEST_F(DefaultLog, GoesToStandardOutputWhenItCannotBeOpened) {
    std::filesystem::create_directory(logPath());
    const ProgramResult result = run({KXTEST_PROBE, "nothing"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output.ends_with(earlyLine)) << result.output;
    EXPECT_EQ(result.output.find("loaded"), std::string::npos) << result.output;
    EXPECT_EQ(result.errors, "");
}

TEST_F(DefaultLog, EngineHandlerThatAProgramMakesOpensItAgain) {
    const ProgramResult result = run({KXTEST_PROBE, "engine"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(log(), std::string(loadedLine) + earlyLine + loadedLine + unloadedLine);
}

TEST_F(DefaultLog, IsClosedWhenTheLibraryIsUnloaded) {
    const ProgramResult result =
        run({KXTEST_UNLOAD_PROBE, KXTEST_UNLOAD_CLIENT, library, KXTEST_RESOURCE});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(log(), std::string(loadedLine) + unloadedLine);
    EXPECT_NE(result.output.find("log before 1, after 0"), std::string::npos) << result.output;
}
