/// \file
/// Login items: the programs that start when a user logs in, as lists in preference domains.
///
/// There are two lists. That of the login window is the array "AutoLaunchedApplicationDictionary"
/// of the domain "loginwindow", the user's own, or of "/Library/Preferences/loginwindow", the
/// machine's. The privileged one is the dictionary "privilegedlist" of the machine's domain
/// "/Library/Preferences/com.apple.loginitems"; it is used where the kernel's release is 11 or 12.
///
/// The library keeps these lists, and nothing else: **a Linux session reads its programs from
/// `~/.config/autostart` and `/etc/xdg/autostart`**, not from here. `kx login-items` shows the
/// lists.
///
/// A change is one step against other threads and processes, and is stored when the call returns
/// true. An item is that of an application when its path is any of the item's values. Any thread
/// may call.
#pragma once

#include <KxQts/export.h>

#include <QString>

namespace Korvex {

/// What is done with an application's item. Values above 2 are refused.
enum AutoLaunchedItemAction : unsigned {
    AutoLaunchedItemCheck = 0,
    AutoLaunchedItemRemove = 1,
    AutoLaunchedItemAdd = 2,
};

/// Looks an application up in the list of the login window, adds it or removes it; on systems with
/// a privileged list, a change of the machine's list is made there as well.
///
/// \param appPath The application. \param name Under which the privileged list shows it.
/// \param found Receives whether it was in the list.
/// \param iconBytes,iconLen,aliasBytes,aliasLen For an item of the privileged list: its icon and
/// its alias record, which are stored as they are. Otherwise not read.
/// \param global The machine's list, or else the user's.
/// \return Check: whether it is there, **or there is no list or an empty one**. Remove: whether it
/// was removed, or there is no list or an empty one; false when others are listed and it is not.
/// Add: whether it is there now. False for an unknown action and for what cannot be stored.
KXQTS_EXPORT bool checkAddRemoveLoginItem(const QString& appPath, const QString& name, bool& found,
                                          AutoLaunchedItemAction action,
                                          const unsigned char* iconBytes, unsigned long iconLen,
                                          const unsigned char* aliasBytes, unsigned long aliasLen,
                                          bool global);

/// The same in the privileged list, on any system.
/// \return As above, and false when the list lacks the array that its "Controller" names. Without
/// its icon or alias an application is not added.
KXQTS_EXPORT bool addRemoveLionGlobalLoginItem(const QString& appPath, const QString& name,
                                               AutoLaunchedItemAction action,
                                               const unsigned char* iconBytes,
                                               unsigned long iconLen,
                                               const unsigned char* aliasBytes,
                                               unsigned long aliasLen);

/// Removes an application from the machine's lists.
/// \param appPath Must have a "/" and a "." behind it: between the last ones stands its name.
/// \return False without these; else as `checkAddRemoveLoginItem`.
KXQTS_EXPORT bool removeLoginItem(const QString& appPath);

} // namespace Korvex
