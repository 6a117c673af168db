#include "common/objects.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <pthread.h>
#include <set>
#include <thread>
#include <vector>

using namespace KxTest;

namespace {

CFStringRef asString(const Object& object) {
    return static_cast<CFStringRef>(object.get());
}

CFNumberRef asNumber(const Object& object) {
    return static_cast<CFNumberRef>(object.get());
}

/// Runs a function on a thread with the smallest stack there is.
void onSmallStack(const std::function<void()>& function) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    pthread_t thread{};
    const auto start = [](void* context) -> void* {
        (*static_cast<const std::function<void()>*>(context))();
        return nullptr;
    };
    ASSERT_EQ(
        pthread_create(&thread, &attributes, start, const_cast<std::function<void()>*>(&function)),
        0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

Object nestedArrays(int levels) {
    Object inner = number(1);
    for (int i = 0; i < levels; ++i)
        inner = array({&inner});
    return inner;
}

std::atomic<int> releases{0};

void countRelease(CFAllocatorRef, const void*) {
    ++releases;
}

} // namespace

TEST(CoreFoundation, TypesAreToldByTheirIdentifiers) {
    EXPECT_EQ(CFGetTypeID(text("a").get()), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID(number(1).get()), CFNumberGetTypeID());
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    EXPECT_EQ(CFGetTypeID(data("x").get()), CFDataGetTypeID());
    EXPECT_EQ(CFGetTypeID(date(1).get()), CFDateGetTypeID());
    EXPECT_EQ(CFGetTypeID(array({}).get()), CFArrayGetTypeID());
    EXPECT_EQ(CFGetTypeID(dictionary({}).get()), CFDictionaryGetTypeID());
    EXPECT_EQ(CFGetTypeID(nullptr), 0UL);
    const std::set<CFTypeID> all{CFStringGetTypeID(),     CFNumberGetTypeID(), CFBooleanGetTypeID(),
                                 CFDataGetTypeID(),       CFDateGetTypeID(),   CFArrayGetTypeID(),
                                 CFDictionaryGetTypeID(), CFURLGetTypeID(),    ~0UL};
    EXPECT_EQ(all.size(), 9U);
}

TEST(CoreFoundation, ReferencesAreCountedAndConstantsAreNot) {
    const Object one = text("x");
    EXPECT_EQ(CFGetRetainCount(one.get()), 1);
    EXPECT_EQ(CFRetain(one.get()), one.get());
    EXPECT_EQ(CFGetRetainCount(one.get()), 2);
    CFRelease(one.get());
    EXPECT_EQ(CFGetRetainCount(one.get()), 1);
    for (CFTypeRef constant : {CFTypeRef(kCFBooleanTrue), CFTypeRef(kCFPreferencesAnyUser)}) {
        CFRelease(constant);
        CFRelease(constant);
        EXPECT_EQ(CFGetRetainCount(constant), std::numeric_limits<CFIndex>::max());
    }
    EXPECT_EQ(CFRetain(nullptr), nullptr);
    CFRelease(nullptr);
}

TEST(CoreFoundation, CountsSurviveManyThreads) {
    const Object shared = text("shared");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 10000; ++round) {
                CFRetain(shared.get());
                CFRelease(shared.get());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(CFGetRetainCount(shared.get()), 1);
}

TEST(CoreFoundation, StringsKeepEveryCodeUnit) {
    QString odd = QStringLiteral("a\u00e9\u4e2d");
    odd += QChar(0xD834); // half of a pair
    odd += QChar(0);
    odd += QStringLiteral("z");
    const Object made = text(odd);
    EXPECT_EQ(CFStringGetLength(asString(made)), odd.size());
    EXPECT_EQ(textOf(made.get()), odd) << "by the pointer";
    std::vector<UniChar> copy(static_cast<std::size_t>(odd.size()));
    CFStringGetCharacters(asString(made), CFRangeMake(0, odd.size()), copy.data());
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<char16_t*>(copy.data()), odd.size()), odd);
    EXPECT_EQ(CFStringGetCharacterAtIndex(asString(made), 1), 0x00e9);
    EXPECT_EQ(CFStringGetCharacterAtIndex(asString(made), 99), 0);
    EXPECT_EQ(CFStringGetCharactersPtr(asString(made))[odd.size()], 0) << "a zero follows";
    EXPECT_EQ(CFStringGetCStringPtr(asString(made), kCFStringEncodingUTF8), nullptr);
}

