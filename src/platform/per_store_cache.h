#pragma once
#include <cstdint>
#include <mutex>

#include "platform/store.h"

namespace braxcfg::platform {

// A value cached for the life of one store: a new store (another file, or
// the same file opened anew) reads it again.
template <typename T>
class PerStoreCache {
public:
    template <typename Compute>
    T get(Compute compute) {
        std::lock_guard lock(mutex_);
        const std::uint64_t generation = storeGeneration();
        if (!valid_ || generation_ != generation) {
            value_ = compute();
            generation_ = generation;
            valid_ = true;
        }
        return value_;
    }

private:
    std::mutex mutex_;
    bool valid_ = false;
    std::uint64_t generation_ = 0;
    T value_{};
};

}  // namespace braxcfg::platform
