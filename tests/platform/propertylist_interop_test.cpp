#include "common/objects.h"
#include "common/program.h"
#include "platform/propertylist/document.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

using namespace KxTest;
using Korvex::PropertyList::Bytes;
using Korvex::PropertyList::ByteView;
using Korvex::PropertyList::Document;

// Two other programs that read and write property lists have to agree with this library.

namespace {

void writeFile(const char* name, const Bytes& bytes) {
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

Bytes readFile(const char* name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Bytes written(Document& document) {
    Bytes file;
    EXPECT_TRUE(document.write([&](ByteView head, ByteView tail) {
        file.assign(head.begin(), head.end());
        file.insert(file.end(), tail.begin(), tail.end());
        return true;
    }));
    return file;
}

std::string python(const std::string& script) {
    const ProgramResult result =
        runProgram({"/usr/bin/python3", "-c", "import plistlib, datetime\n" + script});
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
}

Object valueOf(const Document& document, const QString& name) {
    return Object(document.copy(document.member(document.top(), name)));
}

/// What every program here can express.
void fill(Document& document) {
    const Object one = number(1);
    const Object words = text(QStringLiteral("\u00fcml\u00e4ut \U0001F600"));
    const Object list = array({&one, &words});
    const Object inner = dictionary({{"list", &list}});
    ASSERT_TRUE(document.set(document.top(), u"inner", inner.get()));
    ASSERT_TRUE(document.set(document.top(), u"big", number(0x123456789A).get()));
    ASSERT_TRUE(document.set(document.top(), u"real", real(1.5).get()));
    ASSERT_TRUE(document.set(document.top(), u"data", data(QByteArray("\0\1", 2)).get()));
    ASSERT_TRUE(document.set(document.top(), u"yes", boolean(true).get()));
    ASSERT_TRUE(document.set(document.top(), u"when", date(86400).get()));
    for (int i = 0; i < 400; ++i)
        ASSERT_TRUE(document.set(document.top(), QString::number(i), number(i).get()));
}

} // namespace

TEST(PropertyListInterop, PythonReadsWhatIsWritten) {
    Document document;
    fill(document);
    ASSERT_TRUE(document.set(document.top(), u"negative", number(-5).get()));
    // With holes and numbers that stand for nothing any more.
    for (int i = 0; i < 100; ++i)
        document.remove(document.top(), QString::number(i));
    writeFile("written.plist", written(document));
    EXPECT_EQ(python("p = plistlib.load(open('written.plist', 'rb'))\n"
                     "print(len(p), p['inner']['list'] == [1, '\\u00fcml\\u00e4ut \\U0001F600'],\n"
                     "      p['big'], p['negative'], p['real'], p['data'], p['yes'], p['when'],\n"
                     "      '0' in p, p['399'])"),
              "307 True 78187493530 -5 1.5 b'\\x00\\x01' True 2001-01-02 00:00:00 False 399\n");
}

TEST(PropertyListInterop, PlistutilReadsWhatIsWritten) {
    Document document;
    fill(document);
    writeFile("written.plist", written(document));
    const ProgramResult result =
        runProgram({"/usr/bin/plistutil", "-i", "written.plist", "-o", "converted.plist"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::unique_ptr<Document> back = Document::read(readFile("converted.plist"));
    ASSERT_TRUE(back) << "its XML";
    EXPECT_TRUE(same(valueOf(*back, "inner"), valueOf(document, "inner")));
    EXPECT_TRUE(same(valueOf(*back, "big"), number(0x123456789A)));
    EXPECT_TRUE(same(valueOf(*back, "when"), date(86400)));
    EXPECT_EQ(back->count(back->top()), document.count(document.top()));
}

TEST(PropertyListInterop, WhatPythonWritesSurvivesAChange) {
    python("values = {'date': datetime.datetime(2024, 2, 29, 12, 30),\n"
           "  'real': 3.25, 'large': 2**63 + 5, 'negative': -2**63, 'uid': plistlib.UID(70000),\n"
           "  'nested': [{'d': datetime.datetime(1999, 1, 1), 'l': [1, [2, [3]]]}],\n"
           "  'text': 'x' * 300, 'empty': ''}\n"
           "plistlib.dump(values, open('theirs.plist', 'wb'), fmt=plistlib.FMT_BINARY)\n");
    const std::unique_ptr<Document> document = Document::read(readFile("theirs.plist"));
    ASSERT_TRUE(document);
    ASSERT_TRUE(document->set(document->top(), u"new", number(1).get()));
    // One goes through objects, the others stay the bytes they were.
    const Object nested = valueOf(*document, "nested");
    ASSERT_TRUE(document->set(document->top(), u"nested", nested.get()));
    const Object uid = valueOf(*document, "uid");
    ASSERT_TRUE(document->set(document->top(), u"uid", uid.get()));
    const Object large = valueOf(*document, "large");
    ASSERT_TRUE(document->set(document->top(), u"large", large.get()));
    writeFile("changed.plist", written(*document));
    EXPECT_EQ(python("a = plistlib.load(open('theirs.plist', 'rb'))\n"
                     "b = plistlib.load(open('changed.plist', 'rb'))\n"
                     "print(b.pop('new'), a == b, b['uid'], b['large'])"),
              "1 True UID(70000) 9223372036854775813\n");
}

TEST(PropertyListInterop, BothFormatsOfPythonAreRead) {
    python("v = {'k': ['\\u20ac<&>', -1, 2**64 - 1, True, b'\\x00\\xff', 1e300]}\n"
           "plistlib.dump(v, open('x.plist', 'wb'))\n"
           "plistlib.dump(v, open('b.plist', 'wb'), fmt=plistlib.FMT_BINARY)\n");
    const std::unique_ptr<Document> xml = Document::read(readFile("x.plist"));
    const std::unique_ptr<Document> binary = Document::read(readFile("b.plist"));
    ASSERT_TRUE(xml);
    ASSERT_TRUE(binary);
    EXPECT_TRUE(same(valueOf(*xml, "k"), valueOf(*binary, "k")));
}

TEST(PropertyListInterop, WhatPlistutilWritesIsRead) {
    std::ofstream("in.plist") << "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">"
                                 "<dict><key>a</key><array><integer>7</integer><string>\xC3\xA9"
                                 "</string></array></dict></plist>";
    ASSERT_EQ(runProgram({"/usr/bin/plistutil", "-i", "in.plist", "-o", "out.plist"}).status, 0);
    const std::unique_ptr<Document> read = Document::read(readFile("out.plist"));
    ASSERT_TRUE(read);
    const Object seven = number(7);
    const Object accent = text(QStringLiteral("\u00e9"));
    EXPECT_TRUE(same(valueOf(*read, "a"), array({&seven, &accent})));
}

TEST(PropertyListInterop, ThePublishedCallsReadAndWriteBytes) {
    const Object one = number(1);
    const Object made = dictionary({{"a", &one}});
    CFErrorRef error = reinterpret_cast<CFErrorRef>(&error);
    const Object bytes(
        CFPropertyListCreateData(nullptr, made.get(), kCFPropertyListBinaryFormat_v1_0, 0, &error));
    ASSERT_TRUE(bytes);
    EXPECT_EQ(error, nullptr);
    CFPropertyListFormat format = 0;
    const auto* data = static_cast<CFDataRef>(bytes.get());
    EXPECT_TRUE(
        same(Object(CFPropertyListCreateWithData(nullptr, data, 0, &format, &error)), made));
    EXPECT_EQ(format, kCFPropertyListBinaryFormat_v1_0);
    const Object xml = KxTest::data("<plist version=\"1.0\"><dict><key>a</key><integer>1</integer>"
                                    "</dict></plist>");
    EXPECT_TRUE(same(Object(CFPropertyListCreateWithData(nullptr, static_cast<CFDataRef>(xml.get()),
                                                         0, &format, nullptr)),
                     made));
    EXPECT_EQ(format, kCFPropertyListXMLFormat_v1_0);
    EXPECT_EQ(CFPropertyListCreateWithData(nullptr, nullptr, 0, nullptr, nullptr), nullptr);
    EXPECT_EQ(
        CFPropertyListCreateData(nullptr, one.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr),
        nullptr);
    EXPECT_EQ(
        CFPropertyListCreateData(nullptr, made.get(), kCFPropertyListXMLFormat_v1_0, 0, nullptr),
        nullptr);
}
