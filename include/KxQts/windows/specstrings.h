/// \file
/// What `#include <specstrings.h>` finds in a source written for Windows: notes on parameters.
#pragma once

#include <KxQts/windows/sal.h>
