#pragma once

#include <map>
#include <string>
#include <vector>

namespace Security {

/// The words behind a subcommand. They stay where the system has put them, so that a password among
/// them can be wiped there.
class Arguments {
public:
    /// \param options The letters of the options that the subcommand knows, each with an argument.
    /// Options may stand anywhere; "--" ends them. Throws \ref UsageError for anything else.
    Arguments(const std::string& options, int count, char** words);

    [[nodiscard]] bool has(char option) const { return given.contains(option); }

    /// The argument of an option that must be there, of the last one if it was given more than
    /// once.
    [[nodiscard]] char* valueOf(char option) const;

    /// The only word that is neither an option nor the argument of one. \param name What it is.
    [[nodiscard]] std::string operand(const std::string& name) const;

    /// Throws \ref UsageError when there is such a word.
    void requireNoOperand() const;

private:
    std::map<char, char*> given;
    std::vector<char*> others;
};

} // namespace Security
