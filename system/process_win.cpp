// The application name, security attributes, the inherit flag, creation flags and the contents of
// the start-up information are ignored on purpose.

#include <KxQts/errors.h>
#include <KxQts/system/process.h>

#include "handles/classes.h"
#include "support/wintext.h"

#include <cerrno>
#include <new>
#include <string>

using Korvex::windowsText;

namespace {

/// The strings of a block that an empty one ends.
template <class Character>
QStringList listFrom(const void* block) {
    QStringList strings;
    const auto* next = static_cast<const Character*>(block);
    while (next && *next != 0) {
        strings.append(windowsText(next));
        next += std::char_traits<Character>::length(next) + 1;
    }
    return strings;
}

/// A process is created by the same steps from either kind of text.
template <class Character>
BOOL create(const Character* application, const Character* commandLine, const void* environment,
            const Character* directory, STARTUPINFOW* startupInfo,
            PROCESS_INFORMATION* processInformation) try {
    QString command = windowsText(commandLine);
    return createProcess(windowsText(application), command, nullptr, nullptr, false, 0,
                         listFrom<Character>(environment), windowsText(directory), startupInfo,
                         processInformation)
               ? TRUE
               : FALSE;
} catch (const std::bad_alloc&) {
    errno = Korvex::Error::NoMemory;
    return FALSE;
}

} // namespace

BOOL CreateProcessA(LPCSTR lpApplicationName, LPSTR lpCommandLine, LPSECURITY_ATTRIBUTES,
                    LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID lpEnvironment,
                    LPCSTR lpCurrentDirectory, LPSTARTUPINFOA lpStartupInfo,
                    LPPROCESS_INFORMATION lpProcessInformation) {
    // Only whether there is start-up information counts.
    STARTUPINFOW startupInfo{};
    return create<char>(lpApplicationName, lpCommandLine, lpEnvironment, lpCurrentDirectory,
                        lpStartupInfo ? &startupInfo : nullptr, lpProcessInformation);
}

BOOL CreateProcessW(LPCWSTR lpApplicationName, LPWSTR lpCommandLine, LPSECURITY_ATTRIBUTES,
                    LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID lpEnvironment,
                    LPCWSTR lpCurrentDirectory, LPSTARTUPINFOW lpStartupInfo,
                    LPPROCESS_INFORMATION lpProcessInformation) {
    return create<wchar_t>(lpApplicationName, lpCommandLine, lpEnvironment, lpCurrentDirectory,
                           lpStartupInfo, lpProcessInformation);
}

BOOL GetExitCodeProcess(HANDLE h, LPDWORD lpExitCode) {
    const Korvex::TaggedHandle handle(h);
    const bool isProcess =
        handle.handleClass() && handle.handleClass()->tag == QLatin1String("QProcess");
    if (!isProcess || !lpExitCode) {
        errno = Korvex::Error::InvalidArgument;
        return FALSE;
    }
    const auto* process = static_cast<const QProcess*>(static_cast<const QObject*>(h));
    *lpExitCode = process->state() == QProcess::NotRunning ? static_cast<DWORD>(process->exitCode())
                                                           : STILL_ACTIVE;
    return TRUE;
}

HINSTANCE ShellExecuteA(HWND hwnd, LPCSTR operation, LPCSTR file, LPCSTR parameters,
                        LPCSTR directory, INT showCommand) {
    return shellExecute(hwnd, windowsText(operation), windowsText(file), windowsText(parameters),
                        windowsText(directory), showCommand);
}

HINSTANCE ShellExecuteW(HWND hwnd, LPCWSTR operation, LPCWSTR file, LPCWSTR parameters,
                        LPCWSTR directory, INT showCommand) {
    return shellExecute(hwnd, windowsText(operation), windowsText(file), windowsText(parameters),
                        windowsText(directory), showCommand);
}

void* shellExecute(void*, const QString&, const QString&, const QString&, const QString&, int) {
    errno = Korvex::Error::Unsupported;
    return nullptr;
}
