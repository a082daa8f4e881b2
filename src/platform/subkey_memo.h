#pragma once
// A result computed from a key's subkeys, kept until the key's subkey list
// changes (in this process or another), so that code which must look at
// the whole list before every step of a long loop pays for it once.
#include <memory>
#include <mutex>

#include "platform/registry.h"

namespace braxcfg::platform {

template <typename Result>
class SubkeyMemo {
public:
    // compute(key) is called when the list changed since the last call
    // (always when the key is not open).
    template <typename Compute>
    std::shared_ptr<const Result> get(const Registry& key, Compute&& compute) {
        // Read before computing: a change during compute() then shows as a
        // stamp that no longer matches next time.
        const std::uint64_t stamp = key.subkeyStamp();
        std::lock_guard lock(mutex_);
        if (stamp == 0 || stamp != stamp_ || !result_) {
            result_ = std::make_shared<const Result>(compute(key));
            stamp_ = stamp;
        }
        return result_;
    }

private:
    std::mutex mutex_;
    std::uint64_t stamp_ = 0;
    std::shared_ptr<const Result> result_;
};

}  // namespace braxcfg::platform
