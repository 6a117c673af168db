/// \file
/// What `#include <Windows.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/windows.h>
