#include <KxQts/handles/posixthread.h>

#include "handles/stacksize.h"
#include "platform/stayloaded.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <sched.h>

namespace Korvex {

namespace {

constexpr int highest = 15;
constexpr int lowest = -15;

void setFlag(bool& flag, bool value) {
    // Read by the running routine meanwhile.
    std::atomic_ref(flag).store(value, std::memory_order_relaxed);
}

/// The scale's place of a system's priority, half a place added before the division rounds down.
int fromNative(int native) {
    const int range = Thread::sPriorityMax - Thread::sPriorityMin;
    if (range == 0)
        return 0;
    const int doubledPlaces = ((native - Thread::sPriorityMin) * 60) / range + 1;
    return doubledPlaces / 2 + lowest;
}

} // namespace

int Thread::sPriorityMin = sched_get_priority_min(0);
int Thread::sPriorityMax = sched_get_priority_max(0);

Thread::Thread() {
    pthread_attr_init(&attr);
}

Thread::~Thread() {
    setFlag(stopRequested, true);
    if (thread != 0 && pthread_equal(thread, pthread_self()) == 0)
        pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

void Thread::Stop() {
    setFlag(stopRequested, true);
}

void Thread::run() {}

int Thread::pr2native(int newPriority) {
    if (newPriority > highest)
        return sPriorityMax;
    if (newPriority < lowest)
        return sPriorityMin;
    const int range = sPriorityMax - sPriorityMin;
    return sPriorityMin + (((2 * newPriority + 30) * range) / 30 + 1) / 2;
}

bool Thread::Start(int newPriority, unsigned long stackSize) {
    constexpr unsigned long leastAskedFor = 8192;
    stayLoaded();
    priority = newPriority;
    setFlag(stopRequested, false);
    if (thread != 0)
        pthread_detach(thread);
    thread = 0;

    int policy = SCHED_OTHER;
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &policy, &parameters);
    parameters.sched_priority = pr2native(newPriority);
    pthread_attr_setinheritsched(&attr, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(&attr, SCHED_OTHER);
    pthread_attr_setschedparam(&attr, &parameters);
    const unsigned long askedFor = std::max(stackSize, leastAskedFor);
    pthread_attr_setstacksize(&attr, usableStackSize(askedFor));
    const bool isStarted = pthread_create(&thread, &attr, threadProc, this) == 0;
    // The attributes tell what was asked for, as far as the system lets them.
    pthread_attr_setstacksize(&attr, askedFor);
    if (!isStarted)
        thread = 0;
    return isStarted;
}

void* Thread::threadProc(void* thread) {
    auto* self = static_cast<Thread*>(thread);
    if (!self)
        return nullptr;
    if (self->routine)
        self->routine(self->context, &self->stopRequested);
    else
        self->run();
    return nullptr;
}

void* Thread::Join() {
    if (thread == 0 || pthread_equal(thread, pthread_self()) != 0)
        return nullptr;
    void* exitValue = nullptr;
    pthread_join(thread, &exitValue);
    setFlag(stopRequested, false);
    thread = 0;
    return exitValue;
}

int Thread::GetPriority() {
    int policy = 0;
    sched_param parameters{};
    // The calling thread is asked on purpose, not this object's.
    const bool known =
        thread != 0 && pthread_getschedparam(pthread_self(), &policy, &parameters) == 0;
    priority = known ? fromNative(parameters.sched_priority) : 0;
    return priority;
}

bool Thread::SetPriority(int newPriority) {
    priority = newPriority;
    if (thread == 0)
        return false;
    int policy = 0;
    sched_param parameters{};
    if (pthread_getschedparam(thread, &policy, &parameters) != 0)
        return false;
    parameters.sched_priority = pr2native(newPriority);
    return pthread_setschedparam(thread, policy, &parameters) == 0;
}

unsigned int Thread::GetCurrentId() {
    return static_cast<unsigned int>(std::uintptr_t(pthread_self()));
}

} // namespace Korvex
