/// \file
/// What `#include <handleapi.h>` finds in a source written for Windows: `CloseHandle`.
#pragma once

#include <KxQts/windows/windows.h>
