#include <KxQts/registry/prefs.h>

#include "handles/addresses.h"
#include "platform/corefoundation/object.h"
#include "platform/preferences.h"
#include "platform/withoutmemory.h"
#include "registry/prefs_tree.h"

namespace Korvex {

namespace {

using PropertyList::Editor;
using PropertyList::Kind;
using PropertyList::Node;
using PropertyList::Tree;
using Scope = PreferenceDomain::Scope;

constexpr unsigned long anyType = ~0UL;

QString defaultId() {
    return QStringLiteral("com.korvex.registry");
}

constexpr unsigned bit(Kind kind) {
    return 1U << static_cast<unsigned>(kind);
}

constexpr unsigned singleValues =
    bit(Kind::Number) | bit(Kind::String) | bit(Kind::Data) | bit(Kind::Boolean);

int valueTypeCode(Kind kind) {
    switch (kind) {
    case Kind::String:
        return 1;
    case Kind::Boolean:
        return 2;
    case Kind::Data:
        return 3;
    case Kind::Number:
        return 4;
    case Kind::Array:
        return 10;
    case Kind::Dictionary:
        return 11;
    default:
        return 0;
    }
}

bool isScope(const __CFString* user) {
    return user == kCFPreferencesAnyUser || user == kCFPreferencesCurrentUser;
}

} // namespace

WPrefs::WPrefs(const QString* appId, const QString* keyPath, bool anyUser)
    : systemEncoding(CFStringGetSystemEncoding()) {
    HandleAddresses::setUse(this, HandleAddresses::Use::Record);
    initialize(appId ? *appId : defaultId(), keyPath, anyUser);
}

WPrefs::~WPrefs() {
    CFRelease(platformId);
}

bool WPrefs::initialize(const QString& appId, const QString* keyPath, bool anyUser) try {
    const ErrorNumberKept untilReturned;
    const __CFString* made = createCFString(appId);
    if (!made)
        return false;
    CFRelease(platformId);
    platformId = made;
    id = appId;
    path = keyPath ? *keyPath : QString();
    isAnyUser = anyUser;
    userScope = anyUser ? kCFPreferencesAnyUser : kCFPreferencesCurrentUser;
    // One look at the domain serves to synchronise it and to tell what initKey wants to know.
    existed = false;
    synchronized = systemPreferences().read(domainOf(userScope), [&](const Tree& tree) {
        existed = findValue(tree, path, true).node != PropertyList::none;
    });
    return synchronized;
} catch (const std::bad_alloc&) {
    return false;
}

PreferenceDomain WPrefs::domainOf(const __CFString* user) const {
    return {id, user == kCFPreferencesAnyUser ? Scope::AnyUser : Scope::CurrentUser};
}

QString WPrefs::valuePath(const QString& name) const {
    return path + QLatin1Char('/') + name;
}

const void* WPrefs::getObjectOfType(const QString& ofPath, unsigned long typeId,
                                    const __CFString* user) try {
    const ErrorNumberKept untilReturned;
    if (!synchronized || !isScope(user))
        return nullptr;
    const bool any = typeId == anyType;
    CFTypeRef value = nullptr;
    bool isTop = false;
    systemPreferences().read(domainOf(user), [&](const Tree& tree) {
        const FoundValue found = findValue(tree, ofPath, any);
        isTop = found.isTop;
        value = tree.copy(found.node);
    });
    // The type of what lies deeper is the caller's affair.
    if (isTop && !any && CFGetTypeID(value) != typeId) {
        CFRelease(value);
        return nullptr;
    }
    return value;
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool WPrefs::putObject(const QString& toPath, const void* value, const __CFString* user) {
    return keepingErrorNumber(false, [&] {
        return synchronized && !toPath.isEmpty() && isScope(user) &&
               systemPreferences().change(
                   domainOf(user), [&](Editor& editor) { return putValue(editor, toPath, value); });
    });
}

/// Removes what a path leads to if it is one of some kinds.
bool WPrefs::removeIf(const QString& ofPath, unsigned kinds) {
    return synchronized && !ofPath.isEmpty() &&
           systemPreferences().change(domainOf(userScope), [&](Editor& editor) {
               const Kind kind = editor.kind(findValue(editor, ofPath, true).node);
               return (bit(kind) & kinds) != 0 && putValue(editor, ofPath, nullptr);
           });
}

bool WPrefs::enumKey(unsigned index, QString& name, int* type) try {
    const ErrorNumberKept untilReturned;
    name.clear();
    if (type)
        *type = 0;
    bool found = false;
    if (!synchronized)
        return false;
    systemPreferences().read(domainOf(userScope), [&](const Tree& tree) {
        const Tree::Entry entry = tree.entry(findValue(tree, path, true).node, index);
        name = entry.name;
        found = entry.value != PropertyList::none;
        if (found && type)
            *type = valueTypeCode(tree.kind(entry.value));
    });
    return found;
} catch (const std::bad_alloc&) {
    return false;
}

bool WPrefs::deleteKey(const QString& subKey) {
    return keepingErrorNumber(false, [&] {
        return removeIf(path.isEmpty() ? subKey : valuePath(subKey), bit(Kind::Dictionary));
    });
}

bool WPrefs::deleteValue(const QString& name) {
    return keepingErrorNumber(false, [&] { return removeIf(valuePath(name), singleValues); });
}

bool WPrefs::setSyncProperty(const QString& key, const void* value, const __CFString* user) try {
    const ErrorNumberKept untilReturned;
    if (!isScope(user))
        return false;
    Preferences& storage = systemPreferences();
    return value ? storage.setValue(domainOf(user), key, value)
                 : storage.removeValue(domainOf(user), key);
} catch (const std::bad_alloc&) {
    return false;
}

const void* WPrefs::getSyncProperty(const QString& key, const __CFString* user) {
    return keepingErrorNumber(nullptr, [&] {
        return isScope(user) ? systemPreferences().copyValue(domainOf(user), key) : nullptr;
    });
}

bool getPreferencesFilePath(bool localDomain, QString& out) try {
    const ErrorNumberKept untilReturned;
    constexpr qsizetype longestPath = 260;
    out.clear();
    const std::optional<QString> folder =
        systemPreferences().folder(localDomain ? Scope::AnyUser : Scope::CurrentUser);
    if (!folder || folder->toUtf8().size() > longestPath)
        return false;
    out = *folder + QLatin1Char('/') + defaultId() + QLatin1String(".plist");
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace Korvex
