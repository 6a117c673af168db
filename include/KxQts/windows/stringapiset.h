/// \file
/// What `#include <stringapiset.h>` finds in a source written for Windows: the conversions of text.
#pragma once

#include <KxQts/windows/windows.h>
