/// \file
/// What `#include <SDKDDKVer.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/sdkddkver.h>
