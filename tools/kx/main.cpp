#include "command.h"
#include "help.h"
#include "output.h"

#include <algorithm>
#include <exception>

namespace {

using Words = std::vector<std::string>;

int runCommand(const Kx::Command& command, std::span<const std::string> words) {
    const auto endOfOptions = std::find(words.begin(), words.end(), "--");
    if (std::find(words.begin(), endOfOptions, "--help") != endOfOptions) {
        Kx::print(Kx::helpFor(command));
        return Kx::Exit::Success;
    }
    return command.run(Kx::Arguments(command.options, words));
}

int runGeneralOption(const Words& words) {
    const std::string& first = words.front();
    if (first == "--help" || first == "-h")
        Kx::print(Kx::generalHelp());
    else if (first == "--version")
        Kx::print("kx (KxQts) " KX_VERSION "\n");
    else if (first == "--complete") // what the shell's completion asks
        Kx::print(Kx::completionsFor(std::span(words).subspan(1)));
    else
        throw Kx::UsageError("unknown option " + first);
    return Kx::Exit::Success;
}

int run(const Words& words) {
    if (words.empty())
        throw Kx::UsageError("no command given");
    if (words.front().starts_with("-"))
        return runGeneralOption(words);
    const Kx::Command* command = Kx::commandNamed(words.front());
    if (!command)
        throw Kx::UsageError("unknown command " + Kx::printable(words.front()));
    return runCommand(*command, std::span(words).subspan(1));
}

/// The name that errors are reported under.
std::string subjectOf(const Words& words) {
    return !words.empty() && Kx::commandNamed(words.front()) ? words.front() : std::string();
}

int runReportingErrors(const Words& words) {
    const std::string subject = subjectOf(words);
    try {
        return run(words);
    } catch (const Kx::UsageError& error) {
        const std::string help = subject.empty() ? "kx --help" : "kx " + subject + " --help";
        Kx::printError(subject, Kx::printable(error.what()) + " (see " + help + ")");
        return Kx::Exit::Usage;
    } catch (const std::exception& error) {
        Kx::printError(subject, Kx::printable(error.what()));
        return Kx::Exit::Failure;
    }
}

} // namespace

int main(int argc, char** argv) {
    int result = runReportingErrors(Words(argv + std::min(argc, 1), argv + argc));
    if (!Kx::flushOutput()) {
        Kx::printError("", "cannot write to standard output");
        result = Kx::Exit::Failure;
    }
    return result;
}
