#include "private_network.h"

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace braxcfg::test {
namespace {

bool failed(std::string& error, const char* step) {
    error = std::string(step) + ": " + std::strerror(errno);
    return false;
}

bool bringLoopbackUp() {
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    bool ok = ioctl(fd, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
    ok = ok && ioctl(fd, SIOCSIFFLAGS, &request) == 0;
    close(fd);
    return ok;
}

}  // namespace

bool enterPrivateNetwork(std::string& error) {
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) return failed(error, "unshare");
    // Mounts made from here on stay in this namespace.
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return failed(error, "mount --make-rprivate /");
    if (mount("tmpfs", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755") != 0) return failed(error, "mount /run");
    if (mkdir("/run/rpcbind", 0755) != 0) return failed(error, "mkdir /run/rpcbind");
    if (!bringLoopbackUp()) return failed(error, "ip link set lo up");
    return true;
}

}  // namespace braxcfg::test
