/* Copies a file, reads the copy back and compares it with the source: wincopy SOURCE TARGET

   A program as it is written for Windows. It needs <windows.h> and <stdio.h> and nothing else. */

#include <windows.h>

#include <stdio.h>

#define BLOCK_SIZE (1024 * 1024)

static char block[BLOCK_SIZE];
static char block_of_copy[BLOCK_SIZE];

static void report(const char* what) {
    fprintf(stderr, "wincopy: %s (error %lu)\n", what, (unsigned long)GetLastError());
}

static HANDLE open_file(const char* path, DWORD access, DWORD disposition) {
    HANDLE file =
        CreateFileA(path, access, FILE_SHARE_READ, NULL, disposition, FILE_ATTRIBUTE_NORMAL, NULL);
    return file == INVALID_HANDLE_VALUE ? NULL : file;
}

/* Opens the target empty, whether or not there is one already. */
static HANDLE open_target(const char* path) {
    const DWORD access = GENERIC_READ | GENERIC_WRITE;
    HANDLE file = open_file(path, access, TRUNCATE_EXISTING);
    return file ? file : open_file(path, access, CREATE_ALWAYS);
}

static void show_progress(const char* what, LONGLONG done, LONGLONG all) {
    static int shown = -1;
    const int percent = all > 0 ? (int)(done * 100 / all) : 100;
    if (percent / 10 != shown / 10 || shown < 0) {
        printf("%s%d%%", shown < 0 ? what : " ", percent);
        fflush(stdout);
    }
    shown = percent;
    if (done == all) {
        printf("\n");
        shown = -1;
    }
}

static void show_throughput(LONGLONG bytes, DWORD milliseconds) {
    const double seconds = milliseconds > 0 ? milliseconds / 1000.0 : 0.001;
    printf("%.2f seconds, %.0f megabytes a second\n", seconds, (double)bytes / 1e6 / seconds);
}

static BOOL copy(HANDLE source, HANDLE target, LONGLONG size) {
    LONGLONG done = 0;
    while (done < size) {
        DWORD got = 0, put = 0;
        if (!ReadFile(source, block, BLOCK_SIZE, &got, NULL) || got == 0)
            return FALSE;
        if (!WriteFile(target, block, got, &put, NULL) || put != got)
            return FALSE;
        done += put;
        show_progress("Copied ", done, size);
    }
    return FlushFileBuffers(target);
}

static BOOL same_bytes(const char* one, const char* other, DWORD count) {
    char difference = 0;
    DWORD i;
    for (i = 0; i < count; ++i)
        difference |= one[i] ^ other[i];
    return difference == 0;
}

/* Reads the same block of both files. */
static BOOL same_block(HANDLE source, HANDLE target, LONGLONG at, DWORD count) {
    DWORD got = 0, got_of_copy = 0;
    LARGE_INTEGER place;
    place.QuadPart = at;
    return SetFilePointerEx(source, place, NULL, FILE_BEGIN) &&
           SetFilePointerEx(target, place, NULL, FILE_BEGIN) &&
           ReadFile(source, block, count, &got, NULL) && got == count &&
           ReadFile(target, block_of_copy, count, &got_of_copy, NULL) && got_of_copy == count &&
           same_bytes(block, block_of_copy, count);
}

/* Compares from the end to the beginning. */
static BOOL compare(HANDLE source, HANDLE target, LONGLONG size) {
    LONGLONG left = size;
    while (left > 0) {
        const DWORD count = (DWORD)(left % BLOCK_SIZE ? left % BLOCK_SIZE : BLOCK_SIZE);
        left -= count;
        if (!same_block(source, target, left, count))
            return FALSE;
        show_progress("Compared ", size - left, size);
    }
    return TRUE;
}

static BOOL copy_and_compare(HANDLE source, HANDLE target) {
    LARGE_INTEGER size, size_of_copy;
    DWORD started;
    if (!GetFileSizeEx(source, &size)) {
        report("cannot tell the size of the source");
        return FALSE;
    }
    printf("The source has %lld bytes.\n", size.QuadPart);
    started = GetTickCount();
    if (!copy(source, target, size.QuadPart)) {
        report("cannot copy");
        return FALSE;
    }
    show_throughput(size.QuadPart, GetTickCount() - started);

    started = GetTickCount();
    if (!GetFileSizeEx(target, &size_of_copy) || size_of_copy.QuadPart != size.QuadPart ||
        !compare(source, target, size.QuadPart)) {
        report("the copy differs");
        return FALSE;
    }
    show_throughput(2 * size.QuadPart, GetTickCount() - started);
    return TRUE;
}

/* Whoever waits for the copy to be done would wait for such an event. */
static BOOL announce(void) {
    HANDLE done = CreateEventA(NULL, FALSE, FALSE, NULL);
    BOOL heard;
    if (done == NULL || done == INVALID_HANDLE_VALUE)
        return FALSE;
    heard = SetEvent(done) && WaitForSingleObject(done, 1000) == WAIT_OBJECT_0;
    return CloseHandle(done) && heard;
}

int main(int argc, char** argv) {
    HANDLE source, target;
    BOOL good = FALSE;
    if (argc != 3) {
        fprintf(stderr, "usage: wincopy SOURCE TARGET\n");
        return 2;
    }
    source = open_file(argv[1], GENERIC_READ, OPEN_EXISTING);
    if (!source) {
        report("cannot open the source");
        return 1;
    }
    target = open_target(argv[2]);
    if (target) {
        good = copy_and_compare(source, target);
        good = CloseHandle(target) && good;
    } else {
        report("cannot open the target");
    }
    good = CloseHandle(source) && good;
    if (good && announce())
        printf("The copy is complete and equal to its source.\n");
    return good ? 0 : 1;
}
