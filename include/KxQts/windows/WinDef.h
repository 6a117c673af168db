/// \file
/// What `#include <WinDef.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/windef.h>
