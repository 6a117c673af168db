/// \file
/// Every type, constant and function of the Windows face, for C99 and C++, without Qt.
///
/// Functions keep their decorated names (`CreateFileA`, `CreateFileW`). The plain ones
/// (`CreateFile`) are macros, which only the headers in `KxQts/windows/` define: they are what
/// `#include <windows.h>` finds in a source that was written for Windows.
#pragma once

#include <KxQts/winapi/crt.h>
#include <KxQts/winapi/errors.h>
#include <KxQts/winapi/eventlog.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/filesystem.h>
#include <KxQts/winapi/find.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/helpers.h>
#include <KxQts/winapi/kernelcontrol.h>
#include <KxQts/winapi/knowndirectories.h>
#include <KxQts/winapi/modules.h>
#include <KxQts/winapi/mutexes.h>
#include <KxQts/winapi/paths.h>
#include <KxQts/winapi/processes.h>
#include <KxQts/winapi/profiles.h>
#include <KxQts/winapi/registry.h>
#include <KxQts/winapi/security.h>
#include <KxQts/winapi/systeminfo.h>
#include <KxQts/winapi/text.h>
#include <KxQts/winapi/threads.h>
#include <KxQts/winapi/types.h>
#include <KxQts/winapi/volumes.h>
#include <KxQts/winapi/widestream.h>
