/// \file
/// What `#include <synchapi.h>` finds in a source written for Windows: events, mutexes and `Sleep`.
#pragma once

#include <KxQts/windows/windows.h>
