/// \file
/// What `#include <shellapi.h>` finds in a source written for Windows: `ShellExecute`.
#pragma once

#include <KxQts/windows/windows.h>
