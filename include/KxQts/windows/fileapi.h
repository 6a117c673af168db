/// \file
/// What `#include <fileapi.h>` finds in a source written for Windows: the calls for files and
/// folders.
#pragma once

#include <KxQts/windows/windows.h>
