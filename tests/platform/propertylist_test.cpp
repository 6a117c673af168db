#include "common/objects.h"
#include "platform/propertylist/document.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace KxTest;
using Korvex::PropertyList::Bytes;
using Korvex::PropertyList::ByteView;
using Korvex::PropertyList::Document;
using Korvex::PropertyList::Kind;
using Korvex::PropertyList::Limits;
using Korvex::PropertyList::Node;
using Korvex::PropertyList::none;

namespace {

Bytes written(Document& document) {
    Bytes file;
    EXPECT_TRUE(document.write([&](ByteView head, ByteView tail) {
        file.assign(head.begin(), head.end());
        file.insert(file.end(), tail.begin(), tail.end());
        return true;
    }));
    return file;
}

Bytes bytesOf(const char* xml) {
    return {xml, xml + std::strlen(xml)};
}

std::unique_ptr<Document> fromXml(const std::string& contents) {
    const std::string file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" +
                             contents + "</plist>";
    return Document::read(bytesOf(file.c_str()));
}

Object valueOf(const Document& document, const QString& name) {
    return Object(document.copy(document.member(document.top(), name)));
}

/// Writes and reads a value. \return What came back.
Object roundTrip(const Object& value) {
    Document document;
    EXPECT_TRUE(document.set(document.top(), u"v", value.get()));
    const Bytes file = written(document);
    const std::unique_ptr<Document> read = Document::read(file);
    EXPECT_TRUE(read);
    return read ? valueOf(*read, "v") : Object();
}

bool survives(const Object& value) {
    return same(roundTrip(value), value);
}

} // namespace

TEST(PropertyList, EveryKindOfValueSurvives) {
    const Object one = number(1);
    const Object words = text("words");
    const Object list = array({&one, &words});
    for (const Object& value :
         {text(""), text("plain"), text(QStringLiteral("\u4e2d\U0001F600")), boolean(true),
          boolean(false), data(""), data(QByteArray(300, 'x')), date(123.5), real(2.5)})
        EXPECT_TRUE(survives(value));
    EXPECT_TRUE(survives(list));
    EXPECT_TRUE(survives(dictionary({{"a", &list}, {"", &one}})));
    EXPECT_TRUE(survives(array({})));
    EXPECT_TRUE(survives(dictionary({})));
}

TEST(PropertyList, EveryIntegerSurvives) {
    for (const long long value :
         {0LL, 1LL, 127LL, 128LL, 255LL, 256LL, 65535LL, 65536LL, 4294967295LL, 4294967296LL, -1LL,
          -128LL, -2147483648LL, std::numeric_limits<long long>::max(),
          std::numeric_limits<long long>::min()})
        EXPECT_TRUE(survives(number(value))) << value;
}

TEST(PropertyList, EveryStringSurvives) {
    QString everything;
    for (int unit = 0; unit < 0x10000; unit += 7)
        everything += QChar(unit);
    EXPECT_TRUE(survives(text(everything))) << "control characters and half pairs included";
    for (const int length : {14, 15, 255, 256, 65535, 65536})
        EXPECT_TRUE(survives(text(QString(length, 'x')))) << length;
}

TEST(PropertyList, SinglePrecisionStaysSinglePrecision) {
    const float value = 1.5F;
    const Object single(CFNumberCreate(nullptr, kCFNumberFloatType, &value));
    const Object back = roundTrip(single);
    EXPECT_EQ(CFNumberGetType(static_cast<CFNumberRef>(back.get())), kCFNumberFloat32Type);
    EXPECT_TRUE(same(back, single));
}

TEST(PropertyList, NamesAreFoundAmongFewAndMany) {
    for (const int count : {1, 8, 9, 1000}) {
        Document document;
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(document.set(document.top(), QString::number(i), number(i).get()));
        const Bytes file = written(document);
        const std::unique_ptr<Document> read = Document::read(file);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->count(read->top()), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            EXPECT_TRUE(same(valueOf(*read, QString::number(i)), number(i))) << i;
        EXPECT_EQ(read->member(read->top(), u"nothing"), none);
    }
}

