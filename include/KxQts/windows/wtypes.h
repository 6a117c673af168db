/// \file
/// What `#include <wtypes.h>` finds in a source written for Windows: the types.
#pragma once

#include <KxQts/windows/windows.h>
