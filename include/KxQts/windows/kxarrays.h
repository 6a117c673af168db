/// \file
/// The bounded calls for C++, with an array as the destination, which tells its size itself.
/// Results are those of the calls with a size.
#pragma once

#include <KxQts/winapi/crt.h>

#ifdef __cplusplus

// The C library's headers may be included in a block with C linkage.
extern "C++" {

#define KXQTS_COPY_TO_ARRAY(call, character)                                                       \
    template <size_t Size>                                                                         \
    inline errno_t call(character(&dst)[Size], const character* src) {                             \
        return call(dst, Size, src);                                                               \
    }
KXQTS_COPY_TO_ARRAY(strcpy_s, char)
KXQTS_COPY_TO_ARRAY(strcat_s, char)
KXQTS_COPY_TO_ARRAY(wcscpy_s, wchar_t)
KXQTS_COPY_TO_ARRAY(wcscat_s, wchar_t)
#undef KXQTS_COPY_TO_ARRAY

template <size_t Size>
inline errno_t strncpy_s(char (&dst)[Size], const char* src, size_t count) {
    return strncpy_s(dst, Size, src, count);
}
template <size_t Size>
inline errno_t wcsncpy_s(wchar_t (&dst)[Size], const wchar_t* src, size_t count) {
    return wcsncpy_s(dst, Size, src, count);
}

template <size_t Size, typename... Arguments>
inline int sprintf_s(char (&dst)[Size], const char* format, Arguments... arguments) {
    return sprintf_s(dst, Size, format, arguments...);
}
template <size_t Size, typename... Arguments>
inline int _snprintf_s(char (&dst)[Size], size_t count, const char* format,
                       Arguments... arguments) {
    return _snprintf_s(dst, Size, count, format, arguments...);
}

#define KXQTS_CHANGE_ARRAY(call, character)                                                        \
    template <size_t Size>                                                                         \
    inline errno_t call(character(&text)[Size]) {                                                  \
        return call(text, Size);                                                                   \
    }
KXQTS_CHANGE_ARRAY(_strupr_s, char)
KXQTS_CHANGE_ARRAY(_strdate_s, char)
KXQTS_CHANGE_ARRAY(_strtime_s, char)
KXQTS_CHANGE_ARRAY(_wcsupr_s, wchar_t)
KXQTS_CHANGE_ARRAY(_wstrdate_s, wchar_t)
KXQTS_CHANGE_ARRAY(_wstrtime_s, wchar_t)
#undef KXQTS_CHANGE_ARRAY

#define KXQTS_NUMBER_TO_ARRAY(call, number, character)                                             \
    template <size_t Size>                                                                         \
    inline errno_t call(number value, character(&dst)[Size], int base) {                           \
        return call(value, dst, Size, base);                                                       \
    }
KXQTS_NUMBER_TO_ARRAY(_itoa_s, int, char)
KXQTS_NUMBER_TO_ARRAY(_ltoa_s, long, char)
KXQTS_NUMBER_TO_ARRAY(_ultoa_s, unsigned long, char)
KXQTS_NUMBER_TO_ARRAY(_itow_s, int, wchar_t)
KXQTS_NUMBER_TO_ARRAY(_ltow_s, long, wchar_t)
KXQTS_NUMBER_TO_ARRAY(_ultow_s, unsigned long, wchar_t)
#undef KXQTS_NUMBER_TO_ARRAY

#define KXQTS_PATH_OF_ARRAYS(split, make, character)                                               \
    template <size_t Drive, size_t Dir, size_t Name, size_t Ext>                                   \
    inline errno_t split(const character* path, character(&drive)[Drive], character(&dir)[Dir],    \
                         character(&fname)[Name], character(&ext)[Ext]) {                          \
        return split(path, drive, Drive, dir, Dir, fname, Name, ext, Ext);                         \
    }                                                                                              \
    template <size_t Size>                                                                         \
    inline errno_t make(character(&path)[Size], const character* drive, const character* dir,      \
                        const character* fname, const character* ext) {                            \
        return make(path, Size, drive, dir, fname, ext);                                           \
    }
KXQTS_PATH_OF_ARRAYS(_splitpath_s, _makepath_s, char)
KXQTS_PATH_OF_ARRAYS(_wsplitpath_s, _wmakepath_s, wchar_t)
#undef KXQTS_PATH_OF_ARRAYS
}
#endif
