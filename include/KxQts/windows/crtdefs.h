/// \file
/// What `#include <crtdefs.h>` finds in a source written for Windows: what all of the C runtime has
/// in common.
#pragma once

#include <KxQts/windows/kxcrt.h>
