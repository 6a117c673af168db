// Fields that programs reach by name: their order and sizes, counted from the first one.

#include "either.h"
#include "files/search.h"

#include <KxQts/KxQts.h>

#include <pthread.h>
#include <type_traits>

namespace {

using namespace Korvex;

// A string of Qt 6 is three words: its block, its characters and their count.
constexpr std::size_t text = either<12, 24>;
static_assert(sizeof(QString) == text && sizeof(QStringList) == text);

static_assert(sizeof(WCString) == either<8, 16> && offsetof(WCString, str) == 0 &&
              offsetof(WCString, size) == either<4, 8> && sizeof(WCString::size) == 4);
static_assert(sizeof(WWString) == either<8, 16> && offsetof(WWString, str) == 0 &&
              offsetof(WWString, size) == either<4, 8> && sizeof(WWString::size) == 4);

static_assert(sizeof(WLogFile::fd) == 4 && offsetof(WLogFile, fd) == 0);
static_assert(offsetof(WLogFile, title) == either<4, 8> && sizeof(WLogFile) == either<4, 8> + text);

// Reference counts are 32 bits in every class that has one.
static_assert(sizeof(WEvent::refCount) == 4 && sizeof(WMutex::refCount) == 4);
static_assert(sizeof(WThread::refCount) == 4 && sizeof(WProcess::refCount) == 4);
static_assert(sizeof(WLibrary::refCount) == 4 && sizeof(infoMessage::refCount) == 4);

static_assert(offsetof(WEvent, event) == offsetof(WEvent, refCount) + either<4, 8>);

constexpr std::size_t mutexFields = offsetof(WMutex, refCount);
static_assert(offsetof(WMutex, name) == mutexFields + either<4, 8>);
static_assert(offsetof(WMutex, sysV) == offsetof(WMutex, name) + text);
static_assert(offsetof(WMutex, semHandle) == offsetof(WMutex, sysV) + either<4, 8>);
static_assert(sizeof(WMutex::sysV) == 1 && sizeof(WMutex::semHandle) == either<4, 8>);

constexpr std::size_t threadFields = offsetof(WThread, refCount);
static_assert(sizeof(WThread::hasStarted) == 1 && sizeof(WThread::hasFinished) == 1);
static_assert(offsetof(WThread, hasStarted) == threadFields + 4);
static_assert(offsetof(WThread, hasFinished) == threadFields + 5);
static_assert(offsetof(WThread, startRoutine) == threadFields + 8);
static_assert(offsetof(WThread, parameter) == threadFields + either<12, 16>);

// Behind the pointer to the virtual operations.
static_assert(offsetof(Thread, stopRequested) == either<4, 8>);
static_assert(offsetof(Thread, thread) == either<8, 16>);
static_assert(offsetof(Thread, attr) == either<12, 24>);
static_assert(offsetof(Thread, priority) == either<12, 24> + sizeof(pthread_attr_t));
static_assert(offsetof(Thread, routine) == offsetof(Thread, priority) + either<4, 8>);
static_assert(offsetof(Thread, context) == offsetof(Thread, routine) + either<4, 8>);
static_assert(sizeof(Thread::stopRequested) == 1 && sizeof(Thread::priority) == 4);

static_assert(sizeof(Semaphore) == 12 && offsetof(Semaphore, semId) == 0 &&
              offsetof(Semaphore, state) == 4 && offsetof(Semaphore, lastError) == 8);

static_assert(sizeof(Search::index) == 4 && offsetof(Search, names) == 0 &&
              offsetof(Search, index) == text);

static_assert(sizeof(DynModule) == either<16, 32> && offsetof(DynModule, state) == 0 &&
              offsetof(DynModule, image) == either<4, 8> &&
              offsetof(DynModule, objectFileImage) == either<8, 16> &&
              offsetof(DynModule, module) == either<12, 24>);
static_assert(sizeof(DynModule::state) == 4);

// Records of the daemon's exchanges are the same bytes in both widths: a 32-bit program asks a
// 64-bit daemon.
static_assert(sizeof(wdaemon_response) == 1036 && offsetof(wdaemon_response, command) == 0 &&
              offsetof(wdaemon_response, status) == 4 && offsetof(wdaemon_response, length) == 8 &&
              offsetof(wdaemon_response, data) == 12);
static_assert(sizeof(_D_REG_REQUEST) == 2332 && offsetof(_D_REG_REQUEST, body) == 4);
static_assert(sizeof(_D_REG_RESPONSE) == 28 && offsetof(_D_REG_RESPONSE, body) == 4);

// Behind the pointer to the virtual operations, and the socket.
static_assert(sizeof(WDaemonSocket) == either<16, 24> &&
              offsetof(WDaemonSocket, timeout) == either<8, 16> &&
              offsetof(WDaemonSocket, port) == either<12, 20> && sizeof(WDaemonSocket::port) == 2);
static_assert(sizeof(ZRDaemonSocket) == either<16, 24> &&
              offsetof(ZRDaemonSocket, timeout) == either<8, 16> &&
              offsetof(ZRDaemonSocket, lastError) == either<12, 20>);
static_assert(sizeof(ZRDaemonRegistrySocket) == either<16, 24> &&
              offsetof(ZRDaemonRegistrySocket, timeout) == either<8, 16> &&
              offsetof(ZRDaemonRegistrySocket, lastError) == either<12, 20>);

static_assert(std::is_base_of_v<IRefCounter, infoMessage>);
static_assert(offsetof(infoMessage, title) == offsetof(infoMessage, refCount) + either<4, 8>);
static_assert(offsetof(infoMessage, message) == offsetof(infoMessage, title) + text);
static_assert(offsetof(infoMessage, owner) == offsetof(infoMessage, message) + text);
static_assert(offsetof(infoMessage, mode) == offsetof(infoMessage, owner) + either<4, 8>);
static_assert(offsetof(infoMessage, level) == offsetof(infoMessage, mode) + 4);
static_assert(offsetof(infoMessage, buttons) == offsetof(infoMessage, level) + 4);
static_assert(offsetof(infoMessage, icon) == offsetof(infoMessage, buttons) + 4);
static_assert(offsetof(infoMessage, reserved) == offsetof(infoMessage, icon) + 4);
static_assert(offsetof(infoMessage, modality) == offsetof(infoMessage, reserved) + 4);

} // namespace
