#include "modules/modulefolder.h"

#include <cstdlib>
#include <dlfcn.h>

namespace fs = std::filesystem;

namespace KxTest {

ModuleFolder::ModuleFolder() {
    std::string name = (fs::current_path() / "modules-XXXXXX").string();
    folder = mkdtemp(name.data());
}

ModuleFolder::~ModuleFolder() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

std::string ModuleFolder::add(const std::string& name, const std::string& library) const {
    const fs::path target = folder / name;
    fs::create_directories(target.parent_path());
    fs::copy_file(library, target);
    return target.string();
}

bool isMapped(const std::string& path) {
    void* image = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (image)
        dlclose(image);
    return image != nullptr;
}

} // namespace KxTest
