#pragma once

#include "arguments.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What `kx` ends with.
namespace Kx::Exit {
inline constexpr int Success = 0;
inline constexpr int Failure = 1; ///< What was asked for could not be done
inline constexpr int Usage = 2;   ///< The command line makes no sense
} // namespace Kx::Exit

namespace Kx {

/// One subcommand, as data: its help, the parsing of its options and the shell's completion come
/// from here.
struct Command {
    std::string_view name;
    std::string_view operands; ///< As the usage line shows them: "[NAME...]"
    std::string_view summary;  ///< One line without a full stop
    std::string_view details;  ///< Paragraphs for its own help; may be empty
    std::span<const Option> options;

    /// Does the work; writes results with the functions of output.h and throws \ref Failure or
    /// \ref UsageError for everything that goes wrong. \return What `kx` ends with.
    int (*run)(const Arguments&);

    /// The words that may come after those in \a operands, for completion; null when the shell's
    /// own completion of file names is right.
    std::vector<std::string> (*complete)(std::span<const std::string> operands) = nullptr;
};

/// All subcommands, in the order of the help.
std::span<const Command* const> commands();

/// The subcommand of a name; null when there is none.
const Command* commandNamed(std::string_view name);

} // namespace Kx
