/// \file
/// What `#include <errhandlingapi.h>` finds in a source written for Windows: `GetLastError`.
#pragma once

#include <KxQts/windows/windows.h>
