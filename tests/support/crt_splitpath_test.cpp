#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <ostream>

using KxTest::as;
using KxTest::shown;

namespace {

struct Narrow {
    using Char = char;
    static constexpr auto split = _splitpath;
    static constexpr auto splitChecked = _splitpath_s;
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto split = _wsplitpath;
    static constexpr auto splitChecked = _wsplitpath_s;
};

struct Parts {
    std::string drive, dir, fname, ext;
    bool operator==(const Parts&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Parts& parts) {
    return out << '[' << parts.drive << '|' << parts.dir << '|' << parts.fname << '|' << parts.ext
               << ']';
}

const Parts none;

/// Characters that there is room for.
struct Sizes {
    size_t drive = _MAX_DRIVE, dir = _MAX_DIR, fname = _MAX_FNAME, ext = _MAX_EXT;
};

} // namespace

template <class Form>
class CrtSplitPath : public testing::Test {
protected:
    using Character = typename Form::Char;

    CrtSplitPath() {
        for (Character* text : {drive, dir, fname, ext})
            std::char_traits<Character>::assign(text, _MAX_PATH, '#');
    }

    Parts seen() { return {shown(drive), shown(dir), shown(fname), shown(ext)}; }

    Parts split(std::string_view path) {
        Form::split(as<Character>(path).c_str(), drive, dir, fname, ext);
        EXPECT_EQ(errno, 0) << path;
        return seen();
    }

    errno_t splitInto(Sizes sizes, std::string_view path) {
        return Form::splitChecked(as<Character>(path).c_str(), drive, sizes.drive, dir, sizes.dir,
                                  fname, sizes.fname, ext, sizes.ext);
    }

    void SetUp() override { errno = 99; }

