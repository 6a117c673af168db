/// \file
/// What `#include <io.h>` finds in a source written for Windows: the system's own calls for
/// descriptors under their plain names (`access`, `close`, `read`, `write`) and with an underscore.
#pragma once

#include <KxQts/windows/kxkeywords.h>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#define _open(...) open(__VA_ARGS__)

static inline int _access(const char* path, int mode) {
    return access(path, mode);
}
static inline int _chmod(const char* path, int mode) {
    return chmod(path, (mode_t)mode);
}
static inline int _close(int file) {
    return close(file);
}
static inline int _commit(int file) {
    return fsync(file);
}
static inline int _creat(const char* path, int mode) {
    return creat(path, (mode_t)mode);
}
static inline int _dup(int file) {
    return dup(file);
}
static inline int _dup2(int file, int other) {
    return dup2(file, other) < 0 ? -1 : 0;
}
static inline int _isatty(int file) {
    return isatty(file);
}
static inline long _lseek(int file, long distance, int from) {
    return lseek(file, distance, from);
}
static inline int _read(int file, void* buffer, unsigned count) {
    return (int)read(file, buffer, count);
}
static inline int _unlink(const char* path) {
    return unlink(path);
}
static inline int _write(int file, const void* buffer, unsigned count) {
    return (int)write(file, buffer, count);
}

#define _O_RDONLY O_RDONLY
#define _O_WRONLY O_WRONLY
#define _O_RDWR O_RDWR
#define _O_APPEND O_APPEND
#define _O_CREAT O_CREAT
#define _O_EXCL O_EXCL
#define _O_TRUNC O_TRUNC
#define _O_BINARY 0 ///< There is nothing but binary files
#define _O_TEXT 0   ///< Line ends are not translated
#define O_BINARY _O_BINARY
#define O_TEXT _O_TEXT

#define _S_IREAD S_IRUSR
#define _S_IWRITE S_IWUSR
