#include "support/crt_client.h"

#include <gtest/gtest.h>

TEST(CrtClient, EveryFunctionIsThereForC) {
    const char* failure = crtClientFailure();
    EXPECT_EQ(failure, nullptr) << failure;
}