TEST(CoreFoundation, PlainStringsShowTheirBytes) {
    const Object made = text("10.6.8");
    const char* const bytes = CFStringGetCStringPtr(asString(made), CFStringGetSystemEncoding());
    EXPECT_STREQ(bytes, "10.6.8");
    EXPECT_EQ(CFStringGetCStringPtr(asString(made), kCFStringEncodingUTF8), bytes) << "one form";
    EXPECT_EQ(CFStringGetCStringPtr(asString(made), 0x0100), nullptr) << "unknown encoding";
    EXPECT_STREQ(CFStringGetCStringPtr(asString(text(QString())), kCFStringEncodingASCII), "");
    EXPECT_EQ(CFStringGetCStringPtr(nullptr, kCFStringEncodingASCII), nullptr);
    EXPECT_EQ(CFStringGetCStringPtr(asString(text("a\u00e9")), kCFStringEncodingISOLatin1),
              nullptr);
    EXPECT_EQ(CFStringGetCStringPtr(asString(text(QString(QChar(0)))), kCFStringEncodingASCII),
              nullptr);
}

TEST(CoreFoundation, ThreadsShareTheBytesOfAString) {
    const Object made = text("shared");
    std::array<const char*, 4> seen{};
    std::vector<std::thread> threads;
    for (const char*& bytes : seen)
        threads.emplace_back(
            [&] { bytes = CFStringGetCStringPtr(asString(made), kCFStringEncodingASCII); });
    for (std::thread& thread : threads)
        thread.join();
    for (const char* bytes : seen)
        EXPECT_EQ(bytes, seen[0]);
    EXPECT_STREQ(seen[0], "shared");
}

TEST(CoreFoundation, RangesOutsideAStringAreLeftOut) {
    const Object made = text("abc");
    std::array<UniChar, 4> buffer{7, 7, 7, 7};
    CFStringGetCharacters(asString(made), CFRangeMake(2, 100), buffer.data());
    EXPECT_EQ(buffer[0], 'c');
    EXPECT_EQ(buffer[1], 7);
    CFStringGetCharacters(asString(made), CFRangeMake(-1, 2), buffer.data());
    CFStringGetCharacters(asString(made), CFRangeMake(3, 1), buffer.data());
    EXPECT_EQ(buffer[0], 'c');
}

TEST(CoreFoundation, EightBitFormsAreStrict) {
    std::array<char, 16> buffer{};
    const Object umlaut = text(QStringLiteral("\u00e9"));
    EXPECT_TRUE(CFStringGetCString(asString(umlaut), buffer.data(), 16, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer.data(), "\xC3\xA9");
    EXPECT_TRUE(
        CFStringGetCString(asString(umlaut), buffer.data(), 16, kCFStringEncodingISOLatin1));
    EXPECT_STREQ(buffer.data(), "\xE9");
    EXPECT_TRUE(CFStringGetCString(asString(umlaut), buffer.data(), 16, kCFStringEncodingMacRoman));
    EXPECT_STREQ(buffer.data(), "\x8E");
    EXPECT_FALSE(CFStringGetCString(asString(umlaut), buffer.data(), 16, kCFStringEncodingASCII));
    EXPECT_STREQ(buffer.data(), "");
    EXPECT_FALSE(CFStringGetCString(asString(umlaut), buffer.data(), 2, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(asString(umlaut), buffer.data(), 16, 0x4242));
    EXPECT_FALSE(CFStringGetCString(asString(text(QString(QChar(0xD800)))), buffer.data(), 16,
                                    kCFStringEncodingUTF8));

    EXPECT_EQ(
        textOf(Object(CFStringCreateWithCString(nullptr, "\x8E", kCFStringEncodingMacRoman)).get()),
        QStringLiteral("\u00e9"));
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "\xE9", kCFStringEncodingUTF8), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "\xE9", kCFStringEncodingASCII), nullptr);
    const std::array<UInt8, 2> bytes{'a', 0};
    const Object both(
        CFStringCreateWithBytes(nullptr, bytes.data(), 2, kCFStringEncodingISOLatin1, 0));
    EXPECT_EQ(CFStringGetLength(asString(both)), 2);
}

TEST(CoreFoundation, StringsAreComparedByTheirUnits) {
    EXPECT_EQ(CFStringCompare(asString(text("a")), asString(text("b")), 0), kCFCompareLessThan);
    EXPECT_EQ(CFStringCompare(asString(text("b")), asString(text("a")), 0), kCFCompareGreaterThan);
    EXPECT_EQ(CFStringCompare(asString(text("a")), asString(text("a")), 0), kCFCompareEqualTo);
    EXPECT_TRUE(same(text("a"), text("a")));
    EXPECT_FALSE(same(text("a"), text("A")));
    EXPECT_EQ(CFHash(text("abc").get()), CFHash(text("abc").get()));
    const Object copied(CFStringCreateCopy(nullptr, asString(text("x"))));
    EXPECT_EQ(textOf(copied.get()), "x");
}

