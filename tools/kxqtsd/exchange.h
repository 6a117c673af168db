#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Kxqtsd {

/// What an exchange makes of its bytes; sessions do the rest.
class Exchange {
public:
    /// Takes the response to a request, from the daemon's one thread. It may come at any time, also
    /// when the session has ended long since.
    using Respond = std::function<void(std::string)>;

    virtual ~Exchange() = default;

    /// How many bytes a request has, as far as \a received tells: of a whole request its size.
    /// \return Nothing for a request that is not taken.
    [[nodiscard]] virtual std::optional<std::size_t> sizeOf(const std::string& received) const = 0;

    /// Does what a whole request asks for.
    virtual void answer(const std::string& request, Respond respond) = 0;

    /// The response to a request that is not served. \param received At least its command code.
    [[nodiscard]] virtual std::string refuse(const std::string& received,
                                             unsigned status) const = 0;

    /// Gives up what is going on. \param done Called when nothing is, any more.
    virtual void windUp(std::function<void()> done) = 0;
};

} // namespace Kxqtsd
