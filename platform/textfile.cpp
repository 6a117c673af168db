#include "platform/textfile.h"

#include "platform/descriptor.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Korvex {

std::optional<std::string> readTextFile(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen())
        return std::nullopt;
    std::string text;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = read(file.get(), buffer.data(), buffer.size())) != 0) {
        if (count < 0 && errno != EINTR)
            return std::nullopt;
        if (count > 0)
            text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

} // namespace Korvex
