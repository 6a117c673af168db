/// \file
/// What the C runtime of Windows has in many of its headers beside the C library's: the bounded
/// calls and their kin, the words of the compiler, and for C++ the forms that take the size from
/// the array.
///
/// The headers of this folder that bear the name of one of the C library's include that one and
/// this one. Names with an underscore stand for the C library's call of the same meaning where
/// there is one.
#pragma once

// Sources for several systems have macros of these names for the others: those stay in force.
#pragma push_macro("strcpy_s")
#undef strcpy_s
#pragma push_macro("strcat_s")
#undef strcat_s
#pragma push_macro("strncpy_s")
#undef strncpy_s
#pragma push_macro("sprintf_s")
#undef sprintf_s
#pragma push_macro("_snprintf_s")
#undef _snprintf_s
#pragma push_macro("_itoa")
#undef _itoa

#include <KxQts/winapi/crt.h>
#include <KxQts/windows/kxarrays.h>
#include <KxQts/windows/kxkeywords.h>

#pragma pop_macro("strcpy_s")
#pragma pop_macro("strcat_s")
#pragma pop_macro("strncpy_s")
#pragma pop_macro("sprintf_s")
#pragma pop_macro("_snprintf_s")
#pragma pop_macro("_itoa")
