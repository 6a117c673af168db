/// \file
/// What `#include <WinReg.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/winreg.h>
