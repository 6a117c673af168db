/* The C library's allocation, which fails where it is to. */
#include "shim.h"

#include <errno.h>
#include <stddef.h>

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

__attribute__((visibility("default"))) void* malloc(size_t size) {
    void* origin[KX_ORIGIN_DEPTH];
    int counted;
    return kx_allocation_fails(origin, &counted) ? NULL
                                                 : kx_noted(__libc_malloc(size), origin, counted);
}

__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
    void* origin[KX_ORIGIN_DEPTH];
    int counted;
    return kx_allocation_fails(origin, &counted)
               ? NULL
               : kx_noted(__libc_calloc(count, size), origin, counted);
}

__attribute__((visibility("default"))) void* realloc(void* block, size_t size) {
    void* origin[KX_ORIGIN_DEPTH];
    int counted;
    if (kx_allocation_fails(origin, &counted))
        return NULL;
    void* larger = __libc_realloc(block, size);
    if (larger || size == 0)
        kx_forget(block);
    return kx_noted(larger, origin, counted);
}

__attribute__((visibility("default"))) void* aligned_alloc(size_t alignment, size_t size) {
    void* origin[KX_ORIGIN_DEPTH];
    int counted;
    return kx_allocation_fails(origin, &counted)
               ? NULL
               : kx_noted(__libc_memalign(alignment, size), origin, counted);
}

__attribute__((visibility("default"))) void* memalign(size_t alignment, size_t size) {
    return aligned_alloc(alignment, size);
}

__attribute__((visibility("default"))) int posix_memalign(void** block, size_t alignment,
                                                          size_t size) {
    void* made = aligned_alloc(alignment, size);
    if (made)
        *block = made;
    return made ? 0 : ENOMEM;
}

__attribute__((visibility("default"))) void free(void* block) {
    kx_forget(block);
    __libc_free(block);
}
