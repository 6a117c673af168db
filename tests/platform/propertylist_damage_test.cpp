#include "common/objects.h"
#include "platform/propertylist/document.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <pthread.h>
#include <vector>

using namespace KxTest;
using Korvex::PropertyList::appendBigEndian;
using Korvex::PropertyList::Bytes;
using Korvex::PropertyList::ByteView;
using Korvex::PropertyList::Document;
using Korvex::PropertyList::Limits;

// Binary files that no writer would make.

namespace {

/// A binary file put together value by value.
struct BinaryFile {
    std::vector<Bytes> values;
    std::uint8_t placeWidth = 2;
    std::uint8_t nodeWidth = 1;
    std::uint64_t root = 0;

    [[nodiscard]] Bytes bytes() const {
        Bytes file{'b', 'p', 'l', 'i', 's', 't', '0', '0'};
        std::vector<std::size_t> places;
        for (const Bytes& value : values) {
            places.push_back(file.size());
            file.insert(file.end(), value.begin(), value.end());
        }
        const std::size_t table = file.size();
        for (const std::size_t place : places)
            appendBigEndian(file, place, placeWidth);
        file.insert(file.end(), 6, 0);
        file.push_back(placeWidth);
        file.push_back(nodeWidth);
        appendBigEndian(file, values.size(), 8);
        appendBigEndian(file, root, 8);
        appendBigEndian(file, table, 8);
        return file;
    }
};

bool reads(const Bytes& file) {
    return Document::read(file) != nullptr;
}

/// {"a": <value>}, the value given as bytes.
bool readsAsValue(const Bytes& value) {
    return reads(BinaryFile{{{0xD1, 1, 2}, {0x51, 'a'}, value}}.bytes());
}

Bytes sample() {
    Document document;
    const Object one = number(-1);
    const Object words = text(QStringLiteral("w\u00f6rds"));
    const Object inner = dictionary({{"x", &one}, {"y", &words}});
    const Object list = array({&one, &words, &inner});
    EXPECT_TRUE(document.set(document.top(), u"list", list.get()));
    EXPECT_TRUE(document.set(document.top(), u"data", data("bytes").get()));
    EXPECT_TRUE(document.set(document.top(), u"real", real(1.5).get()));
    Bytes file;
    EXPECT_TRUE(document.write([&](ByteView head, ByteView tail) {
        file.assign(head.begin(), head.end());
        file.insert(file.end(), tail.begin(), tail.end());
        return true;
    }));
    return file;
}

/// Looks at everything in a file that could be read.
void visit(const Bytes& file) {
    const std::unique_ptr<Document> document = Document::read(file);
    if (!document)
        return;
    const Object all(document->copy(document->top()));
    EXPECT_TRUE(all);
    Document again;
    EXPECT_TRUE(again.set(again.top(), u"all", all.get()) || !all);
}

} // namespace

TEST(DamagedPropertyList, TheSampleItselfIsRead) {
    EXPECT_TRUE(reads(sample()));
    EXPECT_TRUE(readsAsValue({0x09}));
}

TEST(DamagedPropertyList, EveryTruncationIsRefused) {
    const Bytes whole = sample();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(reads(part)) << length;
    }
}

TEST(DamagedPropertyList, NoSingleByteDoesHarm) {
    const Bytes whole = sample();
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (int value = 0; value < 256; ++value) {
            Bytes damaged = whole;
            damaged[place] = static_cast<std::uint8_t>(value);
            visit(damaged);
        }
    }
}

