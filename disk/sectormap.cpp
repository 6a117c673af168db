#include <KxQts/disk/diskobjects.h>
#include <KxQts/disk/sectormap.h>
#include <KxQts/errors.h>
#include <KxQts/support/text.h>

#include "platform/descriptor.h"
#include "platform/diskarbiter.h"
#include "platform/extentmap.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <vector>

using Korvex::Descriptor;
using Korvex::Extent;
namespace Error = Korvex::Error;

namespace {

constexpr int blockSizeProperty = 0;
constexpr int noTranslation = -1;

using Runs = std::vector<BLK_CHUNK>;

/// The runs of a file, as asking block by block would give them: a run ends where the next block is
/// not the one behind it.
class RunBuilder {
public:
    RunBuilder(unsigned long long ofLength, unsigned long long ofBlockSize)
        : length(ofLength), blockSize(ofBlockSize) {}

    /// Adds the blocks that begin in an extent. \return False when there is a hole before it.
    bool add(const Extent& extent) {
        if (isComplete() || extent.logical + extent.length <= position)
            return true; // no block begins in it
        if (extent.logical > position)
            return false;
        const unsigned long long end = std::min(extent.logical + extent.length, length);
        const unsigned long long count = (end - position + blockSize - 1) / blockSize;
        append(extent.physical + (position - extent.logical), count);
        position += count * blockSize;
        return true;
    }

    [[nodiscard]] bool isComplete() const { return position >= length; }
    [[nodiscard]] Runs& result() { return runs; }

private:
    void append(unsigned long long place, unsigned long long count) {
        const auto block = static_cast<long long>(place / blockSize);
        if (!runs.empty() && runs.back().startBlock + runs.back().blockCount == block)
            runs.back().blockCount += static_cast<long long>(count);
        else
            runs.push_back({block, static_cast<long long>(count)});
    }

    const unsigned long long length;
    const unsigned long long blockSize;
    unsigned long long position = 0;
    Runs runs;
};

/// \return Nothing when a block lies nowhere.
std::optional<Runs> runsOf(const std::vector<Extent>& extents, unsigned long long length,
                           unsigned long long blockSize) {
    if (length == 0)
        return Runs{{0, 1}};
    RunBuilder builder(length, blockSize);
    for (const Extent& extent : extents) {
        if (!builder.add(extent))
            return std::nullopt;
    }
    return builder.isComplete() ? std::optional(std::move(builder.result())) : std::nullopt;
}

/// The size of the blocks that a volume's disk has, in \a size. \return 0 or an error number.
int readBlockSize(KX_DEV_VOL_UNION volume, unsigned& size) {
    const Korvex::Reference<Korvex::WDiskProps> props(Korvex::createFromDvID(volume));
    if (!props)
        return Error::NoSuchDevice;
    const auto result = static_cast<int>(props->getIntegerProperty(blockSizeProperty, size));
    return result == Error::None && size == 0 ? Error::BadDeviceType : result;
}

bool isPlainFile(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Hands the runs out as far as there is room. \return The result of the call.
int give(const Runs& runs, unsigned int& chunkCount, BLK_CHUNK* chunks) {
    const auto count = static_cast<unsigned int>(runs.size());
    if (chunkCount < count) {
        const bool isQuestion = chunkCount == 0;
        chunkCount = count;
        return isQuestion ? Error::None : Error::InvalidArgument;
    }
    if (!chunks)
        return Error::InvalidArgument;
    chunkCount = count;
    std::copy(runs.begin(), runs.end(), chunks);
    return Error::None;
}

} // namespace

int getFileSectorInfo(const QString& path, KX_DEV_VOL_UNION& volume, long long& fileSize,
                      unsigned int& chunkCount, BLK_CHUNK* chunks) {
    if (const int result = convertPathToPartialDvID(path, volume); result != Error::None)
        return result;
    unsigned blockSize = 0;
    if (const int result = readBlockSize(volume, blockSize); result != Error::None)
        return result;
    // Neither a pipe nor a terminal is waited for or taken over.
    const Descriptor file(open(WCString(path), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen())
        return errno;
    const off_t length = lseek(file.get(), 0, SEEK_END);
    if (length < 0)
        return errno;
    if (!isPlainFile(file.get()))
        return noTranslation;
    const auto size = static_cast<unsigned long long>(length);
    // One map for counting and for filling: the counts agree whatever happens to the file.
    const auto extents = Korvex::extentMap().extentsOf(file.get(), size);
    const auto runs = extents ? runsOf(*extents, size, blockSize) : std::nullopt;
    if (!runs)
        return noTranslation;
    fileSize = length;
    return give(*runs, chunkCount, chunks);
}
