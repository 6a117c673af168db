/// \file
/// What `#include <process.h>` finds in a source written for Windows: the system's own calls for
/// processes under their plain names (`getpid`, `execv`), and `exit`, `abort` and `system`.
#pragma once

#include <KxQts/windows/kxkeywords.h>

#include <stdlib.h>
#include <unistd.h>
