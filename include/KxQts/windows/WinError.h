/// \file
/// What `#include <WinError.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/winerror.h>
