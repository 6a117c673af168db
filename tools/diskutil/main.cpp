#include "commands.h"
#include "failure.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <exception>

namespace {

using DiskUtil::Command;
using DiskUtil::UsageError;

enum Exit { Success = 0, Failed = 1, Usage = 2 };

void printHelp() {
    std::puts("Usage: diskutil COMMAND [OPERAND...]\n"
              "Shows, mounts, unmounts and resizes volumes on disks.\n");
    for (const Command& command : DiskUtil::commands())
        std::printf("  diskutil %s %s\n      %s\n", command.name.data(), command.usage.data(),
                    command.help.data());
    std::puts(
        "\nNAME is a mount point, a device (disk1s2, /dev/disk1s2, sda2, /dev/sda2) or the name\n"
        "of a volume. SIZE is a number of bytes, such as 1003520B, 250M or 1.5G.\n"
        "Also: diskutil --help, diskutil --version");
}

const Command& commandNamed(const std::string& name) {
    const auto all = DiskUtil::commands();
    const auto found = std::ranges::find(all, name, &Command::name);
    if (found == all.end())
        throw UsageError("unknown command " + DiskUtil::printable(name));
    return *found;
}

void run(const std::vector<std::string>& words) {
    if (words.empty())
        throw UsageError("no command given");
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        printHelp();
    } else if (words[0] == "--version") {
        std::puts("diskutil (KxQts) " KXQTS_DISKUTIL_VERSION);
    } else {
        const Command& command = commandNamed(words[0]);
        if (words.size() - 1 != command.operands)
            throw UsageError(std::string(command.name) + " takes " +
                             (command.operands == 0 ? "nothing" : std::string(command.usage)));
        command.run({words.begin() + 1, words.end()});
    }
}

int runReportingErrors(const std::vector<std::string>& words) {
    try {
        run(words);
        return Success;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "diskutil: %s (see diskutil --help)\n", error.what());
        return Usage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "diskutil: %s\n", error.what());
        return Failed;
    }
}

} // namespace

int main(int argc, char** argv) {
    int result = runReportingErrors({argv + std::min(argc, 1), argv + argc});
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("diskutil: cannot write to standard output\n", stderr);
        result = Failed;
    }
    return result;
}