TEST(PropertyList, ManyChangesLeaveWhatTheyShould) {
    std::mt19937 random(42);
    std::map<QString, int> expected;
    Document document;
    for (int round = 0; round < 5000; ++round) {
        const QString name = QString::number(random() % 300);
        if (random() % 3 == 0) {
            expected.erase(name);
            document.remove(document.top(), name);
        } else {
            expected[name] = round;
            ASSERT_TRUE(document.set(document.top(), name, number(round).get()));
        }
        if (round % 500 == 0)
            (void)written(document);
    }
    const Bytes file = written(document);
    const std::unique_ptr<Document> read = Document::read(file);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->count(read->top()), expected.size());
    for (const auto& [name, value] : expected)
        EXPECT_TRUE(same(valueOf(*read, name), number(value))) << name.toStdString();
}

TEST(PropertyList, WhatWasRemovedIsNotToBeFoundInTheFile) {
    Document document;
    ASSERT_TRUE(document.set(document.top(), u"kept", text("kept").get()));
    ASSERT_TRUE(document.set(document.top(), u"secret", text("password").get()));
    (void)written(document);
    document.remove(document.top(), u"secret");
    const Bytes file = written(document);
    const std::string contents(file.begin(), file.end());
    EXPECT_EQ(contents.find("password"), std::string::npos);
    EXPECT_EQ(contents.find("secret"), std::string::npos);
    EXPECT_NE(contents.find("kept"), std::string::npos);
    EXPECT_TRUE(Document::read(file));
}

TEST(PropertyList, AFileDoesNotGrowWithTheChangesMadeToIt) {
    Document document;
    for (int i = 0; i < 10000; ++i) {
        ASSERT_TRUE(document.set(document.top(), u"counter", data(QByteArray(i % 50, 'x')).get()));
        (void)written(document);
    }
    EXPECT_LT(written(document).size(), 2000U);
}

TEST(PropertyList, ADocumentKnowsWhetherItWasChanged) {
    Document document;
    EXPECT_FALSE(document.isChanged());
    document.remove(document.top(), u"nothing");
    EXPECT_FALSE(document.isChanged());
    ASSERT_TRUE(document.set(document.top(), u"a", number(1).get()));
    EXPECT_TRUE(document.isChanged());
    (void)written(document);
    EXPECT_FALSE(document.isChanged());
    EXPECT_NE(document.makeDictionary(document.top(), u"d"), none);
    EXPECT_TRUE(document.isChanged());
    (void)written(document);
    EXPECT_NE(document.makeDictionary(document.top(), u"d"), none);
    EXPECT_FALSE(document.isChanged()) << "it was there";
    EXPECT_FALSE(document.write([](ByteView, ByteView) { return false; }));
}

TEST(PropertyList, NodesOfOtherKindsHaveNothingInThem) {
    Document document;
    ASSERT_TRUE(document.set(document.top(), u"n", number(1).get()));
    const Node single = document.member(document.top(), u"n");
    for (const Node node : {single, none}) {
        EXPECT_EQ(document.count(node), 0U);
        EXPECT_EQ(document.member(node, u"x"), none);
        EXPECT_EQ(document.element(node, 0), none);
        EXPECT_EQ(document.entry(node, 0).value, none);
        EXPECT_EQ(document.makeDictionary(node, u"x"), none);
        EXPECT_FALSE(document.set(node, u"x", kCFBooleanTrue));
        document.remove(node, u"x");
    }
    EXPECT_EQ(document.kind(none), Kind::None);
    EXPECT_EQ(document.copy(none), nullptr);
    EXPECT_EQ(document.entry(document.top(), 1).value, none);
}

