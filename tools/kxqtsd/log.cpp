#include "log.h"

#include <cstdio>
#include <syslog.h>

namespace Kxqtsd::Log {

namespace {

bool isOnStandardError = false;

void write(int level, const std::string& line) {
    if (isOnStandardError)
        std::fprintf(stderr, "<%d>kxqtsd: %s\n", level, line.c_str());
    else
        syslog(LOG_DAEMON | level, "%s", line.c_str());
}

} // namespace

void toStandardError() {
    isOnStandardError = true;
}

void info(const std::string& line) {
    write(LOG_INFO, line);
}

void warning(const std::string& line) {
    write(LOG_WARNING, line);
}

void error(const std::string& line) {
    write(LOG_ERR, line);
}

} // namespace Kxqtsd::Log
