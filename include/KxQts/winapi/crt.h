/// \file
/// The C runtime functions that sources written for Windows call and that the system's C library
/// does not have: bounded copies, bounded printing, paths, numbers as text, dates.
///
/// Sizes count characters, the terminator included. Results are the numbers 22 (bad argument), 34
/// (does not fit) and 12 (no memory); some members return them, some store them in `errno` too, and
/// each says so. A call that fails leaves its destination as it was, unless it says otherwise: the
/// Windows habit of clearing it is not followed, and no invalid-parameter handler is called.
///
/// Conversions between 8-bit and wide text follow the locale that the program has set with
/// `setlocale`.
#pragma once

#include <KxQts/export.h>

#include <stddef.h>
#include <sys/types.h>

struct _SYSTEMTIME; // of <KxQts/winapi/types.h>

typedef int errno_t; ///< 0, or an error number

/// Sizes that `_splitpath` may fill, terminator included. `_MAX_DRIVE` is 64, not 3: a volume's
/// name takes the place of a drive letter.
#define _MAX_PATH 260
#define _MAX_DRIVE 64
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

/// As a count: as much as there is room for. The bounded copies refuse it, like every count above
/// the size.
#define _TRUNCATE ((size_t)-1)

/// Lets the compiler compare a format with the arguments behind it, as it does for `printf`.
#define KXQTS_PRINTF(text, first) __attribute__((__format__(__printf__, text, first)))

/// Appends a text.
/// \return 0; 22 for a null pointer; 34 when the whole does not fit. `errno` is left alone.
KXQTS_C_API errno_t strcat_s(char* dst, size_t size, const char* src);
/// \copydoc strcat_s
KXQTS_C_API errno_t wcscat_s(wchar_t* dst, size_t size, const wchar_t* src);

/// Copies a text.
/// \return 0; 22 for a null pointer; 34 when it does not fit. `errno` is left alone.
KXQTS_C_API errno_t strcpy_s(char* dst, size_t size, const char* src);
/// \copydoc strcpy_s
KXQTS_C_API errno_t wcscpy_s(wchar_t* dst, size_t size, const wchar_t* src);

/// Copies the first characters of a text and fills up with zeros, as `strncpy` does.
///
/// \param count Characters to write. **No terminator is added** when \a src has as many or more.
/// \return 0; 22 for a null pointer or a count of 0; 34 when \a count exceeds \a size, and also
/// when the whole of \a src, however little of it is asked for, does not fit. `errno` is left
/// alone.
KXQTS_C_API errno_t strncpy_s(char* dst, size_t size, const char* src, size_t count);
/// \copydoc strncpy_s
KXQTS_C_API errno_t wcsncpy_s(wchar_t* dst, size_t size, const wchar_t* src, size_t count);

/// Prints into a buffer. Formats are those of the system's `printf`: there is no `%I64d`.
///
/// The text is composed elsewhere and copied when it fits, so arguments may lie in \a dst.
/// \return **0** with `errno` 0, not the length. −1 with `errno` 22 for a null pointer, a size of 0
/// and a text that does not fit or cannot be printed.
KXQTS_C_API int sprintf_s(char* dst, size_t size, const char* format, ...) KXQTS_PRINTF(3, 4);

/// As \ref sprintf_s, keeping at most \a count − 1 characters.
///
/// \param count The terminator counts. 0 fails. A text that would not fit whole fails even when
/// what \a count leaves of it would fit; `_TRUNCATE` therefore truncates nothing.
KXQTS_C_API int _snprintf_s(char* dst, size_t size, size_t count, const char* format, ...)
    KXQTS_PRINTF(4, 5);

/// Makes a text upper case in place, by the program's locale.
/// \return \a s. `errno` is left alone.
KXQTS_C_API char* _strupr(char* s);
/// \copydoc _strupr
KXQTS_C_API wchar_t* _wcsupr(wchar_t* s);

/// Makes a text upper case in place, **and what follows it**.
///
/// \param size A text of as many characters, without its terminator, is still taken. The call goes
/// on past the terminator until it has met \a size + 1 zero characters, and changes whatever lies
/// between them: the memory behind the text must have them.
/// \return 0 with `errno` 0; 22 for a null pointer and 34 for a text that is too long, in `errno`
/// too.
KXQTS_C_API errno_t _strupr_s(char* s, size_t size);
/// \copydoc _strupr_s
KXQTS_C_API errno_t _wcsupr_s(wchar_t* s, size_t size);

