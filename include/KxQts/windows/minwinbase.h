/// \file
/// What `#include <minwinbase.h>` finds in a source written for Windows: the structures.
#pragma once

#include <KxQts/windows/windows.h>
