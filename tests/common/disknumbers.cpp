// Programs that ask for disks link this: the file that the disks' numbers are kept in is made
// before the first test, so that no test leaves it behind.

#include "platform/disknames.h"

#include <gtest/gtest.h>

namespace {

class NumbersKept : public testing::Environment {
    void SetUp() override { (void)Korvex::diskNodes(); }
};
const auto* const kept = testing::AddGlobalTestEnvironment(new NumbersKept);

} // namespace
