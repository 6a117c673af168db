#include "platform/preferences.h"

#include "common/objects.h"
#include "fakes/preferences.h"
#include "platform/linux/filepreferences.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <thread>
#include <vector>

using namespace KxTest;
using Korvex::FilePreferences;
using Korvex::PreferenceDomain;
using Korvex::PropertyList::Editor;
using Korvex::PropertyList::Kind;
using Korvex::PropertyList::Node;
using Korvex::PropertyList::none;
using Korvex::PropertyList::Tree;
using Scope = PreferenceDomain::Scope;

// What every preference storage fulfils, the real one and the scripted one.

namespace {

template <class Storage>
class AnyPreferences : public testing::Test {
protected:
    void TearDown() override {
        for (const char* root : {"KXQTS_ROOT", "HOME"})
            std::filesystem::remove_all(std::filesystem::path(std::getenv(root)) / "Library");
    }

    Object value(const QString& name) { return Object(storage.copyValue(domain, name)); }

    bool set(const QString& name, const Object& value) {
        return storage.setValue(domain, name, value.get());
    }

    Storage storage;
    const PreferenceDomain domain{"com.example.test", Scope::CurrentUser};
};

using Storages = testing::Types<FilePreferences, ScriptedPreferences>;

} // namespace

TYPED_TEST_SUITE(AnyPreferences, Storages);

TYPED_TEST(AnyPreferences, ADomainThatNobodyWroteToIsEmpty) {
    EXPECT_TRUE(this->storage.synchronize(this->domain));
    EXPECT_FALSE(this->value("a"));
    std::size_t count = 99;
    EXPECT_TRUE(this->storage.read(this->domain,
                                   [&](const Tree& tree) { count = tree.count(tree.top()); }));
    EXPECT_EQ(count, 0U);
}

TYPED_TEST(AnyPreferences, ValuesAreSetReplacedAndRemoved) {
    EXPECT_TRUE(this->set("a", text("one")));
    EXPECT_TRUE(this->set("b", number(2)));
    EXPECT_TRUE(same(this->value("a"), text("one")));
    EXPECT_TRUE(this->set("a", number(1)));
    EXPECT_TRUE(same(this->value("a"), number(1)));
    EXPECT_TRUE(this->storage.removeValue(this->domain, u"a"));
    EXPECT_FALSE(this->value("a"));
    EXPECT_TRUE(same(this->value("b"), number(2)));
    EXPECT_TRUE(this->storage.removeValue(this->domain, u"a")) << "nothing to remove is a success";
}

TYPED_TEST(AnyPreferences, ScopesAndDomainsAreSeparate) {
    const PreferenceDomain machine{this->domain.id, Scope::AnyUser};
    const PreferenceDomain other{"com.example.other", Scope::CurrentUser};
    ASSERT_TRUE(this->set("a", number(1)));
    ASSERT_TRUE(this->storage.setValue(machine, u"a", number(2).get()));
    EXPECT_TRUE(same(this->value("a"), number(1)));
    EXPECT_TRUE(same(Object(this->storage.copyValue(machine, u"a")), number(2)));
    EXPECT_FALSE(Object(this->storage.copyValue(other, u"a")));
}

TYPED_TEST(AnyPreferences, AnEmptyDomainNameHasNoStore) {
    const PreferenceDomain nameless{"", Scope::CurrentUser};
    EXPECT_FALSE(this->storage.synchronize(nameless));
    EXPECT_FALSE(this->storage.setValue(nameless, u"a", number(1).get()));
    EXPECT_FALSE(this->storage.read(nameless, [](const Tree&) { FAIL(); }));
}

TYPED_TEST(AnyPreferences, WhatIsNoPropertyListIsRefused) {
    ASSERT_TRUE(this->set("a", number(1)));
    const Object url(CFURLCreateWithFileSystemPath(
        nullptr, static_cast<CFStringRef>(text("/x").get()), kCFURLPOSIXPathStyle, 0));
    EXPECT_FALSE(this->set("a", url));
    EXPECT_TRUE(same(this->value("a"), number(1)));
}

TYPED_TEST(AnyPreferences, ATreeIsWalkedWithoutMakingObjects) {
    const Object seven = number(7);
    const Object list = array({&seven});
    const Object inner = dictionary({{"list", &list}, {"s", &seven}});
    ASSERT_TRUE(this->set("a", inner));
    this->storage.read(this->domain, [&](const Tree& tree) {
        const Node a = tree.member(tree.top(), u"a");
        EXPECT_EQ(tree.kind(a), Kind::Dictionary);
        EXPECT_EQ(tree.count(a), 2U);
        const Node found = tree.member(a, u"list");
        EXPECT_EQ(tree.kind(found), Kind::Array);
        EXPECT_EQ(tree.kind(tree.element(found, 0)), Kind::Number);
        EXPECT_EQ(tree.element(found, 1), none);
        EXPECT_EQ(tree.element(a, 0), none) << "a dictionary has no elements";
        EXPECT_EQ(tree.member(found, u"0"), none) << "an array has no names";
        EXPECT_EQ(tree.entry(a, 0).name, "list");
        EXPECT_EQ(tree.entry(a, 2).value, none);
        EXPECT_EQ(tree.kind(none), Kind::None);
        EXPECT_TRUE(same(Object(tree.copy(a)), inner));
    });
}

TYPED_TEST(AnyPreferences, AChangeIsWholeOrNotAtAll) {
    ASSERT_TRUE(this->set("a", number(1)));
    EXPECT_FALSE(this->storage.change(this->domain, [](Editor& editor) {
        EXPECT_TRUE(editor.set(editor.top(), u"a", number(2).get()));
        editor.remove(editor.top(), u"b");
        return false;
    }));
    EXPECT_TRUE(same(this->value("a"), number(1)));
    EXPECT_TRUE(this->storage.change(this->domain, [](Editor& editor) {
        const Node made = editor.makeDictionary(editor.top(), u"a");
        return made != none && editor.set(made, u"b", number(2).get()) &&
               editor.makeDictionary(editor.top(), u"a") != none;
    }));
    const Object two = number(2);
    EXPECT_TRUE(same(this->value("a"), dictionary({{"b", &two}}))) << "it replaced the number";
}

TYPED_TEST(AnyPreferences, ChangesOfManyThreadsAreAllThere) {
    constexpr int threads = 4;
    constexpr int rounds = 25;
    ASSERT_TRUE(this->set("sum", number(0)));
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                EXPECT_TRUE(this->storage.change(this->domain, [](Editor& editor) {
                    const Object old(editor.copy(editor.member(editor.top(), u"sum")));
                    long long sum = 0;
                    CFNumberGetValue(static_cast<CFNumberRef>(old.get()), kCFNumberLongLongType,
                                     &sum);
                    return editor.set(editor.top(), u"sum", number(sum + 1).get());
                }));
                EXPECT_TRUE(this->value("sum"));
            }
        });
    for (std::thread& thread : running)
        thread.join();
    EXPECT_TRUE(same(this->value("sum"), number(threads * rounds)));
}

TYPED_TEST(AnyPreferences, OddNamesAreKept) {
    QString odd(10000, 'n');
    odd += QChar(0);
    odd += QStringLiteral("\U0001F600/");
    for (const QString& name : {QString(), QString("/"), odd, QString(QChar(0xD800))}) {
        EXPECT_TRUE(this->set(name, text(name)));
        EXPECT_TRUE(same(this->value(name), text(name)));
    }
}
