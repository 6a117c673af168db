#include "peer.h"

#include "platform/descriptor.h"
#include "platform/groups.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace Kxqtsd {

namespace {

using Korvex::Descriptor;

struct Question {
    nlmsghdr header;
    inet_diag_req_v2 request;
};

struct Answer {
    nlmsghdr header;
    inet_diag_msg socket;
};

/// The question about the one socket whose address is \a from and whose peer's is \a to.
Question questionAbout(const sockaddr_in& from, const sockaddr_in& to) {
    Question question{};
    question.header.nlmsg_len = sizeof question;
    question.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    question.header.nlmsg_flags = NLM_F_REQUEST;
    question.request.sdiag_family = AF_INET;
    question.request.sdiag_protocol = IPPROTO_TCP;
    question.request.idiag_states = ~0u;
    question.request.id.idiag_sport = from.sin_port;
    question.request.id.idiag_dport = to.sin_port;
    question.request.id.idiag_src[0] = from.sin_addr.s_addr;
    question.request.id.idiag_dst[0] = to.sin_addr.s_addr;
    std::fill_n(question.request.id.idiag_cookie, 2, INET_DIAG_NOCOOKIE);
    return question;
}

std::optional<inet_diag_msg> ask(const Question& question) {
    const Descriptor kernel(socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (send(kernel.get(), &question, sizeof question, 0) < 0)
        return std::nullopt;
    std::array<char, 4096> buffer{};
    const ssize_t got = recv(kernel.get(), buffer.data(), buffer.size(), 0);
    Answer answer{};
    if (got < static_cast<ssize_t>(sizeof answer))
        return std::nullopt;
    std::memcpy(&answer, buffer.data(), sizeof answer);
    if (answer.header.nlmsg_type != SOCK_DIAG_BY_FAMILY)
        return std::nullopt;
    return answer.socket;
}

bool isSameAddress(const inet_diag_msg& found, const Question& question) {
    return found.id.idiag_sport == question.request.id.idiag_sport &&
           found.id.idiag_dport == question.request.id.idiag_dport &&
           found.id.idiag_src[0] == question.request.id.idiag_src[0] &&
           found.id.idiag_dst[0] == question.request.id.idiag_dst[0];
}

} // namespace

std::optional<uid_t> ownerOfPeer(int connection) {
    sockaddr_in own{};
    sockaddr_in other{};
    socklen_t ownSize = sizeof own;
    socklen_t otherSize = sizeof other;
    if (getsockname(connection, reinterpret_cast<sockaddr*>(&own), &ownSize) != 0 ||
        getpeername(connection, reinterpret_cast<sockaddr*>(&other), &otherSize) != 0)
        return std::nullopt;
    const Question question = questionAbout(other, own);
    const std::optional<inet_diag_msg> found = ask(question);
    // A socket that its process has closed is shown as root's, with the number 0 for its file: who
    // owned it is not known any more.
    if (!found || !isSameAddress(*found, question) || found->idiag_inode == 0)
        return std::nullopt;
    return found->idiag_uid;
}

bool isServed(uid_t user) {
    return user == 0 || Korvex::isAdministrator(user);
}

} // namespace Kxqtsd
