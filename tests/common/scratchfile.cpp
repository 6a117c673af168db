#include "common/scratchfile.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace KxTest {

namespace {

std::string freshName() {
    static std::atomic<int> count{0};
    return "scratch-" + std::to_string(getpid()) + '-' + std::to_string(++count);
}

} // namespace

ScratchFile::ScratchFile() : name(freshName()) {}

ScratchFile::ScratchFile(const std::string& contents) : ScratchFile(Named{freshName()}, contents) {}

ScratchFile::ScratchFile(Named named, const std::string& contents) : name(std::move(named.name)) {
    std::ofstream(name, std::ios::binary) << contents;
}

ScratchFile::~ScratchFile() {
    unlink(name.c_str());
}

const std::string& ScratchFile::create() const {
    std::ofstream(name, std::ios::binary | std::ios::app).flush();
    return name;
}

std::string contentsOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void waitUntilBlockedOnLock(const std::string& name) {
    struct stat facts {};
    stat(name.c_str(), &facts);
    const std::string inode = ':' + std::to_string(facts.st_ino) + ' ';
    for (;;) {
        std::ifstream locks("/proc/locks");
        for (std::string line; std::getline(locks, line);) {
            if (line.find("->") != std::string::npos && line.find(inode) != std::string::npos)
                return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace KxTest
