#include "common/heap.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <unistd.h>

namespace KxTest {

namespace {

struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
};

Range heap() {
    Range range;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.ends_with("[heap]"))
            std::sscanf(line.c_str(), "%zx-%zx", &range.begin, &range.end);
    }
    return range;
}

} // namespace

bool heapHolds(std::string_view bytes) {
    const Range range = heap();
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::array<char, 65536> block{}; // on the stack: what is read must not be found again
    bool found = false;
    const std::size_t step = block.size() - bytes.size();
    for (std::size_t at = range.begin; at < range.end && !found; at += step) {
        const ssize_t size = pread(memory, block.data(), std::min(block.size(), range.end - at),
                                   static_cast<off_t>(at));
        const std::string_view seen(block.data(),
                                    static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        found = seen.find(bytes) != std::string_view::npos;
    }
    close(memory);
    return found;
}

} // namespace KxTest