TEST(PropertyList, OnlyPropertyListsAreTaken) {
    Document document;
    const Object url(CFURLCreateWithFileSystemPath(
        nullptr, static_cast<CFStringRef>(text("/x").get()), kCFURLPOSIXPathStyle, 0));
    EXPECT_FALSE(document.set(document.top(), u"u", url.get()));
    const Object inside = array({&url});
    EXPECT_FALSE(document.set(document.top(), u"u", inside.get()));
    EXPECT_FALSE(document.set(document.top(), u"u", nullptr));
    CFMutableDictionaryRef odd = CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(odd, number(1).get(), kCFBooleanTrue);
    EXPECT_FALSE(document.set(document.top(), u"u", odd)) << "names are strings";
    CFRelease(odd);
    CFMutableArrayRef endless = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    CFArrayAppendValue(endless, endless);
    EXPECT_FALSE(document.set(document.top(), u"u", endless));
    CFArrayRemoveAllValues(endless);
    CFRelease(endless);
    EXPECT_EQ(document.count(document.top()), 0U);
    EXPECT_TRUE(Document::read(written(document)));
}

TEST(PropertyList, WhatCouldNotBeReadIsNotWritten) {
    const auto nested = [](int levels) {
        Object inner = number(1);
        for (int i = 0; i < levels; ++i)
            inner = dictionary({{"d", &inner}});
        return inner;
    };
    Document document;
    EXPECT_TRUE(document.set(document.top(), u"v", nested(511).get()));
    EXPECT_TRUE(Document::read(written(document))) << "512 levels with the outermost";
    EXPECT_FALSE(document.set(document.top(), u"v", nested(512).get()));

    Limits few;
    few.entries = 3;
    Document small(few);
    const Object one = number(1);
    const Object three = array({&one, &one, &one});
    EXPECT_FALSE(small.set(small.top(), u"v", three.get()));
    const Object two = array({&one, &one});
    EXPECT_TRUE(small.set(small.top(), u"v", two.get()));

    Limits tight;
    tight.bytes = 200;
    Document narrow(tight);
    EXPECT_TRUE(narrow.set(narrow.top(), u"v", data(QByteArray(300, 'x')).get()));
    EXPECT_FALSE(narrow.write([](ByteView, ByteView) { return true; }));
}

TEST(PropertyListXml, EveryElementIsRead) {
    const auto read = fromXml("<dict>"
                              "<key>s</key><string>a&amp;b  </string>"
                              "<key>i</key><integer> -42 </integer>"
                              "<key>h</key><integer>0x1F</integer>"
                              "<key>u</key><integer>18446744073709551615</integer>"
                              "<key>r</key><real>-1.5e3</real>"
                              "<key>inf</key><real>-infinity</real>"
                              "<key>t</key><true/><key>f</key><false/>"
                              "<key>d</key><data>\n\tAAEC\n\t/w==\n</data>"
                              "<key>w</key><date>2001-01-01T00:01:00Z</date>"
                              "<key>a</key><array><string>x</string><array/></array>"
                              "<key></key><dict/>"
                              "</dict>");
    ASSERT_TRUE(read);
    EXPECT_TRUE(same(valueOf(*read, "s"), text("a&b  ")));
    EXPECT_TRUE(same(valueOf(*read, "i"), number(-42)));
    EXPECT_TRUE(same(valueOf(*read, "h"), number(31)));
    EXPECT_TRUE(same(valueOf(*read, "r"), real(-1500)));
    EXPECT_TRUE(same(valueOf(*read, "inf"), real(-std::numeric_limits<double>::infinity())));
    EXPECT_TRUE(same(valueOf(*read, "t"), boolean(true)));
    EXPECT_TRUE(same(valueOf(*read, "f"), boolean(false)));
    EXPECT_TRUE(same(valueOf(*read, "d"), data(QByteArray("\0\1\2\xff", 4))));
    EXPECT_TRUE(same(valueOf(*read, "w"), date(60)));
    const Object x = text("x");
    const Object empty = array({});
    EXPECT_TRUE(same(valueOf(*read, "a"), array({&x, &empty})));
    EXPECT_TRUE(same(valueOf(*read, ""), dictionary({})));
    long long low = 0;
    EXPECT_FALSE(CFNumberGetValue(static_cast<CFNumberRef>(valueOf(*read, "u").get()),
                                  kCFNumberLongLongType, &low))
        << "beyond 64 bits with a sign";
    EXPECT_EQ(low, -1);
    EXPECT_TRUE(survives(valueOf(*read, "u")));
}

