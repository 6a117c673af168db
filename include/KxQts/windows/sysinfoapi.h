/// \file
/// What `#include <sysinfoapi.h>` finds in a source written for Windows: the facts about the
/// system.
#pragma once

#include <KxQts/windows/windows.h>
