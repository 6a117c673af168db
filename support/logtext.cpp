#include <KxQts/support/log.h>

#include "support/latin1format.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <new>
#include <unistd.h>

namespace Korvex {

namespace {

/// The local time as lines begin with it; empty when the locale's name of the month is too long.
const char* timeText(std::array<char, 20>& buffer) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return std::strftime(buffer.data(), buffer.size(), "%b %d %T", &local) > 0 ? buffer.data() : "";
}

/// The format of a whole line. Title and time are a part of it, percent signs and all.
QByteArray lineFormat(bool withTime, const QString& title, const char* format) {
    QByteArray line;
    if (withTime) {
        std::array<char, 20> buffer{};
        line.append(timeText(buffer)).append(' ');
    }
    return line.append(title.toLatin1().constData()).append(": ").append(format).append('\n');
}

void writeText(const WLogFile& log, const char* format, va_list args) {
    const QByteArray text = formatLatin1(format, args);
    (void)!write(log.fd, text.constData(), static_cast<std::size_t>(text.size()));
}

void writeLine(const WLogFile& log, bool withTime, const char* format, va_list args) {
    writeText(log, lineFormat(withTime, log.title, format).constData(), args);
}

/// Runs what writes to a log. Logging never fails its caller: without memory the text is lost.
template <class Writing>
void attempt(const WLogFile& log, Writing writing) {
    constexpr int closed = -1;
    if (log.fd == closed)
        return;
    const int error = errno;
    try {
        writing();
    } catch (const std::bad_alloc&) {
        // Lost, as said.
    }
    errno = error;
}

void logLine(const char* format, va_list args) {
    attempt(__kx_glog, [&] { writeLine(__kx_glog, true, format ? format : "", args); });
}

void print(const char* format, va_list args) {
    attempt(__kx_glog, [&] { writeText(__kx_glog, format ? format : "", args); });
}

} // namespace

void WLogFile::messageV(bool withTime, const QString& format, va_list args) {
    attempt(*this, [&] { writeLine(*this, withTime, format.toLatin1().constData(), args); });
}

void WLogFile::printV(const QString& format, va_list args) {
    attempt(*this, [&] { writeText(*this, format.toLatin1().constData(), args); });
}

void IOLog(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    logLine(fmt, args);
    va_end(args);
}

void IOTxt(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    logLine(fmt, args);
    va_end(args);
}

void IOLog1(bool enabled, const char* fmt, ...) {
    if (!enabled)
        return;
    va_list args;
    va_start(args, fmt);
    logLine(fmt, args);
    va_end(args);
}

void IOPrint(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    print(fmt, args);
    va_end(args);
}

void IOPrint1(bool enabled, const char* fmt, ...) {
    if (!enabled)
        return;
    va_list args;
    va_start(args, fmt);
    print(fmt, args);
    va_end(args);
}

} // namespace Korvex
