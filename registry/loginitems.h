#pragma once

#include "platform/corefoundation/object.h"
#include "platform/preferences.h"

#include <KxQts/corefoundation.h>
#include <KxQts/registry/loginitems.h>

#include <functional>

/// Lists of login items as values of preference domains.
namespace Korvex::LoginItems {

/// What comes of one look at a list.
struct Outcome {
    bool result = false;
    bool found = false;
    Cf::Owned<CFTypeRef> changed; ///< What is stored in place of the list; null to leave it
};

/// Looks at a list, null for none, and says what is to be done.
using Decision = std::function<Outcome(CFTypeRef list)>;

/// A list under its key in a domain.
struct Place {
    PreferenceDomain domain;
    QString key;
};

/// Decides on a list and stores what is decided, in one step against others. Nothing is written,
/// nor must it be possible to write, where nothing is changed.
/// \return The decision; its result is false for what could not be stored.
[[nodiscard]] Outcome decide(const Place& place, const Decision& decision);

/// An item that is about to be added.
using MakeItem = std::function<Cf::Owned<CFTypeRef>()>;

/// What an item is told by: null for one that ends the search.
using FactsOf = CFDictionaryRef (*)(CFTypeRef item);

/// Looks for an application among items and changes them as the action says.
/// \param items A copy that may be changed. \param isChanged Receives whether it was.
/// \return Whether the action has succeeded as far as it does not depend on storing.
[[nodiscard]] bool act(CFMutableArrayRef items, const QString& appPath,
                       AutoLaunchedItemAction action, FactsOf factsOf, const MakeItem& makeItem,
                       bool& found, bool& isChanged);

/// A copy of a list that may be changed, or an empty one for anything else.
[[nodiscard]] Cf::Owned<CFMutableArrayRef> mutableArray(CFTypeRef list);

/// A dictionary that may be changed, with two of its entries or none.
[[nodiscard]] Cf::Owned<CFMutableDictionaryRef> makeDictionary();

/// Adds an entry. A null value is left out. \return Whether it is there.
bool put(CFMutableDictionaryRef dictionary, const char* key, CFTypeRef value);

/// {"Path": the application's, "Hide": "0"}: the flag is a string, which the login window takes.
[[nodiscard]] Cf::Owned<CFTypeRef> pathAndHide(const QString& appPath);

/// A value of a dictionary by its name; null for none and for what is no dictionary.
[[nodiscard]] CFTypeRef valueOf(CFTypeRef dictionary, const char* key);

} // namespace Korvex::LoginItems
