#include "registry/loginitems.h"

#include <KxQts/registry/prefs.h>

namespace Korvex::LoginItems {

using PropertyList::Editor;
using PropertyList::Tree;

namespace {

/// The list that a domain has, for the decision.
Outcome decideOn(const Tree& tree, const QString& key, const Decision& decision) {
    const Cf::Owned<CFTypeRef> list(tree.copy(tree.member(tree.top(), key)));
    return decision(list.get());
}

bool isOf(CFDictionaryRef facts, CFStringRef path) {
    return CFDictionaryContainsValue(facts, path) != 0;
}

/// The place of an application's item; −1 when there is none before the end or what ends the
/// search.
CFIndex placeOf(CFArrayRef items, CFStringRef path, FactsOf factsOf) {
    const CFIndex count = CFArrayGetCount(items);
    for (CFIndex i = 0; i < count; ++i) {
        const CFDictionaryRef facts = factsOf(CFArrayGetValueAtIndex(items, i));
        if (!facts)
            return -1;
        if (isOf(facts, path))
            return i;
    }
    return -1;
}

bool append(CFMutableArrayRef items, const Cf::Owned<CFTypeRef>& item) {
    const CFIndex before = CFArrayGetCount(items);
    if (item)
        CFArrayAppendValue(items, item.get());
    return CFArrayGetCount(items) > before;
}

} // namespace

Outcome decide(const Place& place, const Decision& decision) {
    Outcome outcome;
    const auto look = [&](const Tree& tree) { outcome = decideOn(tree, place.key, decision); };
    if (!systemPreferences().read(place.domain, look))
        outcome = decision(nullptr); // as without a list; it cannot be stored either
    if (!outcome.changed)
        return outcome;
    const bool isStored = systemPreferences().change(place.domain, [&](Editor& editor) {
        look(editor); // others may have changed it meanwhile
        return !outcome.changed || editor.set(editor.top(), place.key, outcome.changed.get());
    });
    outcome.result = outcome.result && isStored;
    return outcome;
}

bool act(CFMutableArrayRef items, const QString& appPath, AutoLaunchedItemAction action,
         FactsOf factsOf, const MakeItem& makeItem, bool& found, bool& isChanged) {
    if (CFArrayGetCount(items) == 0 && action != AutoLaunchedItemAdd)
        return true;
    const Cf::Owned<CFStringRef> path(createCFString(appPath));
    if (!path)
        return false;
    const CFIndex place = placeOf(items, path.get(), factsOf);
    found = place >= 0;
    if (found && action == AutoLaunchedItemRemove)
        CFArrayRemoveValueAtIndex(items, place);
    const bool isAdded = !found && action == AutoLaunchedItemAdd && append(items, makeItem());
    isChanged = isAdded || (found && action == AutoLaunchedItemRemove);
    return found || isAdded;
}

Cf::Owned<CFMutableArrayRef> mutableArray(CFTypeRef list) {
    if (!Cf::isA(list, Cf::Type::Array))
        return Cf::Owned<CFMutableArrayRef>(
            CFArrayCreateMutable(nullptr, 1, &kCFTypeArrayCallBacks));
    const auto* array = static_cast<CFArrayRef>(list);
    return Cf::Owned<CFMutableArrayRef>(
        CFArrayCreateMutableCopy(nullptr, CFArrayGetCount(array) + 1, array));
}

Cf::Owned<CFMutableDictionaryRef> makeDictionary() {
    return Cf::Owned<CFMutableDictionaryRef>(CFDictionaryCreateMutable(
        nullptr, 2, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

bool put(CFMutableDictionaryRef dictionary, const char* key, CFTypeRef value) {
    const Cf::Owned<CFStringRef> name(createCFString(QString::fromLatin1(key)));
    if (!dictionary || !name || !value)
        return false;
    CFDictionarySetValue(dictionary, name.get(), value);
    return CFDictionaryContainsKey(dictionary, name.get()) != 0;
}

Cf::Owned<CFTypeRef> pathAndHide(const QString& appPath) {
    Cf::Owned<CFMutableDictionaryRef> made = makeDictionary();
    const Cf::Owned<CFStringRef> path(createCFString(appPath));
    const Cf::Owned<CFStringRef> hide(createCFString(QStringLiteral("0")));
    const bool isWhole = put(made.get(), "Path", path.get()) && put(made.get(), "Hide", hide.get());
    return Cf::Owned<CFTypeRef>(isWhole ? made.release() : nullptr);
}

CFTypeRef valueOf(CFTypeRef dictionary, const char* key) {
    const Cf::Owned<CFStringRef> name(createCFString(QString::fromLatin1(key)));
    if (!Cf::isA(dictionary, Cf::Type::Dictionary) || !name)
        return nullptr;
    return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), name.get());
}

} // namespace Korvex::LoginItems
