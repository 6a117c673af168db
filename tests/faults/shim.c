/* Counting, and letting the call fail that was asked for. */
#define _GNU_SOURCE
#include "shim.h"

#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <stdatomic.h>
#include <stdlib.h>
#include <unistd.h>

enum { origin_room = 48 };

static struct KxFault armed;
static atomic_uint calls;
static atomic_int armed_process; /* 0: none is armed */
static _Thread_local int is_arming_thread;
static _Thread_local int is_inside; /* what the shim itself calls does not count */
static void* origin_addresses[origin_room];
static int origin_count;

int kx_is_armed_here(void) {
    const int process = atomic_load_explicit(&armed_process, memory_order_acquire);
    return process != 0 && !is_inside && (is_arming_thread || armed.on_all_threads) &&
           process == getpid();
}

void kx_note_origin(void) {
    is_inside = 1;
    origin_count = backtrace(origin_addresses, origin_room);
    is_inside = 0;
}

static int is_the_one(enum KxFaultCall call) {
    if (!kx_is_armed_here() || armed.call != call || atomic_fetch_add(&calls, 1) + 1 != armed.nth)
        return 0;
    kx_note_origin();
    return 1;
}

int kx_fails(enum KxFaultCall call) {
    if (!is_the_one(call))
        return 0;
    errno = armed.error;
    return 1;
}

int kx_fails_or_shortens(enum KxFaultCall call, size_t* count) {
    if (!is_the_one(call))
        return 0;
    if (armed.error == 0) {
        *count = *count > 0;
        return 0;
    }
    errno = armed.error;
    return 1;
}

void* kx_following(const char* name) {
    void* found = dlsym(RTLD_NEXT, name);
    if (!found)
        abort();
    return found;
}

static void arm(const struct KxFault* fault) {
    void* unused[1];
    is_inside = 1;
    (void)backtrace(unused, 1); /* loads what it needs now */
    is_inside = 0;
    armed = *fault;
    origin_count = 0;
    is_arming_thread = 1;
    atomic_store(&calls, 0);
    atomic_store_explicit(&armed_process, getpid(), memory_order_release);
}

static unsigned disarm(void) {
    atomic_store_explicit(&armed_process, 0, memory_order_release);
    is_arming_thread = 0;
    return atomic_load(&calls);
}

static int origin(void** addresses, int room) {
    int count = origin_count < room ? origin_count : room;
    for (int i = 0; i < count; ++i)
        addresses[i] = origin_addresses[i];
    return count;
}

__attribute__((visibility("default")))
const struct KxFaults kxqts_faults = {arm, disarm, origin, kx_exempt, kx_blocks};
