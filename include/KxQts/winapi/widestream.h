/// \file
/// Streams and files by wide names, as the C runtime of Windows has them.
#pragma once

#include <KxQts/export.h>

#include <stdio.h>
#include <wchar.h>

/// Opens nothing: wide paths are not supported for streams, and callers fall back on other calls.
/// \return Null with `errno` 22, for every path that is not empty and for null arguments.
KXQTS_C_API FILE* _wfopen(const wchar_t* path, const wchar_t* mode);

/// Deletes a file as `DeleteFileW` does.
/// \return 0, or **1** (not −1) when it was not deleted; `errno` is that of `DeleteFileW`.
KXQTS_C_API int _wremove(const wchar_t* path);

/// Moves or renames as `MoveFileW` does, replacing a file of the new name.
/// \return 0, or **1** (not −1) on failure; `errno` is that of `MoveFileW`.
KXQTS_C_API int _wrename(const wchar_t* oldPath, const wchar_t* newPath);
