#include "common/objects.h"

#include <KxQts/registry/prefs.h>

#include <gtest/gtest.h>

#include <string>

using namespace KxTest;

namespace {

constexpr unsigned long anyType = ~0UL;

const __CFDictionary* asDictionary(const Object& object) {
    return static_cast<CFDictionaryRef>(object.get());
}

__CFDictionary* asMutable(const Object& object) {
    return const_cast<__CFDictionary*>(asDictionary(object));
}

Object in(const Object& dictionary, const QString& path, unsigned long type = anyType) {
    return Object(getCFDictionaryKeyValue(asDictionary(dictionary), path, type));
}

} // namespace

TEST(PrefsObjects, StringsKeepEveryCodeUnit) {
    const QString odd = QStringLiteral("a\u00e9") + QChar(0xDC00) + QChar(0);
    EXPECT_EQ(textOf(Object(createCFString(odd)).get()), odd);
    EXPECT_EQ(CFStringGetLength(static_cast<CFStringRef>(Object(createCFString("")).get())), 0);
}

TEST(PrefsObjects, DictionariesAndArraysAreWalked) {
    const Object x = text("x");
    const Object inner = dictionary({{"x", &x}});
    const Object list = array({&inner, &x});
    const Object top = dictionary({{"list", &list}, {"x", &x}});
    EXPECT_TRUE(same(in(top, "x"), x));
    EXPECT_TRUE(same(in(top, "list/0/x"), x));
    EXPECT_TRUE(same(in(top, "list"), list));
    EXPECT_FALSE(in(top, "list", CFArrayGetTypeID()));
    EXPECT_FALSE(in(top, "list/"));
    EXPECT_TRUE(same(in(top, "x/what/ever", CFNumberGetTypeID()), x));
    EXPECT_FALSE(in(top, ""));
    EXPECT_FALSE(in(top, "missing/x"));
    EXPECT_EQ(getCFDictionaryKeyValue(nullptr, "x", anyType), nullptr);
    const auto* elements = static_cast<CFArrayRef>(list.get());
    EXPECT_TRUE(same(Object(getCFArrayKeyValue(elements, "1", anyType)), x));
    EXPECT_TRUE(same(Object(getCFArrayKeyValue(elements, "0", anyType)), inner));
    for (const char* index : {"2", "-1", "x", "", "1.0"})
        EXPECT_EQ(getCFArrayKeyValue(elements, index, anyType), nullptr) << index;
    EXPECT_EQ(getCFArrayKeyValue(nullptr, "0", anyType), nullptr);
}

TEST(PrefsObjects, SettingReplacesDictionariesByChangedCopies) {
    const Object one = number(1);
    const Object two = number(2);
    const Object inner = dictionary({{"old", &one}});
    const Object top = dictionary({{"d", &inner}, {"n", &one}});
    EXPECT_TRUE(setCFDictionaryKeyValue(asMutable(top), "d/new", two.get()));
    EXPECT_TRUE(same(in(top, "d"), dictionary({{"old", &one}, {"new", &two}})));
    EXPECT_TRUE(same(inner, dictionary({{"old", &one}}))) << "the old one is as it was";
    EXPECT_TRUE(setCFDictionaryKeyValue(asMutable(top), "n/a/b", two.get()));
    EXPECT_TRUE(same(in(top, "n/a/b"), two));
    EXPECT_TRUE(setCFDictionaryKeyValue(asMutable(top), "d/old", nullptr));
    EXPECT_TRUE(same(in(top, "d"), dictionary({{"new", &two}})));
    EXPECT_TRUE(setCFDictionaryKeyValue(asMutable(top), "x/y", nullptr));
    EXPECT_TRUE(same(in(top, "x"), dictionary({})));
    EXPECT_TRUE(setCFDictionaryKeyValue(asMutable(top), "", two.get()));
    EXPECT_EQ(CFDictionaryGetValue(asDictionary(top), text("").get()), two.get());
    EXPECT_FALSE(setCFDictionaryKeyValue(nullptr, "a", two.get()));
}

TEST(PrefsObjects, DeepPathsNeedNoStack) {
    const QString path = QStringLiteral("a/").repeated(20000) + "end";
    const Object top = dictionary({});
    EXPECT_TRUE(setCFDictionaryKeyValue(asMutable(top), path, kCFBooleanTrue));
    EXPECT_TRUE(in(top, path));
}
