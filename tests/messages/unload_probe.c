/* Loads the library and a resource library through it, and unloads the library again:
   CLIENT LIBRARY RESOURCE. Prints what is loaded before and after, and how many descriptors are
   open on logs. */

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

typedef int (*Lookup)(const char* resource);

static int isLoaded(const char* path) {
    void* image = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
    if (image)
        dlclose(image);
    return image != NULL;
}

static int openLogs(void) {
    int descriptor, count = 0;
    for (descriptor = 3; descriptor < 100; ++descriptor) {
        char link[64], target[4096];
        ssize_t length;
        snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
        length = readlink(link, target, sizeof target);
        count += length > 4 && memcmp(target + length - 4, ".log", 4) == 0;
    }
    return count;
}

int main(int argc, char** argv) {
    void* client;
    Lookup lookUp;
    int logs;
    if (argc != 4)
        return 1;
    client = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (!client)
        return puts(dlerror()), 2;
    *(void**)&lookUp = dlsym(client, "kxtestLookUp");
    if (!lookUp || lookUp(argv[3]) != 0)
        return 3;
    printf("before: library %d, resource %d\n", isLoaded(argv[2]), isLoaded(argv[3]));
    logs = openLogs();
    dlclose(client);
    printf("after: library %d, resource %d\n", isLoaded(argv[2]), isLoaded(argv[3]));
    printf("log before %d, after %d\n", logs, openLogs());
    return 0;
}
