/// \file
/// What `#include <WinUser.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/winuser.h>
