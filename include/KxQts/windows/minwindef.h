/// \file
/// What `#include <minwindef.h>` finds in a source written for Windows: the basic types.
#pragma once

#include <KxQts/windows/windef.h>
