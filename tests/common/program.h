#pragma once

#include <map>
#include <string>
#include <vector>

namespace KxTest {

/// How a program ended and what it wrote.
struct ProgramResult {
    int status = -1; ///< What it returned; 128 and the number when a signal ended it
    std::string output;
    std::string errors;
};

/// Variables that a program's environment has beside the test's own; an empty value takes one out.
using Environment = std::map<std::string, std::string>;

/// Runs a program and waits for its end. \param words The program's path and its arguments.
ProgramResult runProgram(const std::vector<std::string>& words, const Environment& changes = {},
                         const std::string& input = {});

/// The same with a terminal for its standard output; \c output is what the terminal received.
ProgramResult runOnTerminal(const std::vector<std::string>& words, const Environment& changes = {});

} // namespace KxTest
