/* Which allocations fail, and what those of armed calls have left: blocks are remembered until they
 * are freed. */
#define _GNU_SOURCE
#include "shim.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <pthread.h>
#include <stdint.h>
#include <string.h>

enum { places = 1 << 16, depth = KX_ORIGIN_DEPTH, skipped = 2, longest_list = 8 };

/* A table of the blocks that are remembered, with open addressing. */
struct Block {
    void* address; /* null: none */
    void* origin[depth];
};

static struct Block blocks[places];
static size_t remembered;
static pthread_mutex_t blocks_lock = PTHREAD_MUTEX_INITIALIZER;
static const char* exempted[longest_list];
static _Thread_local int is_inside;

/* Names are searched for slowly, so what was found is kept. */
enum { known_count = 4096 };
static _Thread_local struct Known {
    const void* address;
    int is_exempted;
} known_places[known_count];

static size_t place_of(const void* address) {
    return ((uintptr_t)address >> 4) * 2654435761u % places;
}

static void remember(void* address, void** origin) {
    pthread_mutex_lock(&blocks_lock);
    if (remembered < places / 2) {
        size_t place = place_of(address);
        while (blocks[place].address)
            place = (place + 1) % places;
        blocks[place].address = address;
        memcpy(blocks[place].origin, origin, sizeof blocks[place].origin);
        ++remembered;
    }
    pthread_mutex_unlock(&blocks_lock);
}

/* Empties a place; what was pushed on by it moves back, so that a search can end at an empty one.
 */
static void empty(size_t place) {
    size_t next = place;
    for (;;) {
        blocks[place].address = NULL;
        size_t wanted;
        do {
            next = (next + 1) % places;
            if (!blocks[next].address)
                return;
            wanted = place_of(blocks[next].address);
        } while (place <= next ? place < wanted && wanted <= next
                               : place < wanted || wanted <= next);
        blocks[place] = blocks[next];
        place = next;
    }
}

void kx_forget(void* address) {
    if (!address || __atomic_load_n(&remembered, __ATOMIC_RELAXED) == 0)
        return;
    pthread_mutex_lock(&blocks_lock);
    size_t place = place_of(address);
    while (blocks[place].address && blocks[place].address != address)
        place = (place + 1) % places;
    if (blocks[place].address) {
        empty(place);
        --remembered;
    }
    pthread_mutex_unlock(&blocks_lock);
}

size_t kx_blocks(void** origins, size_t room, int forget_them) {
    size_t count = 0;
    pthread_mutex_lock(&blocks_lock);
    for (size_t place = 0; place < places; ++place) {
        if (blocks[place].address && count++ < room)
            memcpy(origins + (count - 1) * depth, blocks[place].origin, sizeof blocks->origin);
    }
    if (forget_them) {
        memset(blocks, 0, sizeof blocks);
        remembered = 0;
    }
    pthread_mutex_unlock(&blocks_lock);
    return count;
}

void kx_exempt(const char* part_of_name) {
    memset(known_places, 0, sizeof known_places);
    if (!part_of_name)
        memset(exempted, 0, sizeof exempted);
    for (int i = 0; i < longest_list; ++i) {
        if (!exempted[i]) {
            exempted[i] = part_of_name;
            return;
        }
    }
}

static int is_in_exempted(const void* address) {
    Dl_info place;
    if (!dladdr(address, &place) || !place.dli_sname)
        return 0;
    for (int name = 0; name < longest_list && exempted[name]; ++name) {
        if (strstr(place.dli_sname, exempted[name]))
            return 1;
    }
    return 0;
}

static int is_exempted(void** origin, int count) {
    for (int i = 0; exempted[0] && i < count; ++i) {
        struct Known* known =
            &known_places[((uintptr_t)origin[i] * 2654435761u >> 8) % known_count];
        if (known->address != origin[i]) {
            known->is_exempted = is_in_exempted(origin[i]);
            known->address = origin[i];
        }
        if (known->is_exempted)
            return 1;
    }
    return 0;
}

int kx_allocation_fails(void** origin, int* counted) {
    *counted = !is_inside && kx_is_armed_here();
    if (!*counted)
        return 0;
    void* addresses[depth + skipped] = {0};
    is_inside = 1;
    const int count = backtrace(addresses, depth + skipped);
    memcpy(origin, addresses + skipped, sizeof *origin * depth);
    const int is_passed_over = is_exempted(addresses, count);
    is_inside = 0;
    return !is_passed_over && kx_fails(KX_FAULT_MEMORY);
}

void* kx_noted(void* block, void** origin, int counted) {
    if (block && counted)
        remember(block, origin);
    return block;
}
