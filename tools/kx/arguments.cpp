#include "arguments.h"

#include <algorithm>

namespace Kx {

namespace {

/// A word such as "--name" or "--name=argument", taken apart.
struct GivenOption {
    std::string name;
    std::optional<std::string> argument;
};

bool isOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

GivenOption takenApart(const std::string& word) {
    if (!word.starts_with("--"))
        throw UsageError("unknown option " + word);
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos)
        return {word.substr(2), std::nullopt};
    return {word.substr(2, equals - 2), word.substr(equals + 1)};
}

const Option& optionNamed(std::span<const Option> known, std::string_view name) {
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const Option& option) { return option.name == name; });
    if (found == known.end())
        throw UsageError("unknown option --" + std::string(name));
    return *found;
}

} // namespace

Arguments::Arguments(std::span<const Option> known, std::span<const std::string> words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--") {
            others.insert(others.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          words.end());
            return;
        }
        if (!isOption(words[i])) {
            others.push_back(words[i]);
            continue;
        }
        GivenOption option = takenApart(words[i]);
        const bool takesArgument = !optionNamed(known, option.name).argument.empty();
        if (option.argument && !takesArgument)
            throw UsageError("option --" + option.name + " takes no argument");
        if (!option.argument && takesArgument) {
            if (++i == words.size())
                throw UsageError("option --" + option.name + " needs an argument");
            option.argument = words[i];
        }
        given.insert_or_assign(option.name, option.argument.value_or(""));
    }
}

std::optional<std::string> Arguments::argumentOf(std::string_view option) const {
    const auto found = given.find(option);
    return found == given.end() ? std::nullopt : std::optional(found->second);
}

} // namespace Kx
