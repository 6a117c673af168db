#pragma once

#include "arguments.h"

#include <string>
#include <string_view>

namespace Security {

/// A password, wiped with its holder.
class Password {
public:
    /// Takes the password from the option -p, and wipes it there; without that option from a
    /// terminal, without showing it, or else from the first line of standard input.
    /// \param isNew Whether it is asked for twice at a terminal.
    Password(const Arguments& arguments, bool isNew);
    ~Password();

    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;

    [[nodiscard]] std::string_view text() const { return bytes; }

private:
    std::string bytes;
};

} // namespace Security
