/// \file
/// What `#include <winbase.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/windows.h>
