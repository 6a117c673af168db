#include "common/resources.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace KxTest {

namespace {

std::map<int, std::string> openDescriptors() {
    std::map<int, std::string> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd", error)) {
        const std::string target = fs::read_symlink(entry.path(), error).string();
        if (!error && target.find("/fd") == std::string::npos)
            found[std::stoi(entry.path().filename())] = target;
    }
    return found;
}

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    std::error_code error;
    for (auto it = fs::recursive_directory_iterator(folder, error);
         !error && it != fs::recursive_directory_iterator(); it.increment(error))
        names.insert(it->path().string());
    return names;
}

std::set<std::string> tasks() {
    std::set<std::string> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/proc/self/task", error))
        found.insert(entry.path().filename());
    return found;
}

std::set<std::string> childrenOf(const std::set<std::string>& threads) {
    std::set<std::string> found;
    for (const std::string& thread : threads) {
        std::ifstream file("/proc/self/task/" + thread + "/children");
        found.insert(std::istream_iterator<std::string>(file), {});
    }
    return found;
}

std::set<std::string> systemVSets() {
    std::set<std::string> found;
    std::ifstream file("/proc/sysvipc/sem");
    std::string line;
    std::getline(file, line); // the heading
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string key;
        std::string identifier;
        fields >> key >> identifier;
        found.insert(identifier);
    }
    return found;
}

std::set<std::string> posixSemaphores() {
    std::set<std::string> found;
    for (const std::string& path : namesIn("/dev/shm")) {
        if (fs::path(path).filename().string().starts_with("sem."))
            found.insert(path);
    }
    return found;
}

void describe(std::string& text, const char* what, const std::set<std::string>& before,
              const std::set<std::string>& after) {
    for (const std::string& name : after) {
        if (!before.contains(name))
            text += std::string("left behind: ") + what + ' ' + name + '\n';
    }
    for (const std::string& name : before) {
        if (!after.contains(name))
            text += std::string("gone: ") + what + ' ' + name + '\n';
    }
}

std::set<std::string> asSet(const std::map<int, std::string>& descriptors) {
    std::set<std::string> set;
    for (const auto& [number, target] : descriptors)
        set.insert(std::to_string(number) + " (" + target + ")");
    return set;
}

} // namespace

Resources Resources::now() {
    Resources found;
    found.descriptors = openDescriptors();
    found.threads = tasks();
    found.children = childrenOf(found.threads);
    found.semaphoreSets = systemVSets();
    found.namedSemaphores = posixSemaphores();
    const char* root = std::getenv("KXQTS_ROOT");
    found.runTimeFiles = namesIn(std::string(root ? root : "") + "/run/korvex");
    return found;
}

std::string Resources::differenceTo(const Resources& later) const {
    std::string text;
    describe(text, "descriptor", asSet(descriptors), asSet(later.descriptors));
    describe(text, "thread", threads, later.threads);
    describe(text, "child", children, later.children);
    describe(text, "semaphore set", semaphoreSets, later.semaphoreSets);
    describe(text, "named semaphore", namedSemaphores, later.namedSemaphores);
    describe(text, "run-time file", runTimeFiles, later.runTimeFiles);
    return text;
}

} // namespace KxTest
