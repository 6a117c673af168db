#include <KxQts/system/commandline.h>

#include <KxQts/daemon/command.h>
#include <KxQts/errors.h>
#include <KxQts/support/text.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constexpr unsigned runCommandLine = 6;
constexpr unsigned parameterCount = 4;

std::atomic<bool> isRootMode{false};

} // namespace

int executeCommandLineTool(const QString& tool, const QStringList& arguments, QString& output,
                           unsigned int timeout) try {
    QString command = tool;
    for (const QString& argument : arguments)
        command += QLatin1Char(' ') + argument;
    if (isRootMode) {
        const WCString line(command);
        if (!command.isEmpty() && *static_cast<const char*>(line) == '\0')
            throw std::bad_alloc(); // the shell would make a success of nothing
        return std::system(line);   // NOLINT(bugprone-*,cert-env33-c)
    }
    const unsigned parameters[parameterCount] = {};
    return CallDaemonSession(runCommandLine, timeout, &command, parameters, parameterCount,
                             &output);
} catch (const std::bad_alloc&) {
    return Korvex::Error::NoMemory;
}

void setRootModeFor_executeCommandLineTool() {
    isRootMode = true;
}
