#include "background.h"
#include "daemon.h"
#include "limits.h"
#include "log.h"

#include <array>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int usageError = 2;

struct Options {
    bool isForeground = false;
    std::chrono::seconds commandTime = Kxqtsd::Limits::commandTime;
};

constexpr const char* help =
    "Usage: kxqtsd [OPTION]...\n"
    "The root daemon of the KxQts library.\n"
    "\n"
    "  --foreground            stay in the foreground and log to standard error\n"
    "  --command-time=SECONDS  end commands after this time (3600)\n"
    "  --help                  show this text\n"
    "  --version               show the version\n";

[[noreturn]] void show(const char* text) {
    std::fputs(text, stdout);
    std::exit(EXIT_SUCCESS);
}

[[noreturn]] void failUsage(const char* text) {
    std::fprintf(stderr, "kxqtsd: %sTry 'kxqtsd --help'.\n", text);
    std::exit(usageError);
}

std::chrono::seconds timeFrom(const char* text) {
    int seconds = 0;
    const char* const end = text + std::strlen(text);
    const auto [rest, error] = std::from_chars(text, end, seconds);
    if (error != std::errc() || rest != end || seconds < 1)
        failUsage("the command time is a number of seconds\n");
    return std::chrono::seconds(seconds);
}

Options optionsFrom(int argc, char** argv) {
    static const std::array<option, 5> known{{{"foreground", no_argument, nullptr, 'f'},
                                              {"command-time", required_argument, nullptr, 't'},
                                              {"help", no_argument, nullptr, 'h'},
                                              {"version", no_argument, nullptr, 'v'},
                                              {nullptr, 0, nullptr, 0}}};
    Options options;
    for (int choice = 0; (choice = getopt_long(argc, argv, "", known.data(), nullptr)) != -1;) {
        if (choice == 'f')
            options.isForeground = true;
        else if (choice == 't')
            options.commandTime = timeFrom(optarg);
        else if (choice == 'h')
            show(help);
        else if (choice == 'v')
            show("kxqtsd (KxQts) " KXQTSD_VERSION "\n");
        else
            failUsage("");
    }
    if (optind != argc)
        failUsage("no operands are taken\n");
    return options;
}

/// Commands must not inherit what the daemon's starter left open.
void keepDescriptorsFromCommands() {
    constexpr unsigned firstBeyondStandard = 3;
    close_range(firstBeyondStandard, ~0u, CLOSE_RANGE_CLOEXEC);
}

/// Gives commands the same surroundings whoever started the daemon. The library's own variable
/// stays: it says where the machine-wide store is.
void tidyEnvironment() {
    const char* const root = std::getenv("KXQTS_ROOT");
    const std::string keptRoot = root ? root : "";
    clearenv();
    setenv("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin", 1);
    setenv("HOME", "/root", 1);
    if (root)
        setenv("KXQTS_ROOT", keptRoot.c_str(), 1);
    umask(S_IWGRP | S_IWOTH);
    if (chdir("/") != 0)
        Kxqtsd::Log::warning("cannot change to the root folder");
}

/// In all threads, and before there is a second one: the loop takes these signals in turn.
void blockSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace

int main(int argc, char** argv) {
    const Options options = optionsFrom(argc, argv);
    std::optional<Kxqtsd::Background> background;
    if (options.isForeground)
        Kxqtsd::Log::toStandardError();
    else
        background = Kxqtsd::Background::enter();
    keepDescriptorsFromCommands();
    tidyEnvironment();
    blockSignals();
    Kxqtsd::Daemon daemon(options.commandTime);
    if (!daemon.open())
        return EXIT_FAILURE;
    if (background)
        background->reportReady();
    daemon.run();
    return EXIT_SUCCESS;
}
