#include "common/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/utsname.h>

namespace fs = std::filesystem;

using KxTest::ProgramResult;
using KxTest::runProgram;
using testing::ContainsRegex;
using testing::StartsWith;

namespace {

const std::string kx = KX_PROGRAM;

} // namespace

TEST(KxSystem, ShowsWhatProgramsAreTold) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    const ProgramResult shown = runProgram({kx, "system"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.output, StartsWith("WHAT "));
    EXPECT_THAT(shown.output, ContainsRegex("\ncomputer name +" + std::string(names.nodename)));
    EXPECT_THAT(shown.output, ContainsRegex("\nkernel release +" + std::string(names.release)));
    EXPECT_THAT(shown.output, ContainsRegex("\nexecutable +" + kx + "\n"));
    EXPECT_THAT(shown.output, ContainsRegex("\nprocesses +[1-9][0-9]*\n"));
    EXPECT_THAT(shown.output,
                ContainsRegex("\ndate and time formats +[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\n"));
    EXPECT_EQ(shown.errors, "");
}

TEST(KxSystem, ShowsTheVersionThatAnInstallationStates) {
    const fs::path root = fs::absolute("stating");
    const fs::path folder = root / "System/Library/CoreServices";
    fs::create_directories(folder);
    std::ofstream(folder / "SystemVersion.plist")
        << R"(<?xml version="1.0"?><plist version="1.0"><dict>)"
           "<key>ProductVersion</key><string>10.6.8</string>"
           "<key>ProductBuildVersion</key><string>10K549</string></dict></plist>";
    const ProgramResult shown = runProgram({kx, "system"}, {{"KXQTS_ROOT", root}});
    EXPECT_THAT(shown.output, ContainsRegex("\nproduct version +10\\.6\\.8\n"));
    EXPECT_THAT(shown.output, ContainsRegex("\nproduct build +10K549\n"));
    fs::remove_all(root);
}

TEST(KxSystem, TakesNoOperands) {
    EXPECT_EQ(runProgram({kx, "system", "all"}).status, 2);
}
