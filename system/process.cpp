#include <KxQts/system/process.h>

#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/scopes.h"
#include "system/childcollector.h"
#include "system/processcare.h"
#include "system/startable.h"

#include <KxQts/errors.h>

#include <QMetaObject>

#include <cerrno>
#include <memory>
#include <new>

namespace Error = Korvex::Error;

using Korvex::LockGuard;
using Korvex::ProcessCare;

const QString WProcess::sObjName = QStringLiteral("WProcess");
constinit Korvex::Lock WProcess::sCritSect;
Korvex::HandleRegistry<WProcess> WProcess::sObjectList;

WProcess::WProcess(const QStringList& environment, const QString& workingDirectory) {
    setObjectName(sObjName);
    if (!environment.isEmpty())
        setEnvironment(environment);
    setWorkingDirectory(workingDirectory);
    // Directly: the thread that notices may not be the one that the object belongs to.
    connect(
        this, &QProcess::started, this, [this] { ProcessCare::noteStart(*this); },
        Qt::DirectConnection);
    connect(
        this, &QProcess::finished, this, [this] { ProcessCare::noteEnd(*this); },
        Qt::DirectConnection);
}

WProcess::~WProcess() {
    // The end of a process that a client deletes while it runs concerns nobody any more.
    disconnect(this, nullptr, this, nullptr);
    const LockGuard guard(sCritSect);
    sObjectList.remove(this);
}

int WProcess::invoke(const QString& command) {
    {
        const LockGuard guard(sCritSect);
        sObjectList.append(this);
        Korvex::ChildCollector::instance().makeRoomFor(sObjectList.size());
        Korvex::HandleAddresses::setUse(this, Korvex::HandleAddresses::Use::Process);
    }
    if (!Korvex::isStartable(command, workingDirectory()))
        return Error::CannotStart;
    startCommand(command, QIODevice::ReadWrite);
    return Error::None;
}

// Both notes are taken by what the constructor connects to the signals.
void WProcess::started() {
    // A signal that only QProcess itself may emit by its name.
    QMetaObject::invokeMethod(this, "started", Qt::DirectConnection);
}

void WProcess::finished(int exitCode, QProcess::ExitStatus exitStatus) {
    emit QProcess::finished(exitCode, exitStatus);
}

bool WProcess::wait(WProcess* process, unsigned int ms) try {
    const Korvex::ErrorNumberKept untilReturned;
    return ProcessCare::Visit(process).waitForEnd(static_cast<int>(ms));
} catch (const std::bad_alloc&) {
    return false;
}

BOOL WProcess::dispose(WProcess* process) {
    const LockGuard guard(sCritSect);
    if (!Korvex::isLive(sObjectList, process))
        return FALSE;
    const Korvex::ErrorNumberKept untilReturned;
    const int left = --process->refCount;
    if (left == 0)
        ProcessCare::giveUp(*process);
    return left >= 0 ? TRUE : FALSE;
}

namespace {

constexpr int startTime = 10'000;

/// Starts a new process and waits until it runs. \return Null when it does not; it is freed then.
WProcess* started(std::unique_ptr<WProcess> process, const QString& commandLine) {
    const bool runs =
        process->invoke(commandLine) == Error::None && process->waitForStarted(startTime);
    WProcess* handle = process.release();
    if (runs)
        return handle;
    handle->kill(); // in case that it is about to start still
    WProcess::dispose(handle);
    return nullptr;
}

} // namespace

bool createProcess(const QString&, QString& commandLine, SECURITY_ATTRIBUTES*, SECURITY_ATTRIBUTES*,
                   bool, unsigned int, const QStringList& environment,
                   const QString& currentDirectory, STARTUPINFOW* startupInfo,
                   PROCESS_INFORMATION* processInformation) try {
    errno = Error::InvalidArgument;
    if (!processInformation || !startupInfo)
        return false;
    *processInformation = {};
    WProcess* process =
        started(std::make_unique<WProcess>(environment, currentDirectory), commandLine);
    errno = process ? Error::None : Error::CannotStart;
    if (!process)
        return false;
    processInformation->hProcess = process;
    processInformation->dwProcessId = static_cast<DWORD>(process->processId());
    return true;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return false;
}
