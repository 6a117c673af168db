#pragma once

#include <string>
#include <vector>

namespace DiskUtil {

/// How a program ended and what it wrote to standard output and standard error, in order.
struct ChildResult {
    int status = 0; ///< Its exit code; 128 and the number when a signal ended it
    std::string output;
};

/// Runs one of the system's programs for administrators, without a shell, and waits for its end.
/// It belongs to a session of its own: what ends this program does not end it too, so that work on
/// a file system is finished. Throws \ref Failure when it cannot be started.
/// \param words Its name and its arguments.
ChildResult runProgram(const std::vector<std::string>& words);

/// What a program wrote, without the first line if that is the one with which some tell their
/// version.
/// \param name The program's.
std::string withoutBanner(std::string output, const std::string& name);

/// What a program complains about, as one line.
std::string complaintOf(const ChildResult& result);

} // namespace DiskUtil
