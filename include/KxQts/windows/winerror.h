/// \file
/// What `#include <winerror.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/winapi/errors.h>

#define NO_ERROR 0
