#pragma once

#include <string>

namespace KxTest {

/// Whether this process has a root folder of its own, in which "/usr/sbin/diskutil" and "/Korvex"
/// are its own to write. Programs that link ownroot.cpp have, where the rights suffice.
[[nodiscard]] bool hasOwnRoot();

/// Puts a program at "/usr/sbin/diskutil": one that is there, or a script of the shell's.
void placeDiskUtility(const std::string& program);
void placeDiskUtilityScript(const std::string& script);

/// Takes it away.
void removeDiskUtility();

} // namespace KxTest
