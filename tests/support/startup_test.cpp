#include "common/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using KxTest::Environment;
using KxTest::ProgramResult;
using KxTest::runProgram;
using testing::HasSubstr;

namespace {

/// What every program returns.
constexpr int status = 7;

ProgramResult run(const std::string& name, std::vector<std::string> arguments,
                  const Environment& environment = {{"LC_ALL", "C.UTF-8"}}) {
    arguments.insert(arguments.begin(), KXQTS_PROGRAMS + name);
    return runProgram(arguments, environment);
}

} // namespace

class Startup : public testing::TestWithParam<const char*> {};

class Arguments : public Startup {};
class ArgumentsAndEnvironment : public Startup {};
class NoArguments : public Startup {};

TEST_P(Arguments, AreWideText) {
    const ProgramResult result = run(GetParam(), {"ab", "", "zß水𝄞"});
    EXPECT_EQ(result.output, "[61 62][][7a df 6c34 1d11e]");
    EXPECT_EQ(result.status, status);
}

INSTANTIATE_TEST_SUITE_P(Startup, Arguments,
                         testing::Values("c_args", "cxx_args", "cxx_externc", "cxx_constargs",
                                         "cxx_constlist"));

TEST_P(ArgumentsAndEnvironment, AreWideText) {
    const ProgramResult result =
        run(GetParam(), {"zß"}, {{"LC_ALL", "C.UTF-8"}, {"KXQTS_STARTUP", "ü="}});
    EXPECT_EQ(result.output, "[7a df][fc 3d]");
    EXPECT_EQ(result.status, status);
}

INSTANTIATE_TEST_SUITE_P(Startup, ArgumentsAndEnvironment,
                         testing::Values("c_envp", "cxx_envp", "cxx_constenvp"));

TEST_P(NoArguments, AreTakenToo) {
    EXPECT_EQ(run(GetParam(), {"a"}).status, status);
}

INSTANTIATE_TEST_SUITE_P(Startup, NoArguments, testing::Values("c_noargs", "cxx_noargs"));

TEST(StartupText, BytesThatAreNoCharactersBecomeTheCharactersOfTheirNumbers) {
    EXPECT_EQ(run("c_args", {"a\xFF\xC3(", "\xE6\xB0"}).output, "[61 ff c3 28][e6 b0]");
    EXPECT_EQ(run("c_args", {"ß"}, {{"LC_ALL", "C"}}).output, "[c3 9f]");
    EXPECT_EQ(run("c_args", {"aß"}, {{"LC_ALL", "no_SUCH.locale"}}).output, "[61 c3 9f]");
}

TEST(StartupText, ManyArgumentsArriveWhole) {
    std::string expected;
    std::vector<std::string> arguments;
    for (int i = 0; i < 3000; ++i) {
        arguments.emplace_back("ä");
        expected += "[e4]";
    }
    EXPECT_EQ(run("cxx_args", arguments).output, expected);
}

TEST(StartupText, AProgramWithAMainOfItsOwnIsLeftAlone) {
    const ProgramResult result = run("c_main", {});
    EXPECT_EQ(result.output, "main\n");
    EXPECT_EQ(result.status, status);
}

TEST(StartupText, AProgramWithNeitherMainNorWmainDoesNotLink) {
    const ProgramResult result =
        runProgram({KXQTS_COMPILER, KXQTS_NOWMAIN, KXQTS_KXMAIN, "-o", "nowmain"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("wmain()"));
}

TEST(WindowsHelpers, AreErrnoAndASleepThatLeavesItAloneAndMayBeForEver) {
    const ProgramResult result = run("helpers", {});
    EXPECT_EQ(result.output, "[25][4294967295][4294967295]");
    EXPECT_EQ(result.status, status);
}

class WindowsSource : public Startup {};

TEST_P(WindowsSource, RunsWithEightBitText) {
    const ProgramResult result = run("tmain_" + std::string(GetParam()), {"zß"});
    EXPECT_EQ(result.output, "8 bit characters: 7a c3 9f");
    EXPECT_EQ(result.status, 0);
}

TEST_P(WindowsSource, RunsWithWideText) {
    const ProgramResult result = run("tmain_wide_" + std::string(GetParam()), {"zß"});
    EXPECT_EQ(result.output, "32 bit characters: 7a df");
    EXPECT_EQ(result.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Startup, WindowsSource, testing::Values("c", "cpp"));

TEST(WideText, IsFormattedAndScannedAsOnWindows) {
    const ProgramResult result = run("widetext", {});
    EXPECT_EQ(result.status, status) << result.output;
}

TEST(WideText, MayBeMixedWithAnyOtherOnAStream) {
    const std::string text = "grün 5, text!?";
    EXPECT_EQ(run("wideoutput", {}).output, text + " bytes");
    EXPECT_EQ(run("wideoutput", {"bytes"}).output, "bytes " + text + " bytes");
    const ProgramResult result = run("wideoutput", {"bytes"});
    EXPECT_EQ(result.status, status);
}

TEST(WideText, KeepsToAStreamThatIsWide) {
    const ProgramResult result = run("wideoutput", {"wide"}, {{"LC_ALL", "C"}});
    EXPECT_EQ(result.output, "wide gr?n 5, text!? wide");
    EXPECT_EQ(result.status, status);
}

TEST(WideText, HasQuestionMarksForWhatTheUsersLocaleLacks) {
    EXPECT_EQ(run("wideoutput", {}, {{"LC_ALL", "C"}}).output, "gr?n 5, text!? bytes");
}
