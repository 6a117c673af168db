/* Makes, shows, copies, moves and removes a small tree of files:

     wintree make TREE
     wintree show TREE
     wintree copy TREE OTHER
     wintree move TREE OTHER     moves every file; OTHER's files are replaced
     wintree protect TREE        makes the files read-only
     wintree release TREE        makes them writable again
     wintree remove TREE

   A program as it is written for Windows. It needs <windows.h>, <direct.h>, <stdio.h> and
   <string.h> and nothing else. */

#include <direct.h>
#include <windows.h>

#include <stdio.h>
#include <string.h>

#define COUNT_OF(array) (sizeof(array) / sizeof((array)[0]))

/* In the order in which folders can be made; they are removed from the end. */
static const char* const folders[] = {"", "/letters", "/letters/old", "/accounts"};
static const char* const files[] = {"/readme.txt", "/letters/first.txt", "/letters/second.txt",
                                    "/letters/old/first.txt", "/accounts/sums.dat"};

typedef BOOL (*FileAction)(const char* path, const char* other);

static BOOL report(const char* what, const char* path) {
    fprintf(stderr, "wintree: cannot %s %s (error %lu)\n", what, path,
            (unsigned long)GetLastError());
    return FALSE;
}

static void join(char* path, const char* tree, const char* name) {
    strncpy(path, tree, MAX_PATH - 1);
    path[MAX_PATH - 1] = 0;
    strncat(path, name, MAX_PATH - 1 - strlen(path));
}

/* Does something to every file; the same file of the other tree comes along where there is one. */
static BOOL with_files(const char* tree, const char* other, FileAction action) {
    char path[MAX_PATH], other_path[MAX_PATH];
    BOOL good = TRUE;
    size_t i;
    for (i = 0; i < COUNT_OF(files); ++i) {
        join(path, tree, files[i]);
        join(other_path, other ? other : "", files[i]);
        good = action(path, other_path) && good;
    }
    return good;
}

/* There may be some already; where a folder is missing in the end, its files cannot be made. */
static void make_folders(const char* tree) {
    char path[MAX_PATH];
    size_t i;
    for (i = 0; i < COUNT_OF(folders); ++i) {
        join(path, tree, folders[i]);
        CreateDirectory(path, NULL);
    }
}

static BOOL remove_folders(const char* tree) {
    char path[MAX_PATH];
    size_t i;
    for (i = COUNT_OF(folders); i-- > 0;) {
        join(path, tree, folders[i]);
        if (!RemoveDirectory(path))
            return report("remove the folder", path);
    }
    return TRUE;
}

/* Each file has its own path for contents. */
static BOOL make_file(const char* path, const char* ignored) {
    DWORD written = 0;
    const DWORD size = (DWORD)strlen(path);
    HANDLE file = CreateFile(path, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
    BOOL good;
    (void)ignored;
    if (!file || file == INVALID_HANDLE_VALUE)
        return report("make", path);
    good = WriteFile(file, path, size, &written, NULL) && written == size;
    good = CloseHandle(file) && good;
    return good || report("write", path);
}

static BOOL show_file(const char* path, const char* ignored) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    ULARGE_INTEGER written;
    (void)ignored;
    if (!GetFileAttributesEx(path, GetFileExInfoStandard, &data)) {
        printf("  %-36s attributes %08lx\n", path, (unsigned long)GetFileAttributes(path));
        return TRUE;
    }
    written.LowPart = data.ftLastWriteTime.dwLowDateTime;
    written.HighPart = data.ftLastWriteTime.dwHighDateTime;
    printf("  %-36s attributes %08lx %6lu bytes, written at %llu seconds\n", path,
           (unsigned long)data.dwFileAttributes, (unsigned long)data.nFileSizeLow,
           (unsigned long long)(written.QuadPart / 10000000));
    return TRUE;
}

static int count_matches(const char* pattern) {
    WIN32_FIND_DATA data;
    HANDLE search = FindFirstFile(pattern, &data);
    int count = 1;
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    while (FindNextFile(search, &data))
        ++count;
    FindClose(search);
    return count;
}

/* Searches the tree's uppermost folder, from inside it. */
static BOOL show_counts(const char* tree) {
    if (chdir(tree) != 0)
        return report("enter", tree);
    printf("  %d entries, %d of them texts; letters has a folder \"old\": %s\n",
           count_matches("*") - count_matches(".") - count_matches(".."), count_matches("*.TXT"),
           GetFileAttributes("letters/old") != INVALID_FILE_ATTRIBUTES ? "yes" : "no");
    return TRUE;
}

static BOOL copy_file(const char* path, const char* other) {
    return CopyFile(path, other, TRUE) || report("copy to", other);
}

static BOOL move_file(const char* path, const char* other) {
    return MoveFile(path, other) || report("move", path);
}

static BOOL protect_file(const char* path, const char* ignored) {
    (void)ignored;
    return SetFileAttributes(path, FILE_ATTRIBUTE_READONLY) || report("protect", path);
}

static BOOL release_file(const char* path, const char* ignored) {
    (void)ignored;
    return SetFileAttributes(path, FILE_ATTRIBUTE_NORMAL) || report("release", path);
}

/* Files that were moved away before are no failure. */
static BOOL remove_file(const char* path, const char* ignored) {
    (void)ignored;
    return DeleteFile(path) || GetFileAttributes(path) == INVALID_FILE_ATTRIBUTES ||
           report("delete", path);
}

static BOOL with_one_tree(const char* command, const char* tree) {
    if (strcmp(command, "make") == 0) {
        make_folders(tree);
        return with_files(tree, NULL, make_file);
    }
    if (strcmp(command, "show") == 0)
        return with_files(tree, NULL, show_file) && show_counts(tree);
    if (strcmp(command, "protect") == 0)
        return with_files(tree, NULL, protect_file);
    if (strcmp(command, "release") == 0)
        return with_files(tree, NULL, release_file);
    if (strcmp(command, "remove") == 0)
        return with_files(tree, NULL, remove_file) && remove_folders(tree);
    return FALSE;
}

static BOOL with_two_trees(const char* command, const char* tree, const char* other) {
    make_folders(other);
    if (strcmp(command, "copy") == 0)
        return with_files(tree, other, copy_file);
    if (strcmp(command, "move") == 0)
        return with_files(tree, other, move_file);
    return FALSE;
}

int main(int argc, char** argv) {
    BOOL good;
    if (argc == 3) {
        good = with_one_tree(argv[1], argv[2]);
    } else if (argc == 4) {
        good = with_two_trees(argv[1], argv[2], argv[3]);
    } else {
        fprintf(stderr, "usage: wintree COMMAND TREE [OTHER]\n");
        return 2;
    }
    return good ? 0 : 1;
}
