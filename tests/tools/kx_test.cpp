#include "common/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using KxTest::ProgramResult;
using KxTest::runProgram;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string kx = KX_PROGRAM;

/// What the shell offers in the place of the last word.
std::string completionsOf(const std::vector<std::string>& words) {
    std::string script = "complete() { :; }; . " KX_SOURCES "/completion.bash; COMP_WORDS=(";
    for (const std::string& word : words)
        script += "'" + word + "' ";
    script += "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kx; echo \"${COMPREPLY[*]}\"";
    return runProgram({"/bin/bash", "-c", script}).output;
}

} // namespace

TEST(Kx, HelpAndVersionGoToStandardOutput) {
    const ProgramResult help = runProgram({kx, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, StartsWith("Usage: kx COMMAND"));
    EXPECT_THAT(help.output, HasSubstr("\n  mutexes  "));
    EXPECT_EQ(help.errors, "");
    const ProgramResult version = runProgram({kx, "--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, testing::MatchesRegex("kx \\(KxQts\\) [0-9.]+\n"));
}

TEST(Kx, ACommandHasHelpOfItsOwn) {
    const ProgramResult help = runProgram({kx, "mutexes", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, StartsWith("Usage: kx mutexes [OPTION...] [NAME...]\n"));
    EXPECT_THAT(help.output, HasSubstr("  --remove NAME"));
}

TEST(Kx, WhatMakesNoSenseIsAUsageErrorOnStandardError) {
    const std::vector<std::vector<std::string>> lines{
        {kx},
        {kx, "--nonsense"},
        {kx, "nonsense"},
        {kx, "mutexes", "--nonsense"},
        {kx, "mutexes", "-x"},
        {kx, "mutexes", "--remove"},
        {kx, "mutexes", "--force=yes"},
    };
    for (const auto& line : lines) {
        const ProgramResult result = runProgram(line);
        EXPECT_EQ(result.status, 2) << line.back();
        EXPECT_EQ(result.output, "") << line.back();
        EXPECT_THAT(result.errors, StartsWith("kx")) << line.back();
        EXPECT_THAT(result.errors, HasSubstr("--help")) << line.back();
    }
}

TEST(Kx, WordsBehindTwoDashesAreNoOptions) {
    const ProgramResult result = runProgram({kx, "mutexes", "--", "--help"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "kx mutexes: there is no mutex /--help\n");
}

TEST(Kx, OutputThatCannotBeWrittenIsAnError) {
    const ProgramResult result = runProgram({"/bin/sh", "-c", kx + " --help > /dev/full"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("cannot write"));
}

TEST(Kx, ControlCharactersOfTheUserAreNotRepeated) {
    EXPECT_THAT(runProgram({kx, "\x1b[31m"}).errors, HasSubstr("unknown command \\x1B[31m"));
}

TEST(Kx, TheShellCompletesCommandsOptionsAndNames) {
    EXPECT_EQ(completionsOf({kx, "mute"}), "mutexes\n");
    EXPECT_THAT(completionsOf({kx, ""}), HasSubstr("--version"));
    EXPECT_EQ(completionsOf({kx, "mutexes", "--re"}), "--remove --release\n");
    EXPECT_EQ(completionsOf({kx, "nonsense", ""}), "\n");
}

TEST(Kx, TheManualTellsOfEveryCommand) {
    const std::string commands = runProgram({kx, "--complete", ""}).output;
    const std::string manual = runProgram({"/bin/cat", KX_SOURCES "/kx.1"}).output;
    for (std::istringstream words(commands); !words.eof();) {
        std::string word;
        std::getline(words, word);
        EXPECT_TRUE(word.starts_with("--") || manual.find(".SS kx " + word) != std::string::npos)
            << word;
    }
}
