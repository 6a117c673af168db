#include "platform/imageloader.h"

#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <string>

namespace Korvex::ImageLoader {

void* open(const char* path) {
    constexpr int mode = RTLD_NOW | RTLD_LOCAL;
    if (!path || *path == '\0')
        return nullptr;
    if (std::strchr(path, '/'))
        return dlopen(path, mode);
    void* image = dlopen((std::string("./") + path).c_str(), mode);
    return image ? image : dlopen(path, mode);
}

bool isPermanent(void* image) {
    link_map* map = nullptr;
    if (dlinfo(image, RTLD_DI_LINKMAP, static_cast<void*>(&map)) != 0)
        return false;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_FLAGS_1)
            return (entry->d_un.d_val & DF_1_NODELETE) != 0;
    }
    return false;
}

void* symbol(void* image, const char* name) {
    return dlsym(image, name);
}

bool close(void* image) {
    return image && !isPermanent(image) && dlclose(image) == 0;
}

void dropExtraReference(const char* path) {
    if (void* image = dlopen(path, RTLD_LAZY | RTLD_NOLOAD)) {
        dlclose(image);
        dlclose(image);
    }
}

} // namespace Korvex::ImageLoader
