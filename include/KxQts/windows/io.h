/// \file
/// What `#include <io.h>` finds in a source written for Windows: the system's own calls for
/// descriptors under their plain names (`access`, `close`, `read`, `write`).
#pragma once

#include <KxQts/windows/kxkeywords.h>

#include <fcntl.h>
#include <unistd.h>
