#include "platform/imagelist.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>

using Korvex::LoadedImage;

TEST(ImageList, TheMainProgramComesFirstUnderItsPath) {
    const auto images = Korvex::loadedImages().images();
    ASSERT_FALSE(images.empty());
    EXPECT_EQ(images.front().path, std::filesystem::read_symlink("/proc/self/exe"));
}

TEST(ImageList, CodeOfTheMainProgramBelongsToIt) {
    EXPECT_EQ(Korvex::loadedImages().images().front().header, Korvex::loadedImages().ownHeader());
}

TEST(ImageList, LibrariesHaveTheirPathAndTheAddressOfTheirFirstByte) {
    Dl_info libc{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&std::abort), &libc), 0);
    const auto images = Korvex::loadedImages().images();
    const auto found = std::ranges::find(images, libc.dli_fbase, &LoadedImage::header);
    ASSERT_NE(found, images.end());
    EXPECT_TRUE(std::filesystem::equivalent(found->path, libc.dli_fname)) << found->path;
}
