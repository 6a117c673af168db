#include "child.h"

#include "text.h"

#include <algorithm>
#include <string_view>

namespace DiskUtil {

std::string withoutBanner(std::string output, const std::string& name) {
    constexpr std::string_view digits = "0123456789";
    if (output.starts_with(name + ' ') &&
        output.find_first_of(digits, name.size()) == name.size() + 1)
        output.erase(0, std::min(output.find('\n'), output.size() - 1) + 1);
    return output;
}

std::string complaintOf(const ChildResult& result) {
    std::string text;
    for (const char character : result.output) {
        if (character != '\n')
            text += character;
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    }
    text = printable(text);
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text.empty() ? "exit code " + std::to_string(result.status) : text;
}

} // namespace DiskUtil
