/// \file
/// What `#include <basetsd.h>` finds in a source written for Windows: the integer types.
#pragma once

#include <KxQts/windows/windef.h>
