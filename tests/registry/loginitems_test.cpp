#include "common/objects.h"
#include "fakes/preferences.h"
#include "fakes/systemfacts.h"
#include "registry/prefsfixture.h"

#include <KxQts/registry/loginitems.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using Korvex::addRemoveLionGlobalLoginItem;
using Korvex::AutoLaunchedItemAction;
using Korvex::checkAddRemoveLoginItem;
using Korvex::removeLoginItem;
using KxTest::array;
using KxTest::dictionary;
using KxTest::Object;
using KxTest::text;

namespace {

constexpr auto check = Korvex::AutoLaunchedItemCheck;
constexpr auto remove_ = Korvex::AutoLaunchedItemRemove;
constexpr auto add = Korvex::AutoLaunchedItemAdd;

const QString tool = QStringLiteral("/Applications/Tool.app");
const QString other = QStringLiteral("/Applications/Other.app");
const QString windowKey = QStringLiteral("AutoLaunchedApplicationDictionary");
const QString privilegedKey = QStringLiteral("privilegedlist");
constexpr unsigned char icon[] = {1, 2, 3};
constexpr unsigned char alias[] = {7, 8};

Korvex::PreferenceDomain ofUser() {
    return {QStringLiteral("loginwindow"), Korvex::PreferenceDomain::Scope::CurrentUser};
}
Korvex::PreferenceDomain ofMachine() {
    return {QStringLiteral("/Library/Preferences/loginwindow"),
            Korvex::PreferenceDomain::Scope::AnyUser};
}
Korvex::PreferenceDomain privileged() {
    return {QStringLiteral("/Library/Preferences/com.apple.loginitems"),
            Korvex::PreferenceDomain::Scope::AnyUser};
}

/// What the library adds to the login window's list.
Object item(const QString& path) {
    const Object pathText = text(path);
    const Object hide = text("0");
    return dictionary({{"Path", &pathText}, {"Hide", &hide}});
}

/// What it adds to the privileged list.
Object privilegedItem(const QString& path, const QString& name) {
    const Object facts = item(path);
    const Object properties = dictionary({{"com.apple.loginitem.legacyprefs", &facts}});
    const Object nameText = text(name);
    const Object aliasData = KxTest::data(QByteArray("\x07\x08"));
    const Object iconData = KxTest::data(QByteArray("\x01\x02\x03"));
    return dictionary({{"CustomItemProperties", &properties},
                       {"Name", &nameText},
                       {"Alias", &aliasData},
                       {"Icon", &iconData}});
}

Object privilegedList(std::initializer_list<const Object*> items,
                      const QString& key = QStringLiteral("CustomListItems")) {
    const Object controller = text(key);
    const Object list = array(items);
    return dictionary({{"Controller", &controller}, {key, &list}});
}

class LoginItems : public testing::Test {
protected:
    LoginItems() { facts.release = "10.8.0"; }

    void store(const Korvex::PreferenceDomain& domain, const QString& key, const Object& value) {
        ASSERT_TRUE(preferences.setValue(domain, key, value.get()));
        preferences.changes = 0;
    }
    void storeList(const Object& list, bool global = false) {
        store(global ? ofMachine() : ofUser(), windowKey, list);
    }
    Object list(bool global = false) {
        return Object(preferences.copyValue(global ? ofMachine() : ofUser(), windowKey));
    }
    Object listOfPrivileged() { return Object(preferences.copyValue(privileged(), privilegedKey)); }

    bool act(AutoLaunchedItemAction action, const QString& path = tool, bool global = false) {
        found = true;
        return checkAddRemoveLoginItem(path, "Tool", found, action, icon, sizeof icon, alias,
                                       sizeof alias, global);
    }
    static bool actPrivileged(AutoLaunchedItemAction action, const QString& path = tool) {
        return addRemoveLionGlobalLoginItem(path, "Tool", action, icon, sizeof icon, alias,
                                            sizeof alias);
    }

    KxTest::ScriptedPreferences preferences;
    KxTest::ScriptedSystemFacts facts;
    bool found = false;
};

} // namespace

TEST_F(LoginItems, CheckingTellsWhetherTheApplicationIsListed) {
    const Object one = item(tool);
    storeList(array({&one}));
    EXPECT_TRUE(act(check));
    EXPECT_TRUE(found);
    EXPECT_FALSE(act(check, other));
    EXPECT_FALSE(found);
    EXPECT_EQ(preferences.changes, 0);
}

TEST_F(LoginItems, WithoutAListCheckingAndRemovingSucceed) {
    EXPECT_TRUE(act(check));
    EXPECT_FALSE(found);
    EXPECT_TRUE(act(remove_));
    EXPECT_FALSE(found);
    storeList(array({}));
    EXPECT_TRUE(act(check));
    EXPECT_TRUE(act(remove_));
    storeList(text("no list"));
    EXPECT_TRUE(act(check)) << "what is no array is none";
    EXPECT_EQ(preferences.changes, 0);
}