TEST(CoreFoundation, NumbersTellWhetherTheTypeAskedForHoldsThem) {
    std::int32_t small = 0;
    EXPECT_TRUE(CFNumberGetValue(asNumber(number(-5)), kCFNumberSInt32Type, &small));
    EXPECT_EQ(small, -5);
    EXPECT_FALSE(CFNumberGetValue(asNumber(number(0x100000007)), kCFNumberSInt32Type, &small));
    EXPECT_EQ(small, 7) << "the low bits";
    EXPECT_FALSE(CFNumberGetValue(asNumber(number(0x80000000)), kCFNumberSInt32Type, &small));
    EXPECT_TRUE(CFNumberGetValue(asNumber(real(3.0)), kCFNumberIntType, &small));
    EXPECT_EQ(small, 3);
    EXPECT_FALSE(CFNumberGetValue(asNumber(real(-3.7)), kCFNumberIntType, &small));
    EXPECT_EQ(small, -3) << "towards zero";
    EXPECT_FALSE(CFNumberGetValue(asNumber(real(std::nan(""))), kCFNumberIntType, &small));
    std::int64_t large = 0;
    EXPECT_FALSE(CFNumberGetValue(asNumber(real(1e30)), kCFNumberSInt64Type, &large));
    EXPECT_EQ(large, std::numeric_limits<std::int64_t>::max());
    double exact = 0;
    EXPECT_TRUE(CFNumberGetValue(asNumber(number(5)), kCFNumberDoubleType, &exact));
    EXPECT_EQ(exact, 5.0);
    EXPECT_FALSE(CFNumberGetValue(asNumber(number((1LL << 53) + 1)), kCFNumberDoubleType, &exact));
    std::int8_t byte = 0;
    EXPECT_TRUE(CFNumberGetValue(asNumber(number(-128)), kCFNumberCharType, &byte));
    EXPECT_FALSE(CFNumberGetValue(asNumber(number(128)), kCFNumberCharType, &byte));
}

TEST(CoreFoundation, NumbersAreEqualWhateverTheyWereMadeAs) {
    EXPECT_TRUE(same(number(3), real(3.0)));
    EXPECT_EQ(CFHash(number(3).get()), CFHash(real(3.0).get()));
    EXPECT_FALSE(same(number(3), real(3.5)));
    EXPECT_FALSE(same(number(0), boolean(false))) << "a boolean is no number";
    EXPECT_TRUE(CFNumberIsFloatType(asNumber(real(1))));
    EXPECT_FALSE(CFNumberIsFloatType(asNumber(number(1))));
    EXPECT_EQ(CFNumberCreate(nullptr, static_cast<CFNumberType>(99), "x"), nullptr);
}

TEST(CoreFoundation, BooleansAreTwoObjects) {
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
}

TEST(CoreFoundation, DataCopiesItsBytesOrUsesTheCallers) {
    QByteArray bytes("abc");
    const Object copied = data(bytes);
    const Object used(CFDataCreateWithBytesNoCopy(
        nullptr, reinterpret_cast<const UInt8*>(bytes.constData()), 3, kCFAllocatorNull));
    EXPECT_TRUE(same(copied, used));
    EXPECT_EQ(static_cast<const void*>(CFDataGetBytePtr(static_cast<CFDataRef>(used.get()))),
              bytes.constData());
    EXPECT_NE(static_cast<const void*>(CFDataGetBytePtr(static_cast<CFDataRef>(copied.get()))),
              bytes.constData());
    std::array<UInt8, 3> read{};
    CFDataGetBytes(static_cast<CFDataRef>(copied.get()), CFRangeMake(1, 9), read.data());
    EXPECT_EQ(read[1], 'c');
    auto* allocated = static_cast<UInt8*>(std::malloc(1));
    *allocated = 'q';
    const Object owner(CFDataCreateWithBytesNoCopy(nullptr, allocated, 1, nullptr));
    EXPECT_EQ(CFDataGetLength(static_cast<CFDataRef>(owner.get())), 1) << "and it is freed with it";
}

