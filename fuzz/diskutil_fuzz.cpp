// What the disk utility reads itself: sizes and names on its command line, and what the programs
// for file systems answer. Those programs are not started: the input is their answer.

#include "common/input.h"
#include "common/require.h"
#include "tools/diskutil/child.h"
#include "tools/diskutil/extfilesystem.h"
#include "tools/diskutil/failure.h"
#include "tools/diskutil/size.h"
#include "tools/diskutil/text.h"

#include <algorithm>
#include <deque>
#include <optional>

using DiskUtil::ChildResult;
using KxFuzz::Input;
using KxFuzz::require;

namespace {

std::deque<ChildResult> answers;
std::vector<std::vector<std::string>> asked;

std::optional<unsigned long long> sizeIn(const std::string& text) {
    try {
        return DiskUtil::parseSize(text);
    } catch (const DiskUtil::UsageError&) {
        return std::nullopt;
    }
}

bool isPrintable(const std::string& text) {
    return std::none_of(text.begin(), text.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    });
}

void checkSize(const std::string& text, unsigned long long number) {
    constexpr unsigned long long largest = ~0ULL >> 1;
    if (const auto size = sizeIn(text))
        require(*size <= largest && text[0] >= '0' && text[0] <= '9');
    const std::string written = std::to_string(number);
    require(sizeIn(written + 'B') == (number <= largest ? std::optional(number) : std::nullopt));
    require(!sizeIn(written) && !sizeIn('-' + written + 'B') && !sizeIn(written + "BB"));
    require(number > largest / 1000 || sizeIn(written + "kb") == number * 1000);
    const std::string shown = DiskUtil::shownSize(number);
    require(shown.ends_with(" (" + written + " Bytes)") && shown.size() < 40);
}

void checkName(const std::string& word) {
    const std::vector<std::string> readings = DiskUtil::readingsOf(word);
    require(!readings.empty() && readings.size() <= 2 && readings.front() == word);
    const std::string shown = DiskUtil::printable(word);
    require(isPrintable(shown) && (shown == word) == isPrintable(word));
}

/// The answers of the programs, one after the other, to everything that is asked of a file system.
void checkFileSystem(unsigned long long bytes) {
    asked.clear();
    try {
        DiskUtil::ExtFileSystem fileSystem("/dev/device");
        const unsigned long long whole = fileSystem.wholeBlocks(bytes);
        require(whole <= bytes);
        (void)fileSystem.minimumSize();
        fileSystem.check();
        fileSystem.resize(bytes);
        require(asked.size() == 5);
        const unsigned long long blocks = std::stoull(asked[3].back());
        require(blocks == 0 ? whole == 0 : whole % blocks == 0);
    } catch (const DiskUtil::Failure& failure) {
        require(isPrintable(failure.what()));
    }
    require(!asked.empty());
}

} // namespace

namespace DiskUtil {

ChildResult runProgram(const std::vector<std::string>& words) {
    asked.push_back(words);
    ChildResult answer;
    if (answers.empty())
        return answer;
    answer = answers.front();
    answers.pop_front();
    answer.output = withoutBanner(answer.output, words.front());
    return answer;
}

} // namespace DiskUtil

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto number = input.number<unsigned long long>();
    checkSize(input.text(), number);
    checkName(input.text());
    answers.clear();
    while (!input.isEmpty()) {
        const int status = input.number<std::uint8_t>(); // most often a success
        answers.push_back({status < 128 ? 0 : 256 - status, input.text()});
    }
    checkFileSystem(number);
    return 0;
}
