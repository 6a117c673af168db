#include "password.h"

#include "failure.h"
#include "support/wipe.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <termios.h>
#include <unistd.h>

namespace Security {

namespace {

// Memory for all of it at once: a text that grows leaves pieces of itself behind.
constexpr std::size_t longest = 65536;

/// Keeps a terminal from showing what is typed.
class HiddenTyping {
public:
    HiddenTyping() {
        tcgetattr(STDIN_FILENO, &before);
        termios hidden = before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_lflag |= ECHONL;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    ~HiddenTyping() { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before); }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

private:
    termios before{};
};

/// Reads a line byte by byte, so that nothing of it is left in a buffer.
void readLine(std::string& line) {
    line.reserve(longest);
    for (char byte = 0;;) {
        const ssize_t count = read(STDIN_FILENO, &byte, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 || (count == 0 && line.empty()))
            throw Failure("no password can be read from standard input");
        if (count == 0 || byte == '\n')
            return;
        if (line.size() == longest)
            throw Failure("the password is too long");
        line += byte;
    }
}

void ask(const char* prompt, std::string& answer) {
    std::fputs(prompt, stderr);
    readLine(answer);
}

void wipeText(std::string& text) {
    Korvex::wipe(text.data(), text.size());
}

void askTwice(std::string& answer) {
    std::string again;
    ask("Password for the new keychain: ", answer);
    ask("Once more: ", again);
    const bool same = answer == again;
    wipeText(again);
    if (!same) {
        wipeText(answer);
        throw Failure("the two passwords are not the same");
    }
}

} // namespace

Password::Password(const Arguments& arguments, bool isNew) {
    if (arguments.has('p')) {
        char* const word = arguments.valueOf('p');
        bytes = word;
        Korvex::wipe(word, std::strlen(word));
    } else if (isatty(STDIN_FILENO) != 1) {
        readLine(bytes);
    } else {
        const HiddenTyping hidden;
        if (isNew)
            askTwice(bytes);
        else
            ask("Password: ", bytes);
    }
}

Password::~Password() {
    wipeText(bytes);
}

} // namespace Security
