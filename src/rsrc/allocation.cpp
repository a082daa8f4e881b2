#include "rsrc/allocation.h"

#include <atomic>
#include <new>

namespace braxcfg::rsrc {
namespace {

// Only an armed hook counts, so allocation costs nothing extra in normal
// use: the disarmed check is one relaxed load.
std::atomic<bool> g_armed{false};
std::atomic<std::uint64_t> g_failAt{0};
std::atomic<std::uint64_t> g_allocations{0};

}  // namespace

void AllocationFaults::failAt(std::uint64_t n) {
    g_allocations.store(0, std::memory_order_relaxed);
    g_failAt.store(n, std::memory_order_relaxed);
    g_armed.store(n != 0, std::memory_order_relaxed);
}

std::uint64_t AllocationFaults::allocationsSinceArmed() { return g_allocations.load(std::memory_order_relaxed); }

std::unique_ptr<char[]> allocateChars(std::size_t size) {
    if (g_armed.load(std::memory_order_relaxed)) {
        const std::uint64_t ordinal = g_allocations.fetch_add(1, std::memory_order_relaxed) + 1;
        if (ordinal == g_failAt.load(std::memory_order_relaxed)) return nullptr;
    }
    return std::unique_ptr<char[]>(new (std::nothrow) char[size]);
}

}  // namespace braxcfg::rsrc
