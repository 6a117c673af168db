#include "common/locales.h"

#include <cstdlib>

namespace KxTest {

EnvironmentVariable::EnvironmentVariable(const char* variable, const std::string& value)
    : name(variable) {
    if (const char* present = std::getenv(name))
        before = present;
    setenv(name, value.c_str(), 1);
}

EnvironmentVariable::~EnvironmentVariable() {
    if (before)
        setenv(name, before->c_str(), 1);
    else
        unsetenv(name);
}

TestLocales::TestLocales() : folder("LOCPATH", KXQTS_TEST_LOCALES) {}

} // namespace KxTest
