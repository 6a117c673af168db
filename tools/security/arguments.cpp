#include "arguments.h"

#include "failure.h"

#include <string_view>

namespace Security {

Arguments::Arguments(const std::string& options, int count, char** words) {
    bool isOver = false;
    for (int i = 0; i < count; ++i) {
        const std::string_view word = words[i];
        if (isOver || word.size() < 2 || word.front() != '-') {
            others.push_back(words[i]);
            continue;
        }
        isOver = word == "--";
        if (isOver)
            continue;
        if (options.find(word[1]) == std::string::npos)
            throw UsageError("unknown option -" + std::string(1, word[1]));
        if (word.size() == 2 && i + 1 == count)
            throw UsageError("option -" + std::string(1, word[1]) + " needs an argument");
        given[word[1]] = word.size() > 2 ? words[i] + 2 : words[++i];
    }
}

char* Arguments::valueOf(char option) const {
    const auto found = given.find(option);
    if (found == given.end())
        throw UsageError("option -" + std::string(1, option) + " is missing");
    return found->second;
}

std::string Arguments::operand(const std::string& name) const {
    if (others.size() != 1 || *others.front() == '\0')
        throw UsageError((others.size() > 1 ? "more than one " : "no ") + name);
    return others.front();
}

void Arguments::requireNoOperand() const {
    if (!others.empty())
        throw UsageError(std::string("unknown argument ") + others.front());
}

} // namespace Security