    Character drive[_MAX_PATH], dir[_MAX_PATH], fname[_MAX_PATH], ext[_MAX_PATH];
};

using Forms = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(CrtSplitPath, Forms);

TYPED_TEST(CrtSplitPath, DirectoryNameAndExtension) {
    EXPECT_EQ(this->split("/a/b.txt"), (Parts{"", "/a", "b", "txt"}));
    EXPECT_EQ(this->split("/a/b/c"), (Parts{"", "/a/b", "c", ""}));
    EXPECT_EQ(this->split("a/b/c.d"), (Parts{"", "a/b", "c", "d"}));
    EXPECT_EQ(this->split("/a/b/"), (Parts{"", "/a/b", "", ""}));
    EXPECT_EQ(this->split("//f"), (Parts{"", "/", "f", ""}));
}

TYPED_TEST(CrtSplitPath, AFileNameAlone) {
    EXPECT_EQ(this->split("file.txt"), (Parts{"", "", "file", "txt"}));
    EXPECT_EQ(this->split("file"), (Parts{"", "", "file", ""}));
    EXPECT_EQ(this->split(""), none);
}

TYPED_TEST(CrtSplitPath, TheFirstDotOfTheNameStartsTheExtension) {
    EXPECT_EQ(this->split("/a/b.tar.gz"), (Parts{"", "/a", "b", "tar.gz"}));
    EXPECT_EQ(this->split("/a.b/c"), (Parts{"", "/a.b", "c", ""}));
    EXPECT_EQ(this->split("/a/.profile"), (Parts{"", "/a", "", "profile"}));
    EXPECT_EQ(this->split("/a/b."), (Parts{"", "/a", "b", ""})) << "a lone dot is no extension";
    EXPECT_EQ(this->split("/a/b.."), (Parts{"", "/a", "b", "."}));
}

TYPED_TEST(CrtSplitPath, APathRightBelowTheRootHasNoParts) {
    EXPECT_EQ(this->split("/file.txt"), none);
    EXPECT_EQ(this->split("/"), none);
    EXPECT_EQ(this->splitInto({}, "/file.txt"), 0);
}

TYPED_TEST(CrtSplitPath, TheDriveBeginsInsideTheVolumesPrefix) {
    EXPECT_EQ(this->split("/Volumes/Disk/dir/f.txt"), (Parts{"umes", "Disk/dir", "f", "txt"}));
    EXPECT_EQ(this->split("/Volumes/Disk/f"), (Parts{"umes", "Disk", "f", ""}));
    EXPECT_EQ(this->split("/Volumes/Disk"), (Parts{"umes", "", "Disk", ""}));
    EXPECT_EQ(this->split("/Volumes/Disk/"), (Parts{"umes", "Disk", "", ""}));
    EXPECT_EQ(this->split("/Volumes//f"), (Parts{"umes", "", "f", ""}));
    EXPECT_EQ(this->split("/VolumesXY/a/b"), (Parts{"umesXY", "a", "b", ""}));
}

TYPED_TEST(CrtSplitPath, AVolumeWithoutFurtherSeparatorIsAllDrive) {
    EXPECT_EQ(this->split("/Volumes"), (Parts{"umes", "", "", ""}));
    EXPECT_EQ(this->split("/VolumesXY.z"), (Parts{"umesXY.z", "", "", ""}));
    EXPECT_EQ(this->split("/Volumes/"), (Parts{"umes", "", "", ""}));
}

TYPED_TEST(CrtSplitPath, OnlyTheStartOfThePathIsAVolume) {
    EXPECT_EQ(this->split("/x/Volumes/f"), (Parts{"", "/x/Volumes", "f", ""}));
    EXPECT_EQ(this->split("Volumes/Disk/f"), (Parts{"", "Volumes/Disk", "f", ""}));
    EXPECT_EQ(this->split("/volumes/f"), (Parts{"", "/volumes", "f", ""}));
}

TYPED_TEST(CrtSplitPath, EveryPartNeedsRoomForItsTerminator) {
    const std::string_view path = "/Volumes/Disk/dir/name.text"; // umes, Disk/dir, name, text
    EXPECT_EQ(this->splitInto({5, 9, 5, 5}, path), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(this->seen(), (Parts{"umes", "Disk/dir", "name", "text"}));
    for (const Sizes sizes :
         {Sizes{4, 9, 5, 5}, Sizes{5, 8, 5, 5}, Sizes{5, 9, 4, 5}, Sizes{5, 9, 5, 4}}) {
        errno = 0;
        EXPECT_EQ(this->splitInto(sizes, path), 34);
        EXPECT_EQ(errno, 34);
        EXPECT_EQ(this->seen(), none);
    }
}

TYPED_TEST(CrtSplitPath, ADriveThatIsAllThePathNeedsRoomToo) {
    EXPECT_EQ(this->splitInto({4, 9, 9, 9}, "/Volumes"), 34);
    EXPECT_EQ(errno, 34);
    EXPECT_EQ(this->splitInto({5, 9, 9, 9}, "/Volumes"), 0);
}

TYPED_TEST(CrtSplitPath, AnOutputWithoutRoomIsRefused) {
    EXPECT_EQ(this->splitInto({9, 9, 9, 0}, "/a/b"), 22);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(this->drive[0], 0) << "outputs before it are empty by then";
    EXPECT_EQ(this->ext[0], '#');
    errno = 0;
    EXPECT_EQ(this->splitInto({0, 9, 9, 9}, "/a/b"), 22);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(this->drive[1], '#');
}

TYPED_TEST(CrtSplitPath, ANullPathEmptiesTheOutputs) {
    EXPECT_EQ(TypeParam::splitChecked(nullptr, this->drive, 9, this->dir, 9, this->fname, 9,
                                      this->ext, 9),
              22);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(this->seen(), none);
    errno = 0;
    TypeParam::split(nullptr, this->drive, nullptr, nullptr, nullptr);
    EXPECT_EQ(errno, 22);
}

TYPED_TEST(CrtSplitPath, PartsThatAreNotWantedNeedNoRoom) {
    using Char = typename TypeParam::Char;
    const std::basic_string<Char> path = as<Char>("/Volumes/Disk/dir/name.text");
    EXPECT_EQ(
        TypeParam::splitChecked(path.c_str(), nullptr, 0, nullptr, 0, this->fname, 5, nullptr, 0),
        0);
    EXPECT_EQ(shown(this->fname), "name");
    TypeParam::split(path.c_str(), nullptr, this->dir, nullptr, this->ext);
    EXPECT_EQ(shown(this->dir), "Disk/dir");
    EXPECT_EQ(shown(this->ext), "text");
}

TYPED_TEST(CrtSplitPath, ThePlainFormHas64CharactersForTheDriveAnd256ForTheOthers) {
    using Char = typename TypeParam::Char;
    const std::string part(255, 'p');
    const std::string volume = "umes" + std::string(63 - 4, 'd');
    const auto pathOf = [](const Parts& parts) {
        return "/Vol" + parts.drive + "/" + parts.dir + "/" + parts.fname + "." + parts.ext;
    };
    const Parts longest{volume, part, part, part};
    EXPECT_EQ(this->split(pathOf(longest)), longest);
    for (std::string Parts::*which : {&Parts::drive, &Parts::dir, &Parts::fname, &Parts::ext}) {
        Parts tooLong = longest;
        tooLong.*which += "x";
        const std::basic_string<Char> path = as<Char>(pathOf(tooLong));
        TypeParam::split(path.c_str(), this->drive, this->dir, this->fname, this->ext);
        EXPECT_EQ(errno, 34);
        EXPECT_EQ(this->seen(), none);
    }
}