TEST(PropertyListXml, WhatIsNoPropertyListIsRefused) {
    for (const char* contents :
         {"", "<array/>", "<string>x</string>", "<dict/><dict/>", "<dict><key>a</key></dict>",
          "<dict><string>a</string></dict>", "<dict><key>a</key><key>b</key><true/></dict>",
          "<dict><key>a</key><unknown/></dict>", "<dict>text</dict>", "<dict><key>a</key>",
          "<dict><key>a</key><integer>1x</integer></dict>", "<dict><key>a</key><integer/></dict>",
          "<dict><key>a</key><integer>99999999999999999999</integer></dict>",
          "<dict><key>a</key><real>one</real></dict>",
          "<dict><key>a</key><date>yesterday</date></dict>",
          "<dict><key>a</key><data>!!!</data></dict>", "<key>a</key>",
          "<dict><key>a</key><true>x<b/></true></dict>", "<dict><key>a<b/></key><true/></dict>"})
        EXPECT_FALSE(fromXml(contents)) << contents;
    for (const char* file :
         {"", "x", "<?xml version=\"1.0\"?>", "<dict/>", "<plist><dict/></plist><plist/>",
          "<other><dict/></other>", "{ old = style; }"})
        EXPECT_FALSE(Document::read(bytesOf(file))) << file;
}

TEST(PropertyListXml, EntitiesDoNotMultiplyWithoutEnd) {
    std::string file = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"xxxxxxxxxx\">";
    for (char name = 'b'; name <= 'k'; ++name) {
        const std::string before(1, static_cast<char>(name - 1));
        file += std::string("<!ENTITY ") + name + " \"";
        for (int i = 0; i < 10; ++i)
            file += "&" + before + ";";
        file += "\">";
    }
    file += "]><plist><dict><key>a</key><string>&k;</string></dict></plist>";
    EXPECT_FALSE(Document::read(bytesOf(file.c_str())));
}

TEST(PropertyListXml, NestingIsLimitedAndNeedsNoStack) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<dict><key>a</key>";
    EXPECT_FALSE(fromXml(deep));
    std::string allowed = "<true/>";
    for (int i = 0; i < 512; ++i)
        allowed.insert(0, "<dict><key>a</key>").append("</dict>");
    EXPECT_TRUE(fromXml(allowed));
    EXPECT_FALSE(fromXml("<dict><key>a</key>" + allowed + "</dict>"));
}

TEST(PropertyListXml, OfEqualNamesTheLastOneCounts) {
    const auto read = fromXml("<dict><key>a</key><true/><key>b</key><true/>"
                              "<key>a</key><string>last</string></dict>");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->count(read->top()), 2U);
    EXPECT_TRUE(same(valueOf(*read, "a"), text("last")));
    std::string many;
    for (int i = 0; i < 40; ++i)
        many +=
            "<key>" + std::to_string(i % 20) + "</key><integer>" + std::to_string(i) + "</integer>";
    const auto both = fromXml("<dict>" + many + "</dict>");
    ASSERT_TRUE(both);
    EXPECT_EQ(both->count(both->top()), 20U);
    EXPECT_TRUE(same(valueOf(*both, "3"), number(23)));
    both->remove(both->top(), u"3");
    EXPECT_EQ(both->member(both->top(), u"3"), none) << "none appears from behind";
    const Bytes file = written(*both);
    EXPECT_TRUE(Document::read(file));
}
