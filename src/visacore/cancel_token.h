#pragma once
// A cancel request that a waiting network call can see at once: the token
// carries a file descriptor that becomes readable when cancel() is called,
// so it joins the poll() set of whatever is waiting.
#include <atomic>

namespace braxcfg::visa {

class CancelToken {
public:
    CancelToken();
    ~CancelToken();
    CancelToken(const CancelToken&) = delete;
    CancelToken& operator=(const CancelToken&) = delete;

    // Safe from any thread and from a signal handler.
    void cancel() const;
    bool cancelled() const { return cancelled_.load(std::memory_order_acquire); }
    // Makes the token usable for another request.
    void reset();
    // Readable once cancelled; -1 when no descriptor could be made, in which
    // case waits notice the request only when they next wake up.
    int fd() const { return fd_; }

private:
    int fd_ = -1;
    mutable std::atomic<bool> cancelled_{false};
};

}  // namespace braxcfg::visa
