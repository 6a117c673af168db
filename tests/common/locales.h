#pragma once

#include <optional>
#include <string>

namespace KxTest {

/// Sets an environment variable for a scope.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* variable, const std::string& value);
    ~EnvironmentVariable();

    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    const char* const name;
    std::optional<std::string> before;
};

/// Lets the C library find the locales that were built for the tests: de_DE.ISO-8859-1,
/// de_DE.UTF-8, ja_JP.EUC-JP, ja_JP.SHIFT_JIS, he_IL.CP1255, zh_HK.BIG5-HKSCS, en_US.IBM037 and
/// de_DE.KXQTS-UNKNOWN.
class TestLocales {
public:
    TestLocales();

private:
    EnvironmentVariable folder;
};

} // namespace KxTest
