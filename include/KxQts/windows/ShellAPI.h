/// \file
/// What `#include <ShellAPI.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/shellapi.h>
