#include "platform/linux/converter.h"

#include <cerrno>

namespace Korvex {

Converter::Converter(const char* to, const char* from, const char* locale)
    : descriptor(iconv_open(to, from)), replacements(locale ? openLocale(locale) : nullptr) {}

Converter::~Converter() {
    if (isOpen())
        iconv_close(descriptor);
}

bool Converter::isOpen() const {
    return descriptor != reinterpret_cast<iconv_t>(-1); // NOLINT(*-no-int-to-ptr)
}

int Converter::run(std::span<const char>& input, std::span<char>& room) {
    const LocaleScope scope(replacements.get());
    char* from = const_cast<char*>(input.data()); // never written to
    std::size_t left = input.size();
    char* to = room.data();
    std::size_t free = room.size();
    const bool failed = iconv(descriptor, &from, &left, &to, &free) == static_cast<std::size_t>(-1);
    input = input.last(left);
    room = room.last(free);
    return failed ? errno : 0;
}

int Converter::finish(std::span<char>& room) {
    char* to = room.data();
    std::size_t free = room.size();
    const bool failed =
        iconv(descriptor, nullptr, nullptr, &to, &free) == static_cast<std::size_t>(-1);
    room = room.last(free);
    return failed ? errno : 0;
}

void Converter::reset() {
    iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
}

} // namespace Korvex
