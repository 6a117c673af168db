#include "help.h"

#include <algorithm>

namespace Kx {

namespace {

constexpr Option helpOption{"help", "", "Show this help"};

std::string shownForm(const Option& option) {
    std::string form = "--" + std::string(option.name);
    if (!option.argument.empty())
        form += " " + std::string(option.argument);
    return form;
}

std::string line(std::string_view left, std::string_view right, std::size_t width) {
    std::string text = "  " + std::string(left);
    text.append(width - left.size() + 2, ' ');
    return text + std::string(right) + '\n';
}

void keepMatching(std::vector<std::string>& candidates, std::string_view start) {
    std::erase_if(candidates, [&](const std::string& word) { return !word.starts_with(start); });
}

std::vector<std::string> candidatesWithin(const Command& command,
                                          std::span<const std::string> words) {
    std::vector<std::string> found;
    if (words.back().starts_with("-")) {
        for (const Option& option : command.options)
            found.push_back("--" + std::string(option.name));
        found.emplace_back("--help");
    } else if (command.complete) {
        found = command.complete(words.first(words.size() - 1));
    }
    return found;
}

} // namespace

std::string generalHelp() {
    std::string text = "Usage: kx COMMAND [OPTION...] [OPERAND...]\n"
                       "       kx --help | --version\n\n"
                       "Shows what the KxQts library sees and keeps on this machine.\n\n"
                       "Commands:\n";
    std::size_t width = 0;
    for (const Command* command : commands())
        width = std::max(width, command->name.size());
    for (const Command* command : commands())
        text += line(command->name, command->summary, width);
    return text + "\nkx COMMAND --help tells about one of them.\n";
}

std::string helpFor(const Command& command) {
    std::string text = "Usage: kx " + std::string(command.name) + " [OPTION...]";
    if (!command.operands.empty())
        text += " " + std::string(command.operands);
    text += "\n\n" + std::string(command.summary) + ".\n";
    if (!command.details.empty())
        text += "\n" + std::string(command.details) + "\n";
    text += "\nOptions:\n";
    std::size_t width = shownForm(helpOption).size();
    for (const Option& option : command.options)
        width = std::max(width, shownForm(option).size());
    for (const Option& option : command.options)
        text += line(shownForm(option), option.help, width);
    return text + line(shownForm(helpOption), helpOption.help, width);
}

std::string completionsFor(std::span<const std::string> words) {
    std::vector<std::string> candidates;
    if (words.size() == 1) {
        for (const Command* command : commands())
            candidates.emplace_back(command->name);
        candidates.insert(candidates.end(), {"--help", "--version"});
    } else if (words.size() > 1) {
        if (const Command* command = commandNamed(words.front()))
            candidates = candidatesWithin(*command, words.subspan(1));
    }
    std::string text;
    if (!words.empty())
        keepMatching(candidates, words.back());
    for (const std::string& candidate : candidates)
        text += candidate + '\n';
    return text;
}

} // namespace Kx
