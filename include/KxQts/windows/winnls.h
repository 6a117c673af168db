/// \file
/// What `#include <winnls.h>` finds in a source written for Windows: languages, dates and times as
/// text.
#pragma once

#include <KxQts/windows/windows.h>
