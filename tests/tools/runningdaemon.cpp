#include "tools/runningdaemon.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace KxTest {

RunningDaemon::RunningDaemon(std::vector<std::string> options) {
    options.insert(options.begin(), {KXQTSD_PROGRAM, "--foreground"});
    std::vector<char*> arguments;
    for (std::string& option : options)
        arguments.push_back(option.data());
    arguments.push_back(nullptr);
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM); // also when the test itself crashes
        dup2(ends[1], STDERR_FILENO);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    log = ends[0];
    EXPECT_EQ(nextLine(), "<6>kxqtsd: serving");
}

RunningDaemon::~RunningDaemon() {
    if (process > 0) {
        EXPECT_EQ(stop(), 0);
    }
    close(log);
}

std::string RunningDaemon::nextLine() {
    std::string line;
    for (char character = 0; read(log, &character, 1) == 1 && character != '\n';)
        line += character;
    return line;
}

int RunningDaemon::stop() {
    kill(process, SIGTERM);
    int status = -1;
    waitpid(process, &status, 0);
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : status;
}

RawConnection::RawConnection(unsigned short port, const char* address)
    : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(port);
    inet_pton(AF_INET, address, &target.sin_addr);
    connected = connect(descriptor, reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0;
}

RawConnection::~RawConnection() {
    close(descriptor);
}

void RawConnection::send(const std::string& bytes) const {
    (void)::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::string RawConnection::readToEnd() const {
    std::string bytes;
    for (char byte = 0; recv(descriptor, &byte, 1, 0) == 1;)
        bytes += byte;
    return bytes;
}

std::string commandRequest(unsigned code, const std::string& text) {
    std::string request(2068, '\0');
    std::memcpy(request.data(), &code, sizeof code);
    text.copy(request.data() + 20, 2048);
    return request;
}

} // namespace KxTest