/// Compares two texts without regard to case.
///
/// Both are converted to 8-bit text and compared byte by byte, as `strcasecmp` does: in a UTF-8
/// locale only ASCII letters lose their case. Texts of which one cannot be converted, or needs 260
/// bytes or more, are compared as wide text, as `wcscasecmp` does.
/// \return Less than, equal to or greater than 0. 2147483647 with `errno` 22 for a null pointer.
KXQTS_C_API int _wcsicmp(const wchar_t* a, const wchar_t* b);

/// Removes an empty directory.
/// \return 0. −1 with `errno` as left by `rmdir`; as left by `wcstombs` when the path cannot be
/// converted; `ENAMETOOLONG` when it needs 260 bytes or more; 22 for null.
KXQTS_C_API int _wrmdir(const wchar_t* path);

/// Tells an environment variable.
///
/// \return The value, of which at most 260 characters are kept. Null when there is no such
/// variable, and when its name (259 bytes at most) or its value cannot be converted.
/// \par Threads
/// The text is in a buffer that the next call of `_wgetenv` or `_wctime` overwrites: one thread at
/// a time.
KXQTS_C_API wchar_t* _wgetenv(const wchar_t* name);

/// Tells a time as text, in the 26 characters of `ctime`, the line end included.
/// \return The text; null where `ctime` gives none, and with `errno` 22 for a null pointer.
/// \par Threads
/// The text is in a buffer that the next call of `_wgetenv` or `_wctime` overwrites: one thread at
/// a time.
KXQTS_C_API wchar_t* _wctime(const time_t* timer);

/// Tells the local date and time, to the second: `wMilliseconds` is always 0.
/// \param lpSystemTime Null is filled with nothing.
KXQTS_C_API void GetLocalTime(struct _SYSTEMTIME* lpSystemTime);

/// Writes the local date, "month/day/year" with two digits each, and a terminator: 9 characters.
/// \return \a dst; null when that is null.
KXQTS_C_API char* _strdate(char* dst);
/// \copydoc _strdate
KXQTS_C_API wchar_t* _wstrdate(wchar_t* dst);

/// Writes the local time, "hour:minute:second" with two digits each, and a terminator: 9
/// characters.
/// \return \a dst; null when that is null.
KXQTS_C_API char* _strtime(char* dst);
/// \copydoc _strtime
KXQTS_C_API wchar_t* _wstrtime(wchar_t* dst);

/// As \ref _strdate, with a check.
/// \return **8**, the count of characters, with `errno` 0. −1 with `errno` 22 for null and for a
/// size of less than 9.
KXQTS_C_API errno_t _strdate_s(char* dst, size_t size);
/// \copydoc _strdate_s
KXQTS_C_API errno_t _wstrdate_s(wchar_t* dst, size_t size);

/// As \ref _strtime, with a check. Results are those of \ref _strdate_s.
KXQTS_C_API errno_t _strtime_s(char* dst, size_t size);
/// \copydoc _strtime_s
KXQTS_C_API errno_t _wstrtime_s(wchar_t* dst, size_t size);

/// Not provided: a call ends the process with a failed assertion.
KXQTS_C_API int _ismbblead(unsigned int c);

/// Writes a number as text.
///
/// \param dst 12 characters for base 10 and 33 for base 2 hold every 32-bit value; a `long` or
/// `unsigned long` of 64 bits takes up to 66. Nothing is checked.
/// \param base 2 to 36; digits above 9 are lower-case letters. Nothing is checked: a base of 0 is a
/// division by zero. A negative value has a minus sign in base 10. In other bases it is written as
/// its 32-bit pattern, or as its 64-bit pattern when it has more than 32 bits.
/// \return \a dst. `errno` is left alone.
KXQTS_C_API char* _itoa(int value, char* dst, int base);
/// \copydoc _itoa
KXQTS_C_API char* _ltoa(long value, char* dst, int base);
/// \copydoc _itoa
KXQTS_C_API char* _ultoa(unsigned long value, char* dst, int base);
/// \copydoc _itoa
KXQTS_C_API wchar_t* _itow(int value, wchar_t* dst, int base);
/// \copydoc _itoa
KXQTS_C_API wchar_t* _ltow(long value, wchar_t* dst, int base);
/// \copydoc _itoa
KXQTS_C_API wchar_t* _ultow(unsigned long value, wchar_t* dst, int base);

