// What runs as root when a program asks for an administrator's rights: starts one program and ends,
// so that who asked knows whether it runs without waiting for its end. The policy file names this
// program; pkexec has asked the user by the time it begins.

#include <spawn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

enum { Started = 0, NoProgram = 1, NotStarted = 2 };

int main(int argc, char** argv) {
    // Where a name without a path leads to is decided by who asks, not by root's search path.
    if (argc < 2 || argv[1][0] != '/') {
        (void)fputs("usage: kxqts-run /PATH/TO/PROGRAM [ARGUMENT...]\n", stderr);
        return NoProgram;
    }
    pid_t child = 0;
    const int error = posix_spawn(&child, argv[1], NULL, NULL, argv + 1, environ);
    if (error != 0)
        (void)fprintf(stderr, "kxqts-run: %s: %s\n", argv[1], strerror(error));
    return error == 0 ? Started : NotStarted;
}