TEST(CoreFoundation, ArraysChangeOnlyWhenTheyMay) {
    const Object a = text("a");
    const Object b = text("b");
    const Object changing = array({&a});
    auto* mutableArray = static_cast<CFMutableArrayRef>(const_cast<void*>(changing.get()));
    CFArrayAppendValue(mutableArray, b.get());
    CFArrayInsertValueAtIndex(mutableArray, 0, b.get());
    CFArrayInsertValueAtIndex(mutableArray, 9, b.get());
    ASSERT_EQ(CFArrayGetCount(mutableArray), 3);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(mutableArray, CFRangeMake(1, 5), text("b").get()), 2);
    CFArraySetValueAtIndex(mutableArray, 0, a.get());
    CFArraySetValueAtIndex(mutableArray, 3, a.get());
    EXPECT_EQ(CFArrayGetCount(mutableArray), 4) << "the place behind the last appends";
    CFArrayRemoveValueAtIndex(mutableArray, 2);
    EXPECT_FALSE(CFArrayContainsValue(mutableArray, CFRangeMake(0, 3), b.get()));

    const Object fixed(CFArrayCreateCopy(nullptr, mutableArray));
    CFArrayRemoveAllValues(mutableArray);
    EXPECT_EQ(CFArrayGetCount(mutableArray), 0);
    auto* refused = static_cast<CFMutableArrayRef>(const_cast<void*>(fixed.get()));
    CFArrayRemoveAllValues(refused);
    CFArrayAppendValue(refused, a.get());
    EXPECT_EQ(CFArrayGetCount(refused), 3);
    EXPECT_EQ(CFArrayGetValueAtIndex(refused, -1), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(refused, 3), nullptr);
    EXPECT_EQ(CFArrayCreateCopy(nullptr, refused), fixed.get()) << "one more reference";
    CFRelease(fixed.get());
}

TEST(CoreFoundation, DictionariesFindTheirKeysByValue) {
    const Object one = number(1);
    const Object two = number(2);
    const Object made = dictionary({{"a", &one}, {"b", &two}});
    auto* changing = static_cast<CFMutableDictionaryRef>(const_cast<void*>(made.get()));
    EXPECT_EQ(CFDictionaryGetValue(changing, text("b").get()), two.get());
    EXPECT_EQ(CFDictionaryGetValue(changing, text("c").get()), nullptr);
    EXPECT_TRUE(CFDictionaryContainsKey(changing, text("a").get()));
    EXPECT_TRUE(CFDictionaryContainsValue(changing, number(2).get()));
    CFDictionaryAddValue(changing, text("a").get(), two.get());
    EXPECT_EQ(CFDictionaryGetValue(changing, text("a").get()), one.get());
    CFDictionaryReplaceValue(changing, text("c").get(), two.get());
    EXPECT_EQ(CFDictionaryGetCount(changing), 2);
    CFDictionarySetValue(changing, text("c").get(), two.get());
    CFDictionaryRemoveValue(changing, text("a").get());
    std::array<const void*, 2> keys{};
    CFDictionaryGetKeysAndValues(changing, keys.data(), nullptr);
    EXPECT_EQ(textOf(keys[0]), "c") << "the last one took the place";
    EXPECT_EQ(textOf(keys[1]), "b");
    const Object fixed(CFDictionaryCreateCopy(nullptr, changing));
    CFDictionaryRemoveAllValues(changing);
    EXPECT_EQ(CFDictionaryGetCount(static_cast<CFDictionaryRef>(fixed.get())), 2);
    CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(const_cast<void*>(fixed.get())),
                         text("x").get(), one.get());
    EXPECT_EQ(CFDictionaryGetCount(static_cast<CFDictionaryRef>(fixed.get())), 2);
}

TEST(CoreFoundation, DictionariesSurviveManyChanges) {
    const Object made = dictionary({});
    auto* changing = static_cast<CFMutableDictionaryRef>(const_cast<void*>(made.get()));
    const auto name = [](int i) { return text(QString::number(i)); };
    for (int i = 0; i < 1000; ++i)
        CFDictionarySetValue(changing, name(i).get(), number(i).get());
    for (int i = 0; i < 1000; i += 2)
        CFDictionaryRemoveValue(changing, name(i).get());
    ASSERT_EQ(CFDictionaryGetCount(changing), 500);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(CFDictionaryContainsKey(changing, name(i).get()) != 0, i % 2 == 1) << i;
}

TEST(CoreFoundation, PlainKeysAreToldByTheirAddressAndCallBacksAreCalled) {
    releases = 0;
    CFDictionaryValueCallBacks counting = {0, nullptr, countRelease, nullptr, nullptr};
    int value = 0;
    CFMutableDictionaryRef plain = CFDictionaryCreateMutable(nullptr, 0, nullptr, &counting);
    const Object first = text("k");
    const Object second = text("k");
    CFDictionarySetValue(plain, first.get(), &value);
    CFDictionarySetValue(plain, second.get(), &value);
    EXPECT_EQ(CFDictionaryGetCount(plain), 2);
    CFDictionarySetValue(plain, second.get(), &value);
    EXPECT_EQ(releases, 1);
    CFRelease(plain);
    EXPECT_EQ(releases, 3);
}

