#include "output.h"

#include <array>
#include <cstdlib>
#include <unistd.h>

namespace Kx {

namespace {

std::string_view escapeSequence(Style style) {
    switch (style) {
    case Style::Heading:
        return "\x1b[1m";
    case Style::Good:
        return "\x1b[32m";
    case Style::Bad:
        return "\x1b[31m";
    case Style::Dim:
        return "\x1b[2m";
    case Style::Plain:
        break;
    }
    return "";
}

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value != '\0';
}

// The second byte decides for the control characters from U+0080 on, which UTF-8 writes as two.
bool isControl(unsigned char byte, unsigned char before) {
    constexpr unsigned char deleteCharacter = 0x7F;
    constexpr unsigned char leadOfUpperControls = 0xC2;
    constexpr unsigned char endOfUpperControls = 0xA0;
    return byte < ' ' || byte == deleteCharacter ||
           (before == leadOfUpperControls && byte < endOfUpperControls);
}

} // namespace

bool takesColours(std::FILE* stream) {
    const char* terminal = std::getenv("TERM");
    return isatty(fileno(stream)) == 1 && !isSet("NO_COLOR") && terminal &&
           std::string_view(terminal) != "dumb";
}

std::string styled(std::string_view text, Style style, std::FILE* stream) {
    if (style == Style::Plain || !takesColours(stream))
        return std::string(text);
    return std::string(escapeSequence(style)) + std::string(text) + "\x1b[0m";
}

std::string printable(std::string_view text) {
    std::string shown;
    unsigned char before = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (isControl(byte, before)) {
            std::array<char, 5> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\x%02X", byte); // NOLINT(*-vararg)
            shown += escaped.data();
        } else {
            shown += character;
        }
        before = byte;
    }
    return shown;
}

void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printError(std::string_view subject, std::string_view text) {
    std::string line = subject.empty() ? "kx: " : "kx " + std::string(subject) + ": ";
    line = styled(line, Style::Bad, stderr) + std::string(text) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool flushOutput() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace Kx
