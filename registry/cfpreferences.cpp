#include <KxQts/corefoundation.h>

#include "platform/corefoundation/containers.h"
#include "platform/corefoundation/string.h"
#include "platform/lock.h"
#include "platform/preferences.h"
#include "platform/withoutmemory.h"

#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

using Korvex::Lock;
using Korvex::LockGuard;
using Korvex::PreferenceDomain;
using Korvex::systemPreferences;
using Korvex::Cf::Owned;
using Korvex::PropertyList::Editor;
using Korvex::PropertyList::Tree;
using Scope = PreferenceDomain::Scope;

namespace {

constexpr CFIndex lengthOf(std::u16string_view text) {
    return static_cast<CFIndex>(text.size());
}

constexpr std::u16string_view anyUser = u"kCFPreferencesAnyUser";
constexpr std::u16string_view currentUser = u"kCFPreferencesCurrentUser";
constexpr std::u16string_view anyHost = u"kCFPreferencesAnyHost";
constexpr std::u16string_view currentHost = u"kCFPreferencesCurrentHost";

constinit const __CFString anyUserString(anyUser.data(), lengthOf(anyUser), false);
constinit const __CFString currentUserString(currentUser.data(), lengthOf(currentUser), false);
constinit const __CFString anyHostString(anyHost.data(), lengthOf(anyHost), false);
constinit const __CFString currentHostString(currentHost.data(), lengthOf(currentHost), false);

/// Values that were set and not yet written, by name; null removes.
using Noted = std::map<QString, std::shared_ptr<const void>>;

struct State {
    Lock lock;
    std::unordered_map<PreferenceDomain, Noted, Korvex::PreferenceDomainHash>
        noted KXQTS_GUARDED_BY(lock);
    bool isIncomplete KXQTS_GUARDED_BY(lock) = false; // for want of memory; told by what stores
};

State& state() {
    static auto* const made = new State; // threads that outlive main may still use it
    return *made;
}

std::optional<PreferenceDomain> domainOf(CFStringRef id, CFStringRef user, CFStringRef host) {
    if (!id)
        return std::nullopt;
    if (CFEqual(user, kCFPreferencesAnyUser) && CFEqual(host, kCFPreferencesCurrentHost))
        return PreferenceDomain{Korvex::Cf::text(id), Scope::AnyUser};
    if (CFEqual(user, kCFPreferencesCurrentUser) && CFEqual(host, kCFPreferencesAnyHost))
        return PreferenceDomain{Korvex::Cf::text(id), Scope::CurrentUser};
    return std::nullopt;
}

/// A domain of an absolute path is the machine's, wherever it lies.
std::optional<PreferenceDomain> appDomain(CFStringRef id) {
    if (!id)
        return std::nullopt;
    const QString text = Korvex::Cf::text(id);
    return PreferenceDomain{text, text.startsWith(QLatin1Char('/')) ? Scope::AnyUser
                                                                    : Scope::CurrentUser};
}

CFTypeRef copyValue(const std::optional<PreferenceDomain>& domain, CFStringRef key) {
    if (!domain || !key)
        return nullptr;
    const QString name = Korvex::Cf::text(key);
    {
        const LockGuard guard(state().lock);
        if (const auto noted = state().noted.find(*domain); noted != state().noted.end()) {
            if (const auto found = noted->second.find(name); found != noted->second.end())
                return CFRetain(found->second.get());
        }
    }
    return systemPreferences().copyValue(*domain, name);
}

void note(const std::optional<PreferenceDomain>& domain, CFStringRef key, CFTypeRef value) {
    if (!domain || !key)
        return;
    const LockGuard guard(state().lock);
    const std::shared_ptr<const void> kept(CFRetain(value), Korvex::Cf::Releaser());
    state().noted[*domain].insert_or_assign(Korvex::Cf::text(key), kept);
}

/// Does what has no result to tell of a failure.
template <class Work>
void noting(Work work) {
    const Korvex::ErrorNumberKept untilReturned;
    try {
        work();
    } catch (const std::bad_alloc&) {
        const LockGuard guard(state().lock);
        state().isIncomplete = true;
    }
}

bool takeIncompleteness() {
    const LockGuard guard(state().lock);
    return std::exchange(state().isIncomplete, false);
}

Noted takeNoted(const PreferenceDomain& domain) {
    const LockGuard guard(state().lock);
    const auto taken = state().noted.extract(domain);
    return taken ? std::move(taken.mapped()) : Noted();
}

bool write(const Noted& noted, Editor& editor) {
    for (const auto& [name, value] : noted) {
        if (!value)
            editor.remove(editor.top(), name);
        else if (!editor.set(editor.top(), name, value.get()))
            return false;
    }
    return true;
}

Boolean synchronize(const std::optional<PreferenceDomain>& domain) {
    if (!domain || takeIncompleteness())
        return 0;
    const Noted noted = takeNoted(*domain);
    if (noted.empty())
        return systemPreferences().synchronize(*domain) ? 1 : 0;
    return systemPreferences().change(*domain, [&](Editor& editor) { return write(noted, editor); })
               ? 1
               : 0;
}

/// Throws `std::bad_alloc`: half a list would be taken for the whole one.
void addNames(const Tree& tree, __CFArray& names) {
    const std::size_t count = tree.count(tree.top());
    for (std::size_t i = 0; i < count; ++i) {
        const CFStringRef name = Korvex::Cf::makeString(tree.entry(tree.top(), i).name);
        if (!name)
            throw std::bad_alloc();
        Korvex::Cf::adopt(names, name);
    }
}

} // namespace

constinit const CFStringRef kCFPreferencesAnyUser = &anyUserString;
constinit const CFStringRef kCFPreferencesCurrentUser = &currentUserString;
constinit const CFStringRef kCFPreferencesAnyHost = &anyHostString;
constinit const CFStringRef kCFPreferencesCurrentHost = &currentHostString;

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef applicationID,
                                         CFStringRef user, CFStringRef host) {
    return Korvex::keepingErrorNumber(
        nullptr, [&] { return copyValue(domainOf(applicationID, user, host), key); });
}

CFArrayRef CFPreferencesCopyKeyList(CFStringRef applicationID, CFStringRef user,
                                    CFStringRef host) try {
    const Korvex::ErrorNumberKept untilReturned;
    const std::optional<PreferenceDomain> domain = domainOf(applicationID, user, host);
    if (!domain)
        return nullptr;
    Owned<CFMutableArrayRef> names(Korvex::Cf::makeArray(false));
    const bool isWhole = names && systemPreferences().read(*domain, [&](const Tree& tree) {
        addNames(tree, *names.get());
    });
    return isWhole && CFArrayGetCount(names.get()) > 0 ? names.release() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID,
                           CFStringRef user, CFStringRef host) {
    noting([&] { note(domainOf(applicationID, user, host), key, value); });
}

Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef user, CFStringRef host) {
    return Korvex::keepingErrorNumber(
        0, [&] { return synchronize(domainOf(applicationID, user, host)); });
}

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    return Korvex::keepingErrorNumber(nullptr,
                                      [&] { return copyValue(appDomain(applicationID), key); });
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    noting([&] { note(appDomain(applicationID), key, value); });
}

Boolean CFPreferencesAppSynchronize(CFStringRef applicationID) {
    return Korvex::keepingErrorNumber(0, [&] { return synchronize(appDomain(applicationID)); });
}
