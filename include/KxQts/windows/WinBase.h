/// \file
/// What `#include <WinBase.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/winbase.h>
