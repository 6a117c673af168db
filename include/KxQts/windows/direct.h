/// \file
/// What `#include <direct.h>` finds in a source written for Windows: the calls for directories. The
/// plain names (`chdir`, `getcwd`, `rmdir`) are the system's own.
#pragma once

#include <KxQts/windows/kxcrt.h>

#include <sys/stat.h>
#include <unistd.h>

static inline int _chdir(const char* path) {
    return chdir(path);
}
static inline char* _getcwd(char* buffer, int size) {
    return getcwd(buffer, (size_t)size);
}
static inline int _rmdir(const char* path) {
    return rmdir(path);
}

/// Makes a directory. \return 0; −1 with `errno` as left by `mkdir`.
static inline int _mkdir(const char* path) {
    return mkdir(path, 0777);
}
