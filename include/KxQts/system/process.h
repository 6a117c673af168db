/// \file
/// Child processes in Qt's types. `CreateProcessA` and its siblings stand on these.
#pragma once

#include <KxQts/export.h>
#include <KxQts/handles/registry.h>
#include <KxQts/handles/storage.h>
#include <KxQts/threadsafety.h>
#include <KxQts/winapi/processes.h>

#include <QProcess>
#include <QString>
#include <QStringList>

#include <atomic>

namespace Korvex {
class KXQTS_LOCKABLE Lock;
class ProcessCare;
} // namespace Korvex

/// A child process behind the handles of `CreateProcessA` and `CreateProcessW`.
///
/// The static operations take any pointer and look it up before anything is read through it. A
/// process is known to them from its start until its end was noticed; the object itself stays until
/// the handle is closed. The object belongs to the thread that made it, as every `QProcess` does,
/// but any thread may close it.
class KXQTS_EXPORT WProcess : public QProcess, public Korvex::HandleStorage {
public:
    /// Makes a process that is not started yet, with a count of one.
    /// \param environment Strings of the form NAME=VALUE; empty for the caller's environment.
    /// \param workingDirectory Empty for the caller's.
    WProcess(const QStringList& environment, const QString& workingDirectory);
    ~WProcess() override;

    WProcess(const WProcess&) = delete;
    WProcess& operator=(const WProcess&) = delete;

    /// Puts the process into the registry and starts a command line, without waiting.
    /// \return 0; 14 when there is no program or working directory as asked for, and then nothing
    /// was started.
    int invoke(const QString& command);

    /// Emits QProcess's signal and notes that the program runs. The process's own start does the
    /// same. The signal to connect to is `QProcess::started`.
    void started();

    /// Emits QProcess's signal, notes that the process has ended and gives up one reference. The
    /// process's own end does the same; of the two only the first one gives a reference up.
    /// The signal to connect to is `QProcess::finished`.
    void finished(int exitCode, QProcess::ExitStatus exitStatus);

    /// Waits for the end of a process.
    /// \param ms Milliseconds as a signed number, −1 (`INFINITE`) for no limit.
    /// \return Whether it ended; false for what is no process that is known to run, and so for one
    /// whose end was noticed before. `errno` is left alone.
    static bool wait(WProcess* process, unsigned int ms);

    /// Gives up one reference. A process that runs stays, known to the static operations, until it
    /// ends. `errno` is left alone.
    /// \return `FALSE` for what is no process that is known to run, and when there was no reference
    /// left.
    static BOOL dispose(WProcess* process);

    static const QString sObjName; ///< The type tag, "WProcess"
    static Korvex::Lock sCritSect; ///< The class lock; its holder may take it again
    /// The processes that are about to start, or run and were not seen to end.
    static Korvex::HandleRegistry<WProcess> sObjectList KXQTS_GUARDED_BY(sCritSect);

    std::atomic<int> refCount{1};
    bool hasStarted KXQTS_GUARDED_BY(sCritSect) = false;  ///< "started" of the handle model
    bool hasFinished KXQTS_GUARDED_BY(sCritSect) = false; ///< "finished" of the handle model

private:
    friend class Korvex::ProcessCare;

    /// Who looks after the object.
    enum class Stage {
        Open,      ///< The client has it
        GivenUp,   ///< The client has closed it while threads wait for it
        TakenOver, ///< It is freed when the process has ended
        Done,      ///< It has ended, and is freed when the last thread that waits has left
    };

    Stage stage KXQTS_GUARDED_BY(sCritSect) = Stage::Open;
    bool isDriven KXQTS_GUARDED_BY(sCritSect) = false; ///< Some thread works with the object
    int visitors KXQTS_GUARDED_BY(sCritSect) = 0;      ///< Threads in \ref wait
    qint64 childId KXQTS_GUARDED_BY(sCritSect) = 0;    ///< Of the program that was started
};

/// Starts a program, see \ref CreateProcessA.
///
/// \param commandLine Not written to.
/// \param environment Empty for the caller's.
/// \param startupInfo,processInformation Must not be null.
KXQTS_EXPORT bool createProcess(const QString& applicationName, QString& commandLine,
                                SECURITY_ATTRIBUTES* processAttributes,
                                SECURITY_ATTRIBUTES* threadAttributes, bool inheritHandles,
                                unsigned int creationFlags, const QStringList& environment,
                                const QString& currentDirectory, STARTUPINFOW* startupInfo,
                                PROCESS_INFORMATION* processInformation);

/// Not supported, see \ref ShellExecuteA.
KXQTS_EXPORT void* shellExecute(void* window, const QString& operation, const QString& file,
                                const QString& parameters, const QString& directory,
                                int showCommand);
