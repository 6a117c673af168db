#pragma once

#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

/// What was asked for could not be done. The text ends up on standard error.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The command line makes no sense.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// An option that a subcommand knows.
struct Option {
    std::string_view name;     ///< Without the dashes: "remove"
    std::string_view argument; ///< What its argument is called ("NAME"); empty when it takes none
    std::string_view help;     ///< One line without a full stop
};

/// What the user wrote behind the name of a subcommand, byte for byte.
class Arguments {
public:
    /// Options may stand anywhere, with their argument behind "=" or in the next word; "--" ends
    /// them. Throws \ref UsageError for unknown options and for arguments missing or too many.
    Arguments(std::span<const Option> known, std::span<const std::string> words);

    [[nodiscard]] bool has(std::string_view option) const { return given.contains(option); }

    /// The argument of an option, of the last one if it was given more than once.
    [[nodiscard]] std::optional<std::string> argumentOf(std::string_view option) const;

    /// The words that are neither options nor their arguments.
    [[nodiscard]] const std::vector<std::string>& operands() const { return others; }

private:
    std::map<std::string, std::string, std::less<>> given;
    std::vector<std::string> others;
};

} // namespace Kx
