/* Loads the library and a resource library through it, and unloads the library again:
   LIBRARY RESOURCE. Prints what is loaded before and after. */

#include <dlfcn.h>
#include <stdio.h>

typedef int (*Lookup)(const char* resource);

static int isLoaded(const char* path) {
    void* image = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
    if (image)
        dlclose(image);
    return image != NULL;
}

int main(int argc, char** argv) {
    void* client;
    Lookup lookUp;
    if (argc != 4)
        return 1;
    client = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (!client)
        return puts(dlerror()), 2;
    *(void**)&lookUp = dlsym(client, "kxtestLookUp");
    if (!lookUp || lookUp(argv[3]) != 0)
        return 3;
    printf("before: library %d, resource %d\n", isLoaded(argv[2]), isLoaded(argv[3]));
    dlclose(client);
    printf("after: library %d, resource %d\n", isLoaded(argv[2]), isLoaded(argv[3]));
    return 0;
}
