#include "platform/linux/polkitauthoriser.h"

#include "platform/imagelist.h"
#include "platform/linux/helperrun.h"
#include "platform/linux/processtable.h"
#include "platform/linux/systembus.h"
#include "platform/replaceable.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace Korvex {

namespace {

constexpr BusObject authority{"org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
                              "org.freedesktop.PolicyKit1.Authority"};
constexpr std::chrono::minutes forThePassword{5};
constexpr std::chrono::seconds forNoQuestion{30};

/// Root may do everything as it is.
bool isRoot() {
    return geteuid() == 0;
}

/// What the authority said, and what it added to that.
struct Answer {
    int isAuthorised = 0;
    int isChallenge = 0; // the user would have to be asked, and nobody there can ask
    std::string keptAnswer;
    bool wasDismissed = false;
};

bool readAnswer(const BusReply& reply, Answer& answer) {
    if (!reply.enter('r', "bba{ss}") ||
        !reply.read("bb", &answer.isAuthorised, &answer.isChallenge) || !reply.enter('a', "{ss}"))
        return false;
    const char* name = nullptr;
    const char* value = nullptr;
    while (reply.read("{ss}", &name, &value)) {
        if (name == std::string_view("polkit.temporary_authorization_id"))
            answer.keptAnswer = value;
        answer.wasDismissed |= name == std::string_view("polkit.dismissed");
    }
    return true;
}

OSStatus statusOf(const Answer& answer) {
    if (answer.isAuthorised != 0)
        return errAuthorizationSuccess;
    if (answer.wasDismissed)
        return errAuthorizationCanceled;
    return answer.isChallenge != 0 ? errAuthorizationInteractionNotAllowed : errAuthorizationDenied;
}

/// Asks whether this process may run programs as an administrator.
OSStatus ask(bool mayAskUser, std::string& keptAnswer) {
    const std::optional<ProcessEntry> self = LinuxProcessTable().find(getpid());
    constexpr int factCount = 3;
    SystemBus bus;
    const BusReply reply = bus.call(
        authority, "CheckAuthorization", mayAskUser ? forThePassword : forNoQuestion,
        "(sa{sv})sa{ss}us", "unix-process", factCount, "pid", "u",
        static_cast<std::uint32_t>(getpid()), "start-time", "t",
        self ? self->startTime : std::uint64_t{0}, "uid", "i", static_cast<std::int32_t>(getuid()),
        PolkitAuthoriser::actionName, 0, mayAskUser ? 1U : 0U, "");
    Answer answer;
    if (!reply || !readAnswer(reply, answer))
        return errAuthorizationInternal;
    keptAnswer = answer.keptAnswer;
    return statusOf(answer);
}

/// The helper beside the library.
std::string installedHelper() {
    std::vector<LoadedImage> images = loadedImages().images();
    const auto own = std::ranges::find(images, loadedImages().ownHeader(), &LoadedImage::header);
    if (own == images.end())
        return {};
    return own->path.substr(0, own->path.rfind('/') + 1) + "kxqts-run";
}

} // namespace

OSStatus PolkitAuthoriser::create(unsigned long, const AuthorizationOpaqueRef*& ref) {
    ref = new (std::nothrow) AuthorizationOpaqueRef;
    return ref ? errAuthorizationSuccess : errAuthorizationInternal;
}

OSStatus PolkitAuthoriser::copyAdministratorRight(const AuthorizationOpaqueRef* ref,
                                                  unsigned long flags) {
    if (!ref)
        return errAuthorizationInvalidRef;
    if (isRoot())
        return errAuthorizationSuccess;
    const bool mayAskUser = (flags & kAuthorizationFlagInteractionAllowed) != 0;
    return ask(mayAskUser, const_cast<AuthorizationOpaqueRef*>(ref)->keptAnswer);
}

OSStatus PolkitAuthoriser::run(const AuthorizationOpaqueRef* ref, const char* tool,
                               const char* const* arguments) {
    if (!ref)
        return errAuthorizationInvalidRef;
    if (!tool)
        return errAuthorizationInvalidPointer;
    const std::string helper = programs.helper ? programs.helper : installedHelper();
    std::vector<const char*> words;
    if (!isRoot())
        words.push_back(programs.pkexec);
    words.insert(words.end(), {helper.c_str(), tool});
    for (; arguments && *arguments; ++arguments)
        words.push_back(*arguments);
    return runHelper(words);
}

OSStatus PolkitAuthoriser::free(const AuthorizationOpaqueRef* ref, unsigned long flags) {
    const bool forget = (flags & kAuthorizationFlagDestroyRights) != 0;
    if (ref && forget && !ref->keptAnswer.empty()) {
        SystemBus bus;
        // Whether it was kept until now does not matter.
        (void)bus.call(authority, "RevokeTemporaryAuthorizationById", forNoQuestion, "s",
                       ref->keptAnswer.c_str());
    }
    delete ref;
    return errAuthorizationSuccess;
}

Authoriser& authoriser() {
    static PolkitAuthoriser polkit;
    return inForce<Authoriser>(polkit);
}

} // namespace Korvex
