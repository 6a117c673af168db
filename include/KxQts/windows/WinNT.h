/// \file
/// What `#include <WinNT.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/winnt.h>
