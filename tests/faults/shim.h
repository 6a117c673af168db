#pragma once

#include "faults.h"

/** Counts a call. \return Whether it is the one that fails, with errno set then. */
int kx_fails(enum KxFaultCall call);

/** The same for a transfer, of which only one byte may be let through. */
int kx_fails_or_shortens(enum KxFaultCall call, size_t* count);

/** The function of a name that this one stands in front of. */
void* kx_following(const char* name);

/** Where calls of memory are counted, which keep a record of their own. */
int kx_is_armed_here(void);
void kx_note_origin(void);

/** How many places in the code are told of where an allocation came from. */
enum { KX_ORIGIN_DEPTH = 16 };

/** Whether an allocation is to fail. \param origin Receives whence it came when it is counted. */
int kx_allocation_fails(void** origin, int* counted);

/** Remembers a block of a counted allocation until it is forgotten. \return The block. */
void* kx_noted(void* block, void** origin, int counted);
void kx_forget(void* address);

void kx_exempt(const char* part_of_name);
size_t kx_blocks(void** origins, size_t room, int forget);
