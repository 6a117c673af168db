/// \file
/// What the C runtime of Windows has in many of its headers beside the C library's: the bounded
/// calls and their kin, the words of the compiler, and for C++ the forms that take the size from
/// the array.
///
/// The headers of this folder that bear the name of one of the C library's include that one and
/// this one. Names with an underscore stand for the C library's call of the same meaning where
/// there is one; they are macros when the arguments are the same, and functions in place when they
/// are not.
#pragma once

#include <KxQts/winapi/crt.h>
#include <KxQts/windows/kxarrays.h>
#include <KxQts/windows/kxkeywords.h>
