/// \file
/// What `#include <WinIoCtl.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/windows/winioctl.h>