TEST(CoreFoundation, TheFirstOfEqualKeysCounts) {
    const Object key = text("k");
    const Object again = text("k");
    std::array<const void*, 2> keys{key.get(), again.get()};
    std::array<const void*, 2> values{kCFBooleanTrue, kCFBooleanFalse};
    const Object made(CFDictionaryCreate(nullptr, keys.data(), values.data(), 2,
                                         &kCFTypeDictionaryKeyCallBacks,
                                         &kCFTypeDictionaryValueCallBacks));
    const auto* dictionary = static_cast<CFDictionaryRef>(made.get());
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 1);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, key.get()), kCFBooleanTrue);
}

TEST(CoreFoundation, TreesAreComparedAsAWhole) {
    const Object one = number(1);
    const Object list = array({&one});
    const Object sameList = array({&one});
    EXPECT_TRUE(same(dictionary({{"a", &list}}), dictionary({{"a", &sameList}})));
    EXPECT_FALSE(same(dictionary({{"a", &list}}), dictionary({{"b", &list}})));
    EXPECT_FALSE(same(dictionary({{"a", &list}}), dictionary({{"a", &one}})));
    EXPECT_EQ(CFHash(list.get()), CFHash(sameList.get()));
    EXPECT_FALSE(CFEqual(list.get(), nullptr));
    EXPECT_TRUE(CFEqual(nullptr, nullptr));
}

TEST(CoreFoundation, NestingNeedsNoStack) {
    constexpr int levels = 200000;
    onSmallStack([&] {
        Object one = nestedArrays(levels);
        Object other = nestedArrays(levels);
        EXPECT_TRUE(same(one, other));
        EXPECT_EQ(CFHash(one.get()), 1UL);
        one = Object();
        other = Object();
    });
}

TEST(CoreFoundation, EqualityEndsForContainersThatHoldThemselves) {
    CFMutableArrayRef one = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    CFMutableArrayRef other = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    CFArrayAppendValue(one, one);
    CFArrayAppendValue(other, other);
    EXPECT_TRUE(CFEqual(one, other));
    CFArrayRemoveAllValues(one);
    CFArrayRemoveAllValues(other);
    CFRelease(one);
    CFRelease(other);
}

TEST(CoreFoundation, UrlsArePaths) {
    const std::array<UInt8, 5> path{'/', 'a', '/', 'b', 0};
    const Object url(CFURLCreateFromFileSystemRepresentation(nullptr, path.data(), 4, 1));
    ASSERT_NE(url.get(), nullptr);
    std::array<UInt8, 5> buffer{};
    EXPECT_TRUE(
        CFURLGetFileSystemRepresentation(static_cast<CFURLRef>(url.get()), 1, buffer.data(), 5));
    EXPECT_EQ(buffer, path);
    EXPECT_FALSE(
        CFURLGetFileSystemRepresentation(static_cast<CFURLRef>(url.get()), 1, buffer.data(), 4));
    const Object copied(
        CFURLCopyFileSystemPath(static_cast<CFURLRef>(url.get()), kCFURLPOSIXPathStyle));
    EXPECT_EQ(textOf(copied.get()), "/a/b");
    EXPECT_EQ(CFURLCopyFileSystemPath(static_cast<CFURLRef>(url.get()), kCFURLHFSPathStyle),
              nullptr);
    const Object again(
        CFURLCreateWithFileSystemPath(nullptr, asString(text("/a/b")), kCFURLPOSIXPathStyle, 1));
    EXPECT_TRUE(same(url, again));
    EXPECT_EQ(CFHash(url.get()), CFHash(again.get()));
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, path.data(), 0, 0), nullptr);

    const Object relative(
        CFURLCreateWithFileSystemPath(nullptr, asString(text("x")), kCFURLPOSIXPathStyle, 0));
    std::array<UInt8, 512> longer{};
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(static_cast<CFURLRef>(relative.get()), 1,
                                                 longer.data(), 512));
    EXPECT_EQ(longer[0], '/');
}

TEST(CoreFoundation, TheSystemEncodingIsOneOfThoseKnown) {
    const CFStringEncoding encoding = CFStringGetSystemEncoding();
    EXPECT_TRUE(encoding == kCFStringEncodingUTF8 || encoding == kCFStringEncodingASCII ||
                encoding == kCFStringEncodingISOLatin1 || encoding == kCFStringEncodingMacRoman);
}
