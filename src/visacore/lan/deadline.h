#pragma once
// One overall time budget shared by every step of a probe: each wait gets
// what is left, so the sum of the steps can never exceed the budget.
#include <algorithm>
#include <chrono>
#include <climits>

namespace braxcfg::visa::lan {

class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(std::chrono::milliseconds budget) : end_(Clock::now() + budget) {}

    bool expired() const { return Clock::now() >= end_; }

    // Milliseconds left for poll(), rounded up so a wait never wakes early
    // and spins; 0 once the deadline has passed.
    int pollTimeoutMs() const {
        const auto left = end_ - Clock::now();
        if (left <= Clock::duration::zero()) return 0;
        const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        return static_cast<int>(std::min<long long>(ms, INT_MAX));
    }

private:
    Clock::time_point end_;
};

}  // namespace braxcfg::visa::lan