TEST_F(LoginItems, AddingMakesTheListWithAFlagThatIsAString) {
    EXPECT_TRUE(act(add));
    EXPECT_FALSE(found);
    const Object one = item(tool);
    EXPECT_TRUE(KxTest::same(list(), array({&one})));
    EXPECT_FALSE(list(true).get() != nullptr) << "the user's only";
}

TEST_F(LoginItems, AddingAppends) {
    const Object first = item(other);
    storeList(array({&first}));
    EXPECT_TRUE(act(add));
    const Object second = item(tool);
    EXPECT_TRUE(KxTest::same(list(), array({&first, &second})));
    EXPECT_TRUE(act(add));
    EXPECT_TRUE(found) << "there already";
    EXPECT_EQ(preferences.changes, 1) << "and not changed";
}

TEST_F(LoginItems, RemovingTakesTheFirstMatchOut) {
    const Object one = item(tool);
    const Object two = item(other);
    storeList(array({&two, &one, &one}));
    EXPECT_TRUE(act(remove_));
    EXPECT_TRUE(found);
    EXPECT_TRUE(KxTest::same(list(), array({&two, &one})));
    EXPECT_TRUE(act(remove_));
    EXPECT_FALSE(act(remove_)) << "others are listed";
    EXPECT_TRUE(KxTest::same(list(), array({&two})));
}

TEST_F(LoginItems, AMatchIsThePathUnderAnyKey) {
    const Object path = text(tool);
    const Object odd = dictionary({{"Somewhere", &path}});
    const Object number = KxTest::number(1);
    storeList(array({&number, &odd}));
    EXPECT_TRUE(act(check));
    EXPECT_TRUE(found) << "behind an item that is no dictionary, too";
}

TEST_F(LoginItems, TheMachinesListIsAnother) {
    EXPECT_TRUE(act(add, tool, true));
    const Object one = item(tool);
    EXPECT_TRUE(KxTest::same(list(true), array({&one})));
    EXPECT_EQ(list().get(), nullptr);
    EXPECT_EQ(listOfPrivileged().get(), nullptr) << "no system with a privileged list";
}

TEST_F(LoginItems, UnknownActionsTouchNothing) {
    const auto unknown = static_cast<AutoLaunchedItemAction>(3);
    EXPECT_FALSE(act(unknown));
    EXPECT_FALSE(found);
    EXPECT_FALSE(actPrivileged(unknown));
    EXPECT_EQ(preferences.changes, 0);
}

TEST_F(LoginItems, WhatCannotBeStoredFails) {
    preferences.readOnly.insert("loginwindow");
    EXPECT_FALSE(act(add));
    EXPECT_TRUE(act(check));
    preferences.readOnly.clear();
    EXPECT_TRUE(act(add));
    preferences.readOnly.insert("loginwindow");
    EXPECT_TRUE(act(add)) << "there already: no right to write is needed";
    EXPECT_FALSE(act(remove_));
    EXPECT_TRUE(found);
    preferences.damaged.insert("loginwindow");
    EXPECT_FALSE(act(add));
}

TEST_F(LoginItems, PrivilegedListIsKeptOnTwoReleasesForTheMachineOnly) {
    const Object one = privilegedItem(tool, "Tool");
    for (const char* release : {"11.4.2", "12.0.0"}) {
        facts.release = release;
        EXPECT_TRUE(act(add));
        EXPECT_EQ(listOfPrivileged().get(), nullptr) << "the user's list was changed";
        EXPECT_TRUE(act(add, tool, true));
        EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({&one})));
        EXPECT_TRUE(act(check, tool, true));
        EXPECT_TRUE(act(remove_, tool, true));
        EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({})));
        ASSERT_TRUE(preferences.removeValue(privileged(), privilegedKey));
    }
    facts.release = "13.0.0";
    EXPECT_TRUE(act(add, tool, true));
    EXPECT_EQ(listOfPrivileged().get(), nullptr);
}

TEST_F(LoginItems, ResultOfThePrivilegedListIsNotUsed) {
    facts.release = "11.0.0";
    preferences.readOnly.insert(privileged().id);
    EXPECT_TRUE(act(add, tool, true));
    EXPECT_EQ(listOfPrivileged().get(), nullptr);
}

TEST_F(LoginItems, PrivilegedListIsMadeByAddingOnly) {
    EXPECT_TRUE(actPrivileged(check));
    EXPECT_TRUE(actPrivileged(remove_));
    EXPECT_EQ(preferences.changes, 0);
    EXPECT_TRUE(actPrivileged(add));
    const Object one = privilegedItem(tool, "Tool");
    EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({&one})));
    EXPECT_TRUE(actPrivileged(add));
    EXPECT_EQ(preferences.changes, 1) << "there already";
    EXPECT_TRUE(actPrivileged(check));
    EXPECT_FALSE(actPrivileged(check, other));
    EXPECT_FALSE(actPrivileged(remove_, other));
    EXPECT_TRUE(actPrivileged(remove_));
    EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({})));
    EXPECT_TRUE(actPrivileged(remove_)) << "empty";
}

