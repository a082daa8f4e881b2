// The integration tests run inside a private network namespace, which only
// root can make: anyone else gets exit code 77 ("skipped"). Listing the
// tests works for everyone, so CTest can discover them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "private_network.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    if (geteuid() != 0) {
        std::fprintf(stderr, "integration tests need root for a private network namespace: skipped\n");
        return 77;
    }
    std::string error;
    if (!braxcfg::test::enterPrivateNetwork(error)) {
        std::fprintf(stderr, "cannot make a private network namespace: %s\n", error.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
