#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <vector>

using KxTest::as;
using KxTest::Marked;
using KxTest::shown;

namespace {

struct Narrow {
    using Char = char;
    static constexpr auto make = _makepath;
    static constexpr auto makeChecked = _makepath_s;
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto make = _wmakepath;
    static constexpr auto makeChecked = _wmakepath_s;
};

/// The parts of a path; what is not given is null.
struct Parts {
    std::optional<std::string> drive, dir, fname, ext;
};

template <class Char>
class Argument {
public:
    explicit Argument(const std::optional<std::string>& ascii) : given(ascii) {
        if (ascii)
            text = as<Char>(*ascii);
    }
    [[nodiscard]] const Char* get() const { return given ? text.c_str() : nullptr; }

private:
    bool given;
    std::basic_string<Char> text;
};

constexpr int untouched = 99;

} // namespace

template <class Form>
class CrtMakePath : public testing::Test {
protected:
    using Character = typename Form::Char;

    std::string make(const Parts& parts) {
        errno = untouched;
        const Argument<Character> drive(parts.drive), dir(parts.dir), fname(parts.fname),
            ext(parts.ext);
        EXPECT_EQ(Form::make(room, drive.get(), dir.get(), fname.get(), ext.get()), room);
        EXPECT_EQ(errno, untouched);
        return shown(room);
    }

    errno_t makeInto(Character* path, size_t size, const Parts& parts) {
        errno = untouched;
        const Argument<Character> drive(parts.drive), dir(parts.dir), fname(parts.fname),
            ext(parts.ext);
        const errno_t result =
            Form::makeChecked(path, size, drive.get(), dir.get(), fname.get(), ext.get());
        EXPECT_EQ(errno, result);
        return result;
    }

    std::string makeChecked(const Parts& parts) {
        EXPECT_EQ(makeInto(room, 100, parts), 0);
        return shown(room);
    }

    Character room[100];
};

using Forms = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(CrtMakePath, Forms);

TYPED_TEST(CrtMakePath, APathWithoutDriveIsAbsoluteAndTheCheckedOneRelative) {
    const Parts parts{{}, "dir", "file", "txt"};
    EXPECT_EQ(this->make(parts), "/dir/file.txt");
    EXPECT_EQ(this->makeChecked(parts), "dir/file.txt");
}

TYPED_TEST(CrtMakePath, ADriveIsTakenWhenItContainsVolumes) {
    const Parts parts{"/Volumes/Disk", "dir", "file", "txt"};
    EXPECT_EQ(this->make(parts), "/Volumes/Disk/dir/file.txt");
    EXPECT_EQ(this->makeChecked(parts), "/Volumes/Disk/dir/file.txt");
    const Parts inside{"x/Volumes/", "dir", "file", "txt"};
    EXPECT_EQ(this->make(inside), "x/Volumes/dir/file.txt");
    EXPECT_EQ(this->makeChecked(inside), "x/Volumes/dir/file.txt");
}

TYPED_TEST(CrtMakePath, AnyOtherDriveIsDroppedButMakesTheCheckedPathAbsolute) {
    for (const char* drive : {"C:", "umes"}) {
        const Parts parts{drive, "dir", "file", "txt"};
        EXPECT_EQ(this->make(parts), "/dir/file.txt");
        EXPECT_EQ(this->makeChecked(parts), "/dir/file.txt");
    }
    EXPECT_EQ(this->makeChecked({"", "dir", "file", "txt"}), "dir/file.txt");
}

TYPED_TEST(CrtMakePath, SeparatorsAreNotDoubled) {
    const Parts parts{"/Volumes/Disk/", "/a/b/", "/file", ".txt"};
    EXPECT_EQ(this->make(parts), "/Volumes/Disk/a/b/file.txt");
    EXPECT_EQ(this->makeChecked(parts), "/Volumes/Disk/a/b/file.txt");
    EXPECT_EQ(this->make({{}, "/", "f", {}}), "/f");
    EXPECT_EQ(this->makeChecked({{}, "/", "f", "x"}), "f.x");
}

TYPED_TEST(CrtMakePath, AFileNameWithoutExtensionEndsWithADotInTheCheckedForm) {
    for (const auto& ext : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>(".")}) {
        EXPECT_EQ(this->make({{}, "dir", "file", ext}), "/dir/file");
        EXPECT_EQ(this->makeChecked({{}, "dir", "file", ext}), "dir/file.");
    }
}

