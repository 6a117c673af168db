/// \file
/// What `#include <ioapiset.h>` finds in a source written for Windows: `DeviceIoControl`.
#pragma once

#include <KxQts/windows/winioctl.h>
