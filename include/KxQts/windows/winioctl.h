/// \file
/// What `#include <winioctl.h>` finds in a source written for Windows: the numbers of requests to
/// drivers, which \ref DeviceIoControl passes on as they are.
#pragma once

#include <KxQts/windows/windows.h>

#define CTL_CODE(device, function, method, access)                                                 \
    (((DWORD)(device) << 16) | ((DWORD)(access) << 14) | ((DWORD)(function) << 2) | (DWORD)(method))
#define DEVICE_TYPE_FROM_CTL_CODE(code) (((DWORD)(code)&0xFFFF0000u) >> 16)
#define METHOD_FROM_CTL_CODE(code) ((DWORD)(code)&3u)

typedef DWORD DEVICE_TYPE;

#define METHOD_BUFFERED 0u
#define METHOD_IN_DIRECT 1u
#define METHOD_OUT_DIRECT 2u
#define METHOD_NEITHER 3u

#define FILE_ANY_ACCESS 0u
#define FILE_SPECIAL_ACCESS FILE_ANY_ACCESS
#define FILE_READ_ACCESS 1u
#define FILE_WRITE_ACCESS 2u

#define FILE_DEVICE_CD_ROM 0x00000002u
#define FILE_DEVICE_DISK 0x00000007u
#define FILE_DEVICE_DISK_FILE_SYSTEM 0x00000008u
#define FILE_DEVICE_FILE_SYSTEM 0x00000009u
#define FILE_DEVICE_VIRTUAL_DISK 0x00000024u
#define FILE_DEVICE_UNKNOWN 0x00000022u
#define FILE_DEVICE_MASS_STORAGE 0x0000002Du