/// As \ref _itoa, with checks.
/// \return 0. 22 for null, a size of 0, a base outside 2 to 36, and a number that does not fit: its
/// last digits then stand in the buffer, in reverse order and without terminator. `errno` is left
/// alone.
KXQTS_C_API errno_t _itoa_s(int value, char* dst, size_t size, int base);
/// \copydoc _itoa_s
KXQTS_C_API errno_t _ltoa_s(long value, char* dst, size_t size, int base);
/// \copydoc _itoa_s
KXQTS_C_API errno_t _ultoa_s(unsigned long value, char* dst, size_t size, int base);
/// \copydoc _itoa_s
KXQTS_C_API errno_t _itow_s(int value, wchar_t* dst, size_t size, int base);
/// \copydoc _itoa_s
KXQTS_C_API errno_t _ltow_s(long value, wchar_t* dst, size_t size, int base);
/// \copydoc _itoa_s
KXQTS_C_API errno_t _ultow_s(unsigned long value, wchar_t* dst, size_t size, int base);

/// Splits a path into its parts.
///
/// | path                    | drive  | dir        | fname | ext      |
/// |-------------------------|--------|------------|-------|----------|
/// | `/a/b.tar.gz`           |        | `/a`       | `b`   | `tar.gz` |
/// | `dir/f`                 |        | `dir`      | `f`   |          |
/// | `/file.txt`             |        |            |       |          |
/// | `/Volumes/Disk/d/f.txt` | `umes` | `Disk/d`   | `f`   | `txt`    |
/// | `/Volumes`              | `umes` |            |       |          |
///
/// The extension starts at the first dot of the name and is given without it, the directory without
/// the separator behind it. A path right below the root has no parts at all. Of a path that begins
/// with `/Volumes` the drive is what stands from its fifth character up to the next separator.
/// \param drive, dir, fname, ext Each may be null, and is not wanted then; its size does not
/// matter.
/// \return 0 with `errno` 0. 22, in `errno` too, for a null path and for a size of 0 (outputs before
/// that one, or all of them, are empty then). 34, in `errno` too, when a part does not fit: all
/// outputs are empty then.
KXQTS_C_API errno_t _splitpath_s(const char* path, char* drive, size_t driveSize, char* dir,
                                 size_t dirSize, char* fname, size_t fnameSize, char* ext,
                                 size_t extSize);
/// \copydoc _splitpath_s
KXQTS_C_API errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, size_t driveSize,
                                  wchar_t* dir, size_t dirSize, wchar_t* fname, size_t fnameSize,
                                  wchar_t* ext, size_t extSize);

/// As \ref _splitpath_s with sizes of 64, 256, 256 and 256 characters.
KXQTS_C_API void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext);
/// \copydoc _splitpath
KXQTS_C_API void _wsplitpath(const wchar_t* path, wchar_t* drive, wchar_t* dir, wchar_t* fname,
                             wchar_t* ext);

/// Makes a path of its parts.
///
/// The drive counts when it contains "/Volumes". The path begins with a separator **always**:
/// `dir`, `file` and `txt` give `/dir/file.txt`. Separators and dots between the parts are put in
/// where they are missing, and are not doubled.
/// \param path Receives the path; its room is not checked.
/// \param drive, dir, fname, ext May be null.
/// \return \a path; \a ext when \a path is null. `errno` is left alone.
KXQTS_C_API char* _makepath(char* path, const char* drive, const char* dir, const char* fname,
                            const char* ext);
/// \copydoc _makepath
KXQTS_C_API wchar_t* _wmakepath(wchar_t* path, const wchar_t* drive, const wchar_t* dir,
                                const wchar_t* fname, const wchar_t* ext);

/// Makes a path of its parts, with checks.
///
/// Differs from \ref _makepath in two points: the path begins with a separator only when a drive is
/// given (`dir`, `file` and `txt` give `dir/file.txt`), and a file name is always followed by a
/// dot, with or without an extension.
/// \return 0 with `errno` 0. In `errno` too: 22 for a null path, a size of 0 and a path that does not
/// fit, 12 when there is no memory for \a size characters.
KXQTS_C_API errno_t _makepath_s(char* path, size_t size, const char* drive, const char* dir,
                                const char* fname, const char* ext);
/// \copydoc _makepath_s
KXQTS_C_API errno_t _wmakepath_s(wchar_t* path, size_t size, const wchar_t* drive,
                                 const wchar_t* dir, const wchar_t* fname, const wchar_t* ext);
