/// \file
/// What `#include <mbctype.h>` finds in a source written for Windows: `_ismbblead`.
#pragma once

#include <KxQts/windows/kxcrt.h>
