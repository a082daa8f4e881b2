#include "visacore/cancel_token.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

namespace braxcfg::visa {

CancelToken::CancelToken() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

CancelToken::~CancelToken() {
    if (fd_ >= 0) close(fd_);
}

void CancelToken::cancel() const {
    cancelled_.store(true, std::memory_order_release);
    if (fd_ >= 0) {
        const std::uint64_t one = 1;
        // A full counter is already readable, so a failed write loses nothing.
        [[maybe_unused]] const auto written = write(fd_, &one, sizeof one);
    }
}

void CancelToken::reset() {
    if (fd_ >= 0) {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto drained = read(fd_, &count, sizeof count);
    }
    cancelled_.store(false, std::memory_order_release);
}

}  // namespace braxcfg::visa
