#include "registry/loginitems.h"
#include "platform/withoutmemory.h"

#include <KxQts/registry/prefs.h>
#include <KxQts/system/systeminfo.h>

namespace Korvex {

using namespace LoginItems;

namespace {

using Scope = PreferenceDomain::Scope;

/// What the caller brings for an item of the privileged list.
struct Item {
    const QString& appPath;
    const QString& name;
    Cf::Owned<CFTypeRef> icon;
    Cf::Owned<CFTypeRef> alias;
};

Place loginWindow(bool global) {
    const QString key = QStringLiteral("AutoLaunchedApplicationDictionary");
    if (global)
        return {{QStringLiteral("/Library/Preferences/loginwindow"), Scope::AnyUser}, key};
    return {{QStringLiteral("loginwindow"), Scope::CurrentUser}, key};
}

Place privileged() {
    return {{QStringLiteral("/Library/Preferences/com.apple.loginitems"), Scope::AnyUser},
            QStringLiteral("privilegedlist")};
}

CFDictionaryRef asDictionary(CFTypeRef value) {
    return Cf::isA(value, Cf::Type::Dictionary) ? static_cast<CFDictionaryRef>(value) : nullptr;
}

CFDictionaryRef privilegedFacts(CFTypeRef item) {
    return asDictionary(
        valueOf(valueOf(item, "CustomItemProperties"), "com.apple.loginitem.legacyprefs"));
}

Cf::Owned<CFTypeRef> dataOf(const unsigned char* bytes, unsigned long length) {
    return Cf::Owned<CFTypeRef>(CFDataCreate(nullptr, bytes, static_cast<CFIndex>(length)));
}

Cf::Owned<CFTypeRef> makePrivilegedItem(const Item& item) {
    Cf::Owned<CFMutableDictionaryRef> made = makeDictionary();
    const Cf::Owned<CFMutableDictionaryRef> properties = makeDictionary();
    const Cf::Owned<CFTypeRef> facts = pathAndHide(item.appPath);
    const Cf::Owned<CFStringRef> name(createCFString(item.name));
    const bool isWhole = put(properties.get(), "com.apple.loginitem.legacyprefs", facts.get()) &&
                         put(made.get(), "CustomItemProperties", properties.get()) &&
                         put(made.get(), "Alias", item.alias.get()) &&
                         put(made.get(), "Icon", item.icon.get());
    put(made.get(), "Name", name.get()); // an item does without
    return Cf::Owned<CFTypeRef>(isWhole ? made.release() : nullptr);
}

/// {"Controller": "CustomListItems", "CustomListItems": []}
Cf::Owned<CFMutableDictionaryRef> emptyPrivilegedList() {
    Cf::Owned<CFMutableDictionaryRef> made = makeDictionary();
    const Cf::Owned<CFStringRef> controller(createCFString(QStringLiteral("CustomListItems")));
    const Cf::Owned<CFMutableArrayRef> items = mutableArray(nullptr);
    put(made.get(), "Controller", controller.get());
    put(made.get(), "CustomListItems", items.get());
    return made;
}

Cf::Owned<CFMutableDictionaryRef> mutableList(CFTypeRef list) {
    if (!list)
        return emptyPrivilegedList();
    const CFDictionaryRef present = asDictionary(list);
    return Cf::Owned<CFMutableDictionaryRef>(
        present ? CFDictionaryCreateMutableCopy(nullptr, 0, present) : nullptr);
}

Outcome decideOnLoginWindow(CFTypeRef list, const QString& appPath, AutoLaunchedItemAction action) {
    // An item that is no dictionary is nobody's, and others may stand behind it.
    const auto facts = [](CFTypeRef item) -> CFDictionaryRef {
        static const Cf::Owned<CFMutableDictionaryRef> nothing = makeDictionary();
        const CFDictionaryRef dictionary = asDictionary(item);
        return dictionary ? dictionary : nothing.get();
    };
    Outcome outcome;
    Cf::Owned<CFMutableArrayRef> items = mutableArray(list);
    bool isChanged = false;
    outcome.result = items && act(
                                  items.get(), appPath, action, facts,
                                  [&] { return pathAndHide(appPath); }, outcome.found, isChanged);
    if (isChanged)
        outcome.changed = Cf::Owned<CFTypeRef>(items.release());
    return outcome;
}

Outcome decideOnPrivileged(CFTypeRef list, const Item& item, AutoLaunchedItemAction action) {
    Outcome outcome;
    outcome.result = !list && action != AutoLaunchedItemAdd;
    if (outcome.result)
        return outcome;
    Cf::Owned<CFMutableDictionaryRef> changed = mutableList(list);
    const CFTypeRef controller = valueOf(changed.get(), "Controller");
    if (!Cf::isA(controller, Cf::Type::String))
        return outcome;
    const CFTypeRef array = CFDictionaryGetValue(changed.get(), controller);
    if (!Cf::isA(array, Cf::Type::Array))
        return outcome;
    const Cf::Owned<CFMutableArrayRef> items = mutableArray(array);
    bool isChanged = false;
    outcome.result =
        items && act(
                     items.get(), item.appPath, action, privilegedFacts,
                     [&] { return makePrivilegedItem(item); }, outcome.found, isChanged);
    if (isChanged) {
        CFDictionarySetValue(changed.get(), controller, items.get());
        outcome.changed = Cf::Owned<CFTypeRef>(changed.release());
    }
    return outcome;
}

} // namespace

bool checkAddRemoveLoginItem(const QString& appPath, const QString& name, bool& found,
                             AutoLaunchedItemAction action, const unsigned char* iconBytes,
                             unsigned long iconLen, const unsigned char* aliasBytes,
                             unsigned long aliasLen, bool global) try {
    const ErrorNumberKept untilReturned;
    found = false;
    if (action > AutoLaunchedItemAdd)
        return false;
    const Outcome outcome = decide(loginWindow(global), [&](CFTypeRef list) {
        return decideOnLoginWindow(list, appPath, action);
    });
    found = outcome.found;
    if (outcome.result && action != AutoLaunchedItemCheck && global &&
        (isMacOsxLion() || isMacOsxMountainLion()))
        (void)addRemoveLionGlobalLoginItem(appPath, name, action, iconBytes, iconLen, aliasBytes,
                                           aliasLen);
    return outcome.result;
} catch (const std::bad_alloc&) {
    return false;
}

bool addRemoveLionGlobalLoginItem(const QString& appPath, const QString& name,
                                  AutoLaunchedItemAction action, const unsigned char* iconBytes,
                                  unsigned long iconLen, const unsigned char* aliasBytes,
                                  unsigned long aliasLen) try {
    const ErrorNumberKept untilReturned;
    if (action > AutoLaunchedItemAdd)
        return false;
    const Item item{appPath, name, dataOf(iconBytes, iconLen), dataOf(aliasBytes, aliasLen)};
    return decide(privileged(),
                  [&](CFTypeRef list) { return decideOnPrivileged(list, item, action); })
        .result;
} catch (const std::bad_alloc&) {
    return false;
}

bool removeLoginItem(const QString& appPath) try {
    const ErrorNumberKept untilReturned;
    const qsizetype slash = appPath.lastIndexOf(QLatin1Char('/'));
    const qsizetype dot = appPath.lastIndexOf(QLatin1Char('.'));
    if (slash < 0 || dot < slash)
        return false;
    bool found = false;
    return checkAddRemoveLoginItem(appPath, appPath.mid(slash + 1, dot - slash - 1), found,
                                   AutoLaunchedItemRemove, nullptr, 0, nullptr, 0, true);
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace Korvex
