#include <KxQts/files/dynmodule.h>

#include "platform/imageloader.h"

namespace Korvex {

namespace {

constexpr int nothingLoaded = 0;
constexpr int imageAdded = 1;
constexpr int moduleLinked = 2;

} // namespace

int DynModule::Load(const char* path) {
    Free();
    void* opened = ImageLoader::open(path);
    if (!opened)
        return state;
    const bool permanent = ImageLoader::isPermanent(opened);
    image = permanent ? opened : nullptr;
    objectFileImage = permanent ? nullptr : opened;
    module = objectFileImage;
    state = permanent ? imageAdded : moduleLinked;
    return state;
}

void* DynModule::GetProcAddress(const char* name) {
    if (state == nothingLoaded || !name)
        return nullptr;
    void* address = ImageLoader::symbol(state == moduleLinked ? module : image, name);
    if (address && !module)
        module = image;
    return address;
}

bool DynModule::Free() {
    if (state == nothingLoaded || !module || !ImageLoader::close(module))
        return false;
    objectFileImage = nullptr;
    module = nullptr;
    state = nothingLoaded;
    return true;
}

} // namespace Korvex
