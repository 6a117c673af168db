/// \file
/// What `#include <windows.h>` finds in a source written for Windows: the whole interface, the
/// names without `A` and `W`, and the words that such sources use.
#pragma once

#include <KxQts/windows.h>
#include <KxQts/windows/kxaliases.h>
#include <KxQts/windows/kxcriticalsections.h>
#include <KxQts/windows/kxhelpers.h>
#include <KxQts/windows/kxinterlocked.h>
#include <KxQts/windows/winerror.h>
#include <KxQts/windows/winnt.h>

// What the headers of Windows include and sources therefore do not name.
#include <ctype.h>
#include <stdarg.h>
#include <string.h>
#include <wchar.h>
