/// \file
/// What `#include <Tchar.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/tchar.h>
