#include "commands.h"
#include "failure.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <sys/prctl.h>

namespace {

using Security::Command;

enum Exit { Success = 0, Failed = 1, Usage = 2 };

void printHelp() {
    std::puts("Usage: security COMMAND [ARGUMENT...]\n"
              "Makes, locks and unlocks keychains, and moves certificates between them.\n");
    for (const Command& command : Security::commands())
        std::printf("  security %s %s\n      %s\n", command.name.data(), command.usage.data(),
                    command.help.data());
    std::puts("\nWithout -p, the password is read from the terminal or from standard input.\n"
              "Also: security --help, security --version");
}

const Command& commandNamed(std::string_view name) {
    const auto all = Security::commands();
    const auto found = std::ranges::find(all, name, &Command::name);
    if (found == all.end())
        throw Security::UsageError("unknown command " + std::string(name));
    return *found;
}

void run(int count, char** words) {
    if (count == 0)
        throw Security::UsageError("no command given");
    const std::string_view first = words[0];
    if (first == "--help" || first == "-h" || first == "help") {
        printHelp();
    } else if (first == "--version") {
        std::puts("security (KxQts) " KXQTS_SECURITY_VERSION);
    } else {
        const Command& command = commandNamed(first);
        command.run(Security::Arguments(command.options, count - 1, words + 1));
    }
}

int runReportingErrors(int count, char** words) {
    try {
        run(count, words);
        return Success;
    } catch (const Security::UsageError& error) {
        std::fprintf(stderr, "security: %s (see security --help)\n", error.what());
        return Usage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "security: %s\n", error.what());
        return Failed;
    }
}

/// Passwords and keys are nothing for a memory image on a disk.
void leaveNoMemoryImage() {
    prctl(PR_SET_DUMPABLE, 0);
}

} // namespace

int main(int argc, char** argv) {
    leaveNoMemoryImage();
    int result = runReportingErrors(argc > 0 ? argc - 1 : 0, argv + 1);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("security: cannot write to standard output\n", stderr);
        result = Failed;
    }
    return result;
}
