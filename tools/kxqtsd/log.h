#pragma once

#include <string>

namespace Kxqtsd {

/// Where the daemon's log lines go: the system log, or standard error when it runs in the
/// foreground (where a service manager takes them, with their level in front).
namespace Log {

void toStandardError();

void info(const std::string& line);
void warning(const std::string& line);
void error(const std::string& line);

} // namespace Log

} // namespace Kxqtsd
