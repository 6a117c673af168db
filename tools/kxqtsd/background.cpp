#include "background.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace Kxqtsd {

namespace {

[[noreturn]] void waitForReport(int report) {
    char ready = 0;
    _exit(read(report, &ready, 1) == 1 ? EXIT_SUCCESS : EXIT_FAILURE);
}

} // namespace

Background Background::enter() {
    int ends[2] = {-1, -1};
    const int failed = pipe2(ends, O_CLOEXEC);
    const pid_t daemon = failed == 0 ? fork() : -1;
    if (daemon < 0) {
        std::perror("kxqtsd");
        std::exit(EXIT_FAILURE);
    }
    const Korvex::Descriptor report(ends[0]);
    Korvex::Descriptor starter(ends[1]);
    if (daemon > 0) {
        starter.reset();
        waitForReport(report.get());
    }
    setsid();
    return Background(std::move(starter));
}

void Background::reportReady() {
    const Korvex::Descriptor nowhere(open("/dev/null", O_RDWR | O_CLOEXEC));
    for (int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere.get(), standard);
    const char ready = 1;
    (void)!write(starter.get(), &ready, 1);
    starter.reset();
}

} // namespace Kxqtsd
