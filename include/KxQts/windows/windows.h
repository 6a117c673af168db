/// \file
/// What `#include <windows.h>` finds in a source written for Windows: the whole interface, the
/// names without `A` and `W`, and the words that such sources use.
#pragma once

#include <KxQts/windows.h>
#include <KxQts/windows/kxaliases.h>
#include <KxQts/windows/winerror.h>
#include <KxQts/windows/winnt.h>

// Windows has wide text functions in <string.h>; here they are in a header that sources do not
// name.
#include <stdarg.h>
#include <wchar.h>
