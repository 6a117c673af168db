#pragma once

#include <wchar.h>

/// A format of Windows in the C library's words, to be freed; null with `errno` 12 without memory.
wchar_t* kxmain_toCFormat(const wchar_t* format);
