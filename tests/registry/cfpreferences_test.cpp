#include "registry/prefsfixture.h"

#include "fakes/preferences.h"

#include <fstream>
#include <set>

using namespace KxTest;

namespace {

using CfPreferences = RegistryTest;

CFStringRef str(const Object& object) {
    return static_cast<CFStringRef>(object.get());
}

const Object& id() {
    static const Object made = text("com.example.cf");
    return made;
}

const Object& key() {
    static const Object made = text("key");
    return made;
}

Object valueIn(CFStringRef user, CFStringRef host) {
    return Object(CFPreferencesCopyValue(str(key()), str(id()), user, host));
}

} // namespace

TEST_F(CfPreferences, ValuesAreNotedAndThenWritten) {
    CFPreferencesSetValue(str(key()), number(1).get(), str(id()), kCFPreferencesAnyUser,
                          kCFPreferencesCurrentHost);
    EXPECT_FALSE(std::filesystem::exists(machineFile("com.example.cf")));
    EXPECT_TRUE(same(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost), number(1)));
    EXPECT_TRUE(
        CFPreferencesSynchronize(str(id()), kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    EXPECT_TRUE(std::filesystem::exists(machineFile("com.example.cf")));
    EXPECT_TRUE(same(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost), number(1)));
    CFPreferencesSetValue(str(key()), nullptr, str(id()), kCFPreferencesAnyUser,
                          kCFPreferencesCurrentHost);
    EXPECT_FALSE(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    EXPECT_TRUE(
        CFPreferencesSynchronize(str(id()), kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    EXPECT_FALSE(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
}

TEST_F(CfPreferences, OnlyTwoPairsOfUserAndHostHaveAStore) {
    const Object equal = text("kCFPreferencesCurrentUser");
    CFPreferencesSetValue(str(key()), number(1).get(), str(id()), str(equal),
                          kCFPreferencesAnyHost);
    EXPECT_TRUE(
        CFPreferencesSynchronize(str(id()), kCFPreferencesCurrentUser, kCFPreferencesAnyHost))
        << "names count, not objects";
    EXPECT_TRUE(valueIn(kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
    EXPECT_FALSE(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    EXPECT_FALSE(valueIn(kCFPreferencesAnyUser, kCFPreferencesAnyHost));
    EXPECT_FALSE(valueIn(kCFPreferencesCurrentUser, kCFPreferencesCurrentHost));
    EXPECT_FALSE(CFPreferencesSynchronize(str(id()), kCFPreferencesAnyUser, kCFPreferencesAnyHost));
    EXPECT_FALSE(
        CFPreferencesSynchronize(nullptr, kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
}

TEST_F(CfPreferences, ApplicationValuesAreTheUsersOrAnAbsoluteFiles) {
    CFPreferencesSetAppValue(str(key()), number(1).get(), str(id()));
    EXPECT_TRUE(CFPreferencesAppSynchronize(str(id())));
    EXPECT_TRUE(valueIn(kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
    EXPECT_FALSE(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    EXPECT_TRUE(same(Object(CFPreferencesCopyAppValue(str(key()), str(id()))), number(1)));

    const Object absolute = text("/Library/Preferences/com.example.cf");
    EXPECT_FALSE(Object(CFPreferencesCopyAppValue(str(key()), str(absolute))));
    CFPreferencesSetAppValue(str(key()), number(2).get(), str(absolute));
    EXPECT_TRUE(CFPreferencesAppSynchronize(str(absolute)));
    EXPECT_TRUE(same(valueIn(kCFPreferencesAnyUser, kCFPreferencesCurrentHost), number(2)));
    EXPECT_EQ(std::filesystem::status(machineFile("com.example.cf")).permissions(),
              std::filesystem::perms(0644));
}

TEST_F(CfPreferences, NamesAreListed) {
    EXPECT_EQ(CFPreferencesCopyKeyList(str(id()), kCFPreferencesAnyUser, kCFPreferencesCurrentHost),
              nullptr);
    for (const char* name : {"a", "b/c", ""})
        CFPreferencesSetValue(str(text(name)), number(1).get(), str(id()), kCFPreferencesAnyUser,
                              kCFPreferencesCurrentHost);
    ASSERT_TRUE(
        CFPreferencesSynchronize(str(id()), kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    const Object names(
        CFPreferencesCopyKeyList(str(id()), kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    std::set<QString> found;
    const auto* list = static_cast<CFArrayRef>(names.get());
    for (CFIndex i = 0; i < CFArrayGetCount(list); ++i)
        found.insert(textOf(CFArrayGetValueAtIndex(list, i)));
    EXPECT_EQ(found, (std::set<QString>{"", "a", "b/c"}));
}

TEST_F(CfPreferences, WhatCouldNotBeWrittenIsForgotten) {
    ScriptedPreferences preferences;
    preferences.readOnly.insert("com.example.cf");
    CFPreferencesSetAppValue(str(key()), number(1).get(), str(id()));
    EXPECT_FALSE(CFPreferencesAppSynchronize(str(id())));
    EXPECT_FALSE(Object(CFPreferencesCopyAppValue(str(key()), str(id()))));
    EXPECT_TRUE(CFPreferencesAppSynchronize(str(id())));
}

TEST_F(CfPreferences, SeveralValuesAreWrittenInOneChange) {
    ScriptedPreferences preferences;
    CFPreferencesSetAppValue(str(key()), number(1).get(), str(id()));
    CFPreferencesSetAppValue(str(text("other")), number(2).get(), str(id()));
    EXPECT_TRUE(CFPreferencesAppSynchronize(str(id())));
    EXPECT_EQ(preferences.changes, 1);
}

TEST_F(CfPreferences, ADamagedDomainFailsToSynchronise) {
    std::filesystem::create_directories(machineFile("com.example.cf").parent_path());
    std::ofstream(machineFile("com.example.cf")) << "damaged";
    EXPECT_FALSE(
        CFPreferencesSynchronize(str(id()), kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
}
