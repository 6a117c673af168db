/// \file
/// What `#include <Shellapi.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/shellapi.h>