TEST_F(LoginItems, PrivilegedListKeepsTheKeyThatItsControllerNames) {
    const Object first = privilegedItem(other, "Other");
    const Object second = privilegedItem(tool, "Tool");
    store(privileged(), privilegedKey, privilegedList({&first}, "Mine"));
    EXPECT_TRUE(actPrivileged(add));
    EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({&first, &second}, "Mine")));
}

TEST_F(LoginItems, PrivilegedListWithoutItsArrayFails) {
    const Object controller = text("Mine");
    store(privileged(), privilegedKey, dictionary({{"Controller", &controller}}));
    EXPECT_FALSE(actPrivileged(add));
    EXPECT_FALSE(actPrivileged(check));
    store(privileged(), privilegedKey, dictionary({}));
    EXPECT_FALSE(actPrivileged(remove_));
    store(privileged(), privilegedKey, text("no list"));
    EXPECT_FALSE(actPrivileged(add));
    EXPECT_EQ(preferences.changes, 0);
}

TEST_F(LoginItems, PrivilegedSearchEndsAtAnItemWithoutPreferences) {
    const Object one = privilegedItem(tool, "Tool");
    const Object nameText = text("x");
    const Object bare = dictionary({{"Name", &nameText}});
    const Object empty = dictionary({});
    const Object half = dictionary({{"CustomItemProperties", &empty}});
    for (const Object* end : {&bare, &half}) {
        store(privileged(), privilegedKey, privilegedList({&one, end}));
        EXPECT_TRUE(actPrivileged(check));
        store(privileged(), privilegedKey, privilegedList({end, &one}));
        EXPECT_FALSE(actPrivileged(check));
        EXPECT_TRUE(actPrivileged(add)) << "once more";
        EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({end, &one, &one})));
    }
}

TEST_F(LoginItems, PrivilegedItemNeedsIconAndAlias) {
    EXPECT_FALSE(addRemoveLionGlobalLoginItem(tool, "Tool", add, nullptr, 3, alias, 2));
    EXPECT_FALSE(addRemoveLionGlobalLoginItem(tool, "Tool", add, icon, 3, nullptr, 2));
    EXPECT_EQ(listOfPrivileged().get(), nullptr) << "left as it was";
    EXPECT_TRUE(addRemoveLionGlobalLoginItem(tool, "Tool", add, nullptr, 0, nullptr, 0));
}

TEST_F(LoginItems, RemovingByPathUsesTheMachinesLists) {
    facts.release = "11.0.0";
    EXPECT_TRUE(act(add));
    EXPECT_TRUE(act(add, tool, true));
    EXPECT_TRUE(removeLoginItem(tool));
    EXPECT_TRUE(KxTest::same(list(true), array({})));
    EXPECT_TRUE(KxTest::same(listOfPrivileged(), privilegedList({})));
    EXPECT_TRUE(act(check));
    EXPECT_TRUE(found) << "the user's is as it was";
}

TEST_F(LoginItems, RemovingByPathNeedsASlashAndADotBehindIt) {
    EXPECT_TRUE(removeLoginItem(tool)) << "no list at all";
    EXPECT_FALSE(removeLoginItem("/Applications/Tool"));
    EXPECT_FALSE(removeLoginItem("Tool.app"));
    EXPECT_FALSE(removeLoginItem("/Applications.d/Tool"));
    EXPECT_FALSE(removeLoginItem(QString()));
}

using LoginItemFiles = KxTest::RegistryTest;

TEST_F(LoginItemFiles, AreTheDomainsOfUserAndMachine) {
    bool found = true;
    EXPECT_TRUE(checkAddRemoveLoginItem(tool, "Tool", found, add, nullptr, 0, nullptr, 0, true));
    EXPECT_TRUE(checkAddRemoveLoginItem(tool, "Tool", found, add, nullptr, 0, nullptr, 0, false));
    EXPECT_FALSE(found);
    EXPECT_TRUE(std::filesystem::exists(machineFile("loginwindow")));
    EXPECT_TRUE(std::filesystem::exists(userFile().replace_filename("loginwindow.plist")));
    EXPECT_FALSE(std::filesystem::exists(machineFile("com.apple.loginitems")));
}

TEST_F(LoginItemFiles, ManyThreadsLoseNoItem) {
    constexpr int count = 8;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([i] {
            bool found = false;
            EXPECT_TRUE(checkAddRemoveLoginItem(QString("/Tool%1.app").arg(i), "Tool", found, add,
                                                nullptr, 0, nullptr, 0, false));
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < count; ++i) {
        bool found = false;
        EXPECT_TRUE(checkAddRemoveLoginItem(QString("/Tool%1.app").arg(i), "Tool", found, check,
                                            nullptr, 0, nullptr, 0, false));
        EXPECT_TRUE(found) << i;
    }
}
