/// \file
/// What `#include <processthreadsapi.h>` finds in a source written for Windows: processes and
/// threads.
#pragma once

#include <KxQts/windows/windows.h>
