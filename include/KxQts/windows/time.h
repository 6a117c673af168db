/// \file
/// What `#include <time.h>` finds in a source written for Windows: the C library's header, and
/// what Windows has in it beside.
#pragma once

#pragma GCC system_header // for the next line, which is no standard C
#include_next <time.h>

#include <KxQts/windows/kxcrt.h>
#include <errno.h>

#define __time64_t time_t

#define _time64 time
#define _mktime64 mktime
#define _localtime64 localtime
#define _gmtime64 gmtime
#define _ctime64 ctime
#define _difftime64 difftime
#define _mkgmtime timegm
#define _tzset tzset

// Sources for several systems have macros of these names for the others: those stay in force.
#ifndef localtime_s
/// Takes a time apart, in local time. \return 0; 22 for a null pointer; else as left by the system.
static inline errno_t localtime_s(struct tm* parts, const time_t* moment) {
    if (!parts || !moment)
        return EINVAL;
    return localtime_r(moment, parts) ? 0 : errno;
}
#endif

#ifndef gmtime_s
/// As \ref localtime_s, in universal time.
static inline errno_t gmtime_s(struct tm* parts, const time_t* moment) {
    if (!parts || !moment)
        return EINVAL;
    return gmtime_r(moment, parts) ? 0 : errno;
}
#endif

#ifndef asctime_s
/// A date and a time as text, in the 26 characters of `asctime`, terminator and line end included.
/// \return 0; 22 for a null pointer and for less room.
static inline errno_t asctime_s(char* dst, size_t size, const struct tm* parts) {
    if (!dst || size < 26 || !parts)
        return EINVAL;
    return asctime_r(parts, dst) ? 0 : EINVAL;
}
#endif

#ifndef ctime_s
/// As \ref asctime_s, of a time.
static inline errno_t ctime_s(char* dst, size_t size, const time_t* moment) {
    if (!dst || size < 26 || !moment)
        return EINVAL;
    return ctime_r(moment, dst) ? 0 : EINVAL;
}
#endif
