/// \file
/// What `#include <direct.h>` finds in a source written for Windows: the calls for directories. The
/// plain names (`chdir`, `getcwd`, `rmdir`) are the system's own.
#pragma once

#include <KxQts/winapi/crt.h>
#include <KxQts/windows/kxkeywords.h>

#include <unistd.h>
