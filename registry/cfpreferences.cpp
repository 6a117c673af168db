#include <KxQts/corefoundation.h>

#include "platform/corefoundation/containers.h"
#include "platform/corefoundation/string.h"
#include "platform/lock.h"
#include "platform/preferences.h"

#include <QHash>

#include <memory>
#include <optional>

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
using Noted = QHash<QString, std::shared_ptr<const void>>;

struct State {
    Lock lock;
    QHash<PreferenceDomain, Noted> noted KXQTS_GUARDED_BY(lock);
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
        const Noted noted = state().noted.value(*domain);
        if (const auto found = noted.constFind(name); found != noted.constEnd())
            return CFRetain(found->get());
    }
    return systemPreferences().copyValue(*domain, name);
}

void note(const std::optional<PreferenceDomain>& domain, CFStringRef key, CFTypeRef value) {
    if (!domain || !key)
        return;
    const LockGuard guard(state().lock);
    const std::shared_ptr<const void> kept(CFRetain(value), Korvex::Cf::Releaser());
    state().noted[*domain].insert(Korvex::Cf::text(key), kept);
}

Noted takeNoted(const PreferenceDomain& domain) {
    const LockGuard guard(state().lock);
    return state().noted.take(domain);
}

bool write(const Noted& noted, Editor& editor) {
    for (auto value = noted.begin(); value != noted.end(); ++value) {
        if (!*value)
            editor.remove(editor.top(), value.key());
        else if (!editor.set(editor.top(), value.key(), value->get()))
            return false;
    }
    return true;
}

Boolean synchronize(const std::optional<PreferenceDomain>& domain) {
    if (!domain)
        return 0;
    const Noted noted = takeNoted(*domain);
    if (noted.isEmpty())
        return systemPreferences().synchronize(*domain) ? 1 : 0;
    return systemPreferences().change(*domain, [&](Editor& editor) { return write(noted, editor); })
               ? 1
               : 0;
}

void addNames(const Tree& tree, __CFArray& names) {
    const std::size_t count = tree.count(tree.top());
    for (std::size_t i = 0; i < count; ++i) {
        const CFStringRef name = Korvex::Cf::makeString(tree.entry(tree.top(), i).name);
        if (name)
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
    return copyValue(domainOf(applicationID, user, host), key);
}

CFArrayRef CFPreferencesCopyKeyList(CFStringRef applicationID, CFStringRef user, CFStringRef host) {
    const std::optional<PreferenceDomain> domain = domainOf(applicationID, user, host);
    if (!domain)
        return nullptr;
    Owned<CFMutableArrayRef> names(Korvex::Cf::makeArray(false));
    systemPreferences().read(*domain, [&](const Tree& tree) {
        if (names)
            addNames(tree, *names.get());
    });
    return CFArrayGetCount(names.get()) > 0 ? names.release() : nullptr;
}

void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID,
                           CFStringRef user, CFStringRef host) {
    note(domainOf(applicationID, user, host), key, value);
}

Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef user, CFStringRef host) {
    return synchronize(domainOf(applicationID, user, host));
}

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    return copyValue(appDomain(applicationID), key);
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    note(appDomain(applicationID), key, value);
}

Boolean CFPreferencesAppSynchronize(CFStringRef applicationID) {
    return synchronize(appDomain(applicationID));
}
