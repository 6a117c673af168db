#include "platform/imagelist.h"

#include "platform/replaceable.h"

#include <array>
#include <climits>
#include <link.h>
#include <new>
#include <unistd.h>

// The linker's name for the start of the image that it makes.
extern "C" const ElfW(Ehdr) __ehdr_start __attribute__((visibility("hidden")));

namespace Korvex {

namespace {

struct Collection {
    std::vector<LoadedImage> images;
    bool complete = true;
};

const void* headerOf(const dl_phdr_info& image) {
    for (int i = 0; i < image.dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = image.dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && segment.p_offset == 0)
            return reinterpret_cast<const void*>(image.dlpi_addr + segment.p_vaddr);
    }
    return nullptr;
}

// The loader holds its lock meanwhile, so nothing may be thrown through it.
int collect(dl_phdr_info* image, std::size_t, void* data) {
    auto& collection = *static_cast<Collection*>(data);
    try {
        collection.images.push_back({image->dlpi_name, headerOf(*image)});
        return 0;
    } catch (const std::bad_alloc&) {
        collection.complete = false;
        return 1;
    }
}

std::string mainProgram() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return {path.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

class LinuxImageList final : public ImageList {
public:
    std::vector<LoadedImage> images() override {
        Collection collection;
        dl_iterate_phdr(collect, &collection);
        if (!collection.complete)
            throw std::bad_alloc();
        // The loader knows the main program under no name.
        if (!collection.images.empty())
            collection.images.front().path = mainProgram();
        return std::move(collection.images);
    }

    const void* ownHeader() override { return &__ehdr_start; }
};

} // namespace

ImageList& loadedImages() {
    static LinuxImageList list;
    return inForce<ImageList>(list);
}

} // namespace Korvex
