/// \file
/// Where the windows of the calling process stand among those of others.
///
/// A process counts as an application when a window manager (EWMH) shows windows of it. Without a
/// display or without such a window there is none, and the calls say so. Each call asks the display
/// anew and keeps no connection to it. Any thread may call.
#pragma once

#include <KxQts/export.h>
#include <KxQts/platformtypes.h>

/// Brings the calling process's foremost window to the front.
/// \param show False does nothing and is true: a process is never hidden.
/// \return Whether the window manager was asked without an error.
KXQTS_EXPORT bool showCurrentProcess(bool show);

/// Whether the calling process has a window that is not minimised. False on every error.
KXQTS_EXPORT bool isCurrentProcessVisible();

/// Brings the calling process's foremost window to the front.
/// \return Whether there is one and the window manager was asked without an error.
KXQTS_EXPORT bool setFrontCurrentProcess();

/// Asks whether another application follows the calling process in the window manager's list, which
/// is in the order of their first windows.
/// \param isNext Receives the answer: false also for a process that is in no list.
/// \return 0; another error number, with \a isNext left alone, when the list cannot be read.
KXQTS_EXPORT OSErr isNextCurrentProcess(bool& isNext);
