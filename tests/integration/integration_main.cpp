// The integration tests run inside network and mount namespaces of their
// own: only a loopback interface exists there, so no test traffic can leave
// the machine, and a private /run keeps the daemons' sockets away from the
// host's. Only root can make them: anyone else gets exit code 77
// ("skipped"). Listing the tests works for everyone, so CTest can discover
// them.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    if (geteuid() != 0) {
        std::fprintf(stderr, "integration tests need root for a private network namespace: skipped\n");
        return 77;
    }
    // Before any thread starts.
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) {
        std::fprintf(stderr, "cannot make a private network namespace: %s\n", std::strerror(errno));
        return 1;
    }
    // Mounts made from here on stay in this namespace; rpcbind gets a /run of its own.
    if (std::system("mount --make-rprivate / && mount -t tmpfs -o nosuid,nodev,mode=0755 tmpfs /run && "
                    "mkdir /run/rpcbind && ip link set lo up") != 0)
        return 1;
    // The built-in VISA, for the probe here and the tool the tests start.
    setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
    return RUN_ALL_TESTS();
}
