#include "common/memorysearch.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

namespace KxTest {

namespace {

constexpr std::size_t chunkSize = 1 << 20;
constexpr std::size_t largestMapping = std::size_t(1) << 30; // instruments reserve larger ones

/// Memory that is not searched: it is shared.
class Buffer {
public:
    Buffer()
        : memory(static_cast<char*>(mmap(nullptr, chunkSize, PROT_READ | PROT_WRITE,
                                         MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    ~Buffer() { munmap(memory, chunkSize); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    char* const memory;
};

bool isTextAt(const char* memory, const std::string& disguised, char disguise,
              std::size_t unitSize) {
    for (std::size_t i = 0; i < disguised.size() * unitSize; ++i) {
        const bool isLowByte = i % unitSize == 0;
        const char expected = isLowByte ? char(disguised[i / unitSize] ^ disguise) : '\0';
        if (memory[i] != expected)
            return false;
    }
    return true;
}

} // namespace

UnwrittenText::UnwrittenText(std::size_t length) {
    std::random_device random;
    std::uniform_int_distribution<int> letters('a', 'z');
    for (std::size_t i = 0; i < length; ++i)
        disguised += char(letters(random) ^ disguise);
}

std::size_t UnwrittenText::occurrencesIn(const char* memory, std::size_t size,
                                         std::size_t unitSize) const {
    const char* const end = memory + size;
    const std::size_t own = disguised.size() * unitSize;
    const int first = disguised.front() ^ disguise;
    std::size_t count = 0;
    while ((memory =
                static_cast<const char*>(std::memchr(memory, first, std::size_t(end - memory)))) &&
           memory + own <= end) {
        count += isTextAt(memory, disguised, disguise, unitSize) ? 1 : 0;
        ++memory;
    }
    return count;
}

std::size_t UnwrittenText::occurrences(std::size_t unitSize) const {
    const Buffer buffer;
    const std::size_t size = disguised.size() * unitSize;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::ifstream maps("/proc/self/maps");
    std::size_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        unsigned long from = 0;
        unsigned long to = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx rw-p", &from, &to) != 2 ||
            line.find(" rw-p ") == std::string::npos || to - from > largestMapping)
            continue;
        for (unsigned long place = from; place < to; place += chunkSize - size + 1) {
            const std::size_t wanted = std::min<std::size_t>(chunkSize, to - place);
            if (pread(memory, buffer.memory, wanted, off_t(place)) != ssize_t(wanted))
                break;
            count += occurrencesIn(buffer.memory, wanted, unitSize);
            if (wanted < chunkSize)
                break;
        }
    }
    close(memory);
    return count;
}

} // namespace KxTest
