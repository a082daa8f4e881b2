// The integration tests run inside network and mount namespaces of their
// own: only a loopback interface exists there, so no test traffic can leave
// the machine, and a private /run keeps the daemons' sockets away from the
// host's. Only root can make them: anyone else gets exit code 77
// ("skipped"). Listing the tests works for everyone, so CTest can discover
// them.
#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// The failing step, or null. Before any thread starts.
const char* enterPrivateNetwork() {
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) return "unshare";
    // Mounts made from here on stay in this namespace.
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return "mount --make-rprivate /";
    if (mount("tmpfs", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755") != 0) return "mount /run";
    if (mkdir("/run/rpcbind", 0755) != 0) return "mkdir /run/rpcbind";
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    bool up = ioctl(fd, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
    up = up && ioctl(fd, SIOCSIFFLAGS, &request) == 0;
    close(fd);
    return up ? nullptr : "ip link set lo up";
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    if (geteuid() != 0) {
        std::fprintf(stderr, "integration tests need root for a private network namespace: skipped\n");
        return 77;
    }
    if (const char* step = enterPrivateNetwork()) {
        std::fprintf(stderr, "cannot make a private network namespace: %s: %s\n", step, std::strerror(errno));
        return 1;
    }
    // The built-in VISA, for the probe here and the tool the tests start.
    setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
    return RUN_ALL_TESTS();
}
