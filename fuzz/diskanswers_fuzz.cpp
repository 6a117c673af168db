// What the library reads in the disk utility's answers: any text ends in a number that stands
// there, and the numbers that the utility writes are read, whatever stands around them.

#include "common/input.h"
#include "common/require.h"
#include "disk/diskutility.h"
#include "tools/diskutil/size.h"

using Korvex::DiskUtility::freeSpaceIn;
using Korvex::DiskUtility::Limits;
using Korvex::DiskUtility::limitsIn;
using KxFuzz::Input;
using KxFuzz::require;

namespace {

constexpr std::string_view currentLabel = "Current size:";
constexpr std::string_view minimumLabel = "Minimum size:";
constexpr std::string_view spaceLabel = "Space:";

QByteArray bytesOf(const std::string& text) {
    return QByteArray::fromStdString(text);
}

/// A number that is read stands in the text.
void requireIn(const std::string& text, unsigned long long number) {
    const bool isNegative = static_cast<long long>(number) < 0;
    const std::string digits = std::to_string(isNegative ? 0 - number : number);
    require(number == 0 || text.find(digits) != std::string::npos);
}

void checkAnything(const std::string& text) {
    const Limits limits = limitsIn(bytesOf(text));
    const unsigned long long free = freeSpaceIn(bytesOf(text));
    for (const unsigned long long number : {limits.currentSize, limits.minimumSize, free})
        requireIn(text, number);
    require(text.find(currentLabel) != std::string::npos || limits.currentSize == 0);
    require(text.find(minimumLabel) != std::string::npos || limits.minimumSize == 0);
    require(text.find(spaceLabel) != std::string::npos || free == 0);
    // Behind the first zero byte nothing counts.
    const QByteArray ended = bytesOf(text + std::string(1, '\0') + text);
    require(limitsIn(ended).currentSize == limits.currentSize && freeSpaceIn(ended) == free);
}

/// Whether a text does not hold what would be taken for a label, or for the end of a number:
/// "bytes" is looked for first, however far behind.
bool isQuiet(const std::string& text) {
    const auto holds = [&](std::string_view word) { return text.find(word) != std::string::npos; };
    return !holds("size:") && !holds(spaceLabel) && !holds("bytes");
}

void checkWritten(const std::string& around, unsigned long long current,
                  unsigned long long minimum) {
    if (!isQuiet(around))
        return;
    const std::string first = around + std::string(currentLabel) + DiskUtil::shownSize(current);
    const std::string second = around + std::string(minimumLabel) + DiskUtil::shownSize(minimum);
    const Limits limits = limitsIn(bytesOf(first + second + around));
    require(limits.currentSize == current && limits.minimumSize == minimum);
    const Limits turned = limitsIn(bytesOf(second + first + around));
    require(turned.currentSize == current && turned.minimumSize == 0);
    const std::string info =
        around + std::string(spaceLabel) + DiskUtil::shownSize(current) + around;
    require(freeSpaceIn(bytesOf(info)) == current);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    constexpr unsigned long long largest = ~0ULL >> 1;
    const auto current = input.number<unsigned long long>() & largest;
    const auto minimum = input.number<unsigned long long>() & largest;
    const std::string around = input.text();
    checkWritten(around, current, minimum);
    checkAnything(around);
    checkAnything(input.text());
    return 0;
}
