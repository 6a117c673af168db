/// \file
/// What `#include <sdkddkver.h>` finds in a source written for Windows: the numbers of versions,
/// which mean nothing here.
#pragma once
