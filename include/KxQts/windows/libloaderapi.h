/// \file
/// What `#include <libloaderapi.h>` finds in a source written for Windows: the calls for modules.
#pragma once

#include <KxQts/windows/windows.h>