TEST(DamagedPropertyList, ValuesOfUnknownTypesAreRefused) {
    EXPECT_FALSE(readsAsValue({0x00})) << "null";
    EXPECT_FALSE(readsAsValue({0x0F})) << "fill";
    EXPECT_FALSE(readsAsValue({0x15, 0})) << "an integer of 32 bytes";
    EXPECT_FALSE(readsAsValue({0x21, 0, 0})) << "a real of 2 bytes";
    EXPECT_FALSE(readsAsValue({0x32, 0, 0, 0, 0}));
    EXPECT_FALSE(readsAsValue({0x51, 0x80})) << "text that is not ASCII";
    EXPECT_FALSE(readsAsValue({0x71, 'a'}));
    EXPECT_FALSE(readsAsValue({0xC0})) << "a set";
    EXPECT_FALSE(readsAsValue({0xE0}));
    EXPECT_TRUE(readsAsValue({0x80, 7})) << "a UID";
    EXPECT_TRUE(readsAsValue({0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(DamagedPropertyList, LengthsThatReachBeyondTheFileAreRefused) {
    EXPECT_FALSE(readsAsValue({0x4E, 'x'}));
    EXPECT_FALSE(readsAsValue({0x4F, 0x10, 0xFF, 'x'}));
    EXPECT_FALSE(readsAsValue({0x4F, 0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(readsAsValue({0x6F, 0x13, 0x80, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(readsAsValue({0x4F})) << "nothing is left to say how many";
    EXPECT_FALSE(readsAsValue({0x4F, 0x22, 0, 0, 0, 0})) << "a count that is a real";
    EXPECT_FALSE(readsAsValue({0xAF, 0x13, 0x1F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(readsAsValue({0xDF, 0x12, 0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(readsAsValue({0x13, 0, 0}));
}

TEST(DamagedPropertyList, ReferencesToWhatIsNotThereAreRefused) {
    EXPECT_FALSE(readsAsValue({0xA1, 9}));
    EXPECT_FALSE(reads(BinaryFile{{{0xD1, 9, 1}, {0x51, 'a'}}}.bytes()));
    EXPECT_FALSE(reads(BinaryFile{{{0xD1, 1, 2}, {0x10, 5}, {0x09}}}.bytes()))
        << "a number as name";
    EXPECT_FALSE(reads(BinaryFile{{{0xA0}}}.bytes())) << "the outermost value is no dictionary";
    EXPECT_FALSE(reads(BinaryFile{{{0xD0}}, 2, 1, 1}.bytes()));
    EXPECT_FALSE(reads(BinaryFile{{}}.bytes()));
}

TEST(DamagedPropertyList, NumbersInTheTrailerAreChecked) {
    const Bytes good = BinaryFile{{{0xD0}}}.bytes();
    ASSERT_TRUE(reads(good));
    const std::size_t trailer = good.size() - 32;
    const auto with = [&](std::size_t place, std::uint8_t value) {
        Bytes changed = good;
        changed[trailer + place] = value;
        return changed;
    };
    EXPECT_FALSE(reads(with(6, 0))) << "no bytes a place";
    EXPECT_FALSE(reads(with(6, 9)));
    EXPECT_FALSE(reads(with(7, 0)));
    EXPECT_FALSE(reads(with(7, 9)));
    EXPECT_FALSE(reads(with(8, 0x80))) << "more values than the file has bytes";
    EXPECT_FALSE(reads(with(15, 2)));
    EXPECT_FALSE(reads(with(15, 0)));
    EXPECT_FALSE(reads(with(23, 1)));
    EXPECT_FALSE(reads(with(24, 0x80)));
    EXPECT_FALSE(reads(with(31, 0xFF)));
    EXPECT_FALSE(reads(with(31, 7))) << "the table begins within the header";
}

TEST(DamagedPropertyList, PlacesOutsideTheValuesAreRefused) {
    Bytes file = BinaryFile{{{0xD1, 1, 2}, {0x51, 'a'}, {0x09}}}.bytes();
    const std::size_t table = file.size() - 32 - 6;
    ASSERT_TRUE(reads(file));
    file[table + 5] = 0;
    EXPECT_FALSE(reads(file)) << "within the header";
    file[table + 5] = static_cast<std::uint8_t>(table);
    EXPECT_FALSE(reads(file)) << "within the table";
}

TEST(DamagedPropertyList, ContainersInThemselvesAreRefused) {
    EXPECT_FALSE(readsAsValue({0xA1, 2}));
    EXPECT_FALSE(readsAsValue({0xA1, 0}));
    EXPECT_FALSE(reads(BinaryFile{{{0xD1, 1, 0}, {0x51, 'a'}}}.bytes()));
}

TEST(DamagedPropertyList, FewBytesCannotStandForVeryMany) {
    // Each array names the next one ten times: 10^30 values in a few hundred bytes.
    BinaryFile file{{{0xD1, 1, 2}, {0x51, 'a'}}};
    for (std::uint8_t i = 0; i < 30; ++i) {
        Bytes list{0xAA};
        list.insert(list.end(), 10, static_cast<std::uint8_t>(i + 3));
        file.values.push_back(list);
    }
    file.values.push_back({0x09});
    Limits limits;
    limits.entries = 100000;
    EXPECT_EQ(Document::read(file.bytes(), limits), nullptr);
}

TEST(DamagedPropertyList, ContainersThatAreSharedBecomeSeveral) {
    const Bytes file = BinaryFile{{{0xD2, 1, 2, 3, 3}, {0x51, 'a'}, {0x51, 'b'}, {0xD0}}}.bytes();
    const std::unique_ptr<Document> document = Document::read(file);
    ASSERT_TRUE(document);
    const auto a = document->member(document->top(), u"a");
    ASSERT_TRUE(document->set(a, u"x", number(1).get()));
    EXPECT_EQ(document->count(document->member(document->top(), u"a")), 1U);
    EXPECT_EQ(document->count(document->member(document->top(), u"b")), 0U);
}

TEST(DamagedPropertyList, DeepFilesNeedNoStack) {
    BinaryFile file{{{0xD1, 0, 1, 0, 2}, {0x51, 'a'}}, 3, 2};
    constexpr int levels = 20000;
    for (int i = 0; i < levels; ++i)
        file.values.push_back(
            {0xA1, static_cast<std::uint8_t>((i + 3) >> 8), static_cast<std::uint8_t>(i + 3)});
    file.values.push_back({0x09});
    const Bytes bytes = file.bytes();
    EXPECT_FALSE(reads(bytes));

    Limits deep;
    deep.depth = levels + 10;
    struct Context {
        const Bytes& bytes;
        const Limits& limits;
        bool read = false;
    } context{bytes, deep};
    const auto readAll = [](void* argument) -> void* {
        auto* in = static_cast<Context*>(argument);
        const std::unique_ptr<Document> document = Document::read(in->bytes, in->limits);
        const Object all(document ? document->copy(document->top()) : nullptr);
        in->read = static_cast<bool>(all);
        if (document) {
            document->remove(document->top(), u"a");
            in->read = in->read && document->set(document->top(), u"b", all.get());
        }
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, readAll, &context), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_TRUE(context.read) << "depth is the limit's affair, not the stack's";
}

TEST(DamagedPropertyList, LargerFilesThanAllowedAreRefused) {
    const Bytes file = sample();
    Limits limits;
    limits.bytes = file.size() - 1;
    EXPECT_EQ(Document::read(file, limits), nullptr);
    limits.bytes = file.size();
    EXPECT_NE(Document::read(file, limits), nullptr);
}
