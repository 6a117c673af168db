#pragma once

#include <locale.h>
#include <memory>
#include <type_traits>

namespace Korvex {

struct FreeLocale {
    void operator()(locale_t locale) const { freelocale(locale); }
};

/// What a locale says about characters. Null when the system does not know the locale.
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

/// \param name The locale's name; empty for the user's.
[[nodiscard]] inline Locale openLocale(const char* name) {
    return Locale(newlocale(LC_CTYPE_MASK, name, nullptr));
}

/// Lets the calling thread use a locale for a scope. Null leaves it the one that it uses.
class LocaleScope {
public:
    explicit LocaleScope(locale_t locale) : previous(uselocale(locale)) {}
    ~LocaleScope() { uselocale(previous); }

    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    locale_t previous;
};

} // namespace Korvex