TYPED_TEST(CrtMakePath, DotsAreNotDoubled) {
    const Parts parts{{}, {}, "file.", ".txt"};
    EXPECT_EQ(this->make(parts), "/file.txt");
    EXPECT_EQ(this->makeChecked(parts), "file.txt");
}

TYPED_TEST(CrtMakePath, AnExtensionWithoutFileName) {
    const Parts parts{{}, "dir", {}, "txt"};
    EXPECT_EQ(this->make(parts), "/dir/.txt");
    EXPECT_EQ(this->makeChecked(parts), "dir/.txt");
}

TYPED_TEST(CrtMakePath, NoPartsAtAll) {
    EXPECT_EQ(this->make({}), "/");
    EXPECT_EQ(this->makeChecked({}), "");
    EXPECT_EQ(this->make({"", "", "", ""}), "/");
    EXPECT_EQ(this->makeChecked({"", "", "", ""}), "");
    EXPECT_EQ(this->make({{}, "dir", {}, {}}), "/dir/");
    EXPECT_EQ(this->makeChecked({{}, "dir", {}, {}}), "dir/");
}

TYPED_TEST(CrtMakePath, TheByteBeforeThePathDoesNotMatter) {
    using Char = typename TypeParam::Char;
    Char slashFirst[20] = {'/'};
    TypeParam::make(slashFirst + 1, nullptr, nullptr, as<Char>("f").c_str(), nullptr);
    EXPECT_EQ(shown(slashFirst), "//f");
}

TYPED_TEST(CrtMakePath, WithoutAPathThePlainFormReturnsTheExtension) {
    using Char = typename TypeParam::Char;
    const std::basic_string<Char> ext = as<Char>("txt");
    EXPECT_EQ(TypeParam::make(nullptr, nullptr, nullptr, nullptr, ext.c_str()), ext.c_str());
    EXPECT_EQ(TypeParam::make(nullptr, nullptr, nullptr, nullptr, nullptr), nullptr);
}

TYPED_TEST(CrtMakePath, TheCheckedFormRefusesANullPathAndASizeOfZero) {
    using Char = typename TypeParam::Char;
    Marked<Char, 4> buffer;
    EXPECT_EQ(this->makeInto(nullptr, 10, {{}, "d", {}, {}}), 22);
    EXPECT_EQ(this->makeInto(buffer.text, 0, {}), 22);
    EXPECT_EQ(buffer.bytes(), "####");
}

TYPED_TEST(CrtMakePath, TheCheckedFormNeedsRoomForEveryPartAndTheTerminator) {
    using Char = typename TypeParam::Char;
    const Parts whole{"/Volumes/D", "dir", "file", "txt"}; // /Volumes/D/dir/file.txt
    constexpr size_t enough = 24;
    for (size_t size = 1; size < enough; ++size) {
        Marked<Char, enough> buffer;
        EXPECT_EQ(this->makeInto(buffer.text, size, whole), 22) << size;
        EXPECT_EQ(buffer.bytes(), std::string(enough, '#')) << size;
    }
    Marked<Char, enough + 1> buffer;
    EXPECT_EQ(this->makeInto(buffer.text, enough, whole), 0);
    EXPECT_EQ(buffer.bytes(), "/Volumes/D/dir/file.txt0#");
}

TYPED_TEST(CrtMakePath, TheDotBehindAFileNameNeedsRoomEvenWithoutExtension) {
    using Char = typename TypeParam::Char;
    Marked<Char, 6> buffer;
    EXPECT_EQ(this->makeInto(buffer.text, 5, {{}, {}, "file", {}}), 22);
    EXPECT_EQ(this->makeInto(buffer.text, 6, {{}, {}, "file", {}}), 0);
    EXPECT_EQ(buffer.bytes(), "file.0");
}

TYPED_TEST(CrtMakePath, TheCheckedFormNeedsMemoryForAsManyCharactersAsItsSize) {
    using Char = typename TypeParam::Char;
    Marked<Char, 4> buffer;
    std::vector<size_t> sizes{SIZE_MAX, SIZE_MAX / sizeof(Char), PTRDIFF_MAX / sizeof(Char)};
    // A 32-bit program may well have 2 GB.
    if (sizeof(size_t) > sizeof(std::uint32_t))
        sizes.insert(sizes.end(),
                     {PTRDIFF_MAX / sizeof(Char) - 1, PTRDIFF_MAX / sizeof(Char) - 16});
    for (const size_t size : sizes)
        EXPECT_EQ(this->makeInto(buffer.text, size, {{}, {}, "f", {}}), 12) << size;
    EXPECT_EQ(buffer.bytes(), "####");
}
