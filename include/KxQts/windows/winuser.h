/// \file
/// What `#include <winuser.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/windows.h>
