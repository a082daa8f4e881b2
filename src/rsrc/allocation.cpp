#include "rsrc/allocation.h"

#include <atomic>
#include <cstddef>
#include <iterator>
#include <new>

namespace braxcfg::rsrc {
namespace {

// Only an armed hook counts, so allocation costs nothing extra in normal
// use: the disarmed check is one relaxed load.
std::atomic<bool> g_armed{false};
std::atomic<std::uint64_t> g_failAt{0};
std::atomic<std::uint64_t> g_allocations{0};

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kKeepReleased = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kKeepReleased = false;
#else
constexpr bool kKeepReleased = true;
#endif
#else
constexpr bool kKeepReleased = true;
#endif

// Each buffer is preceded by a header whose last byte records its size
// class, so a released buffer finds its way back to the right list; a kept
// buffer links to the next through the header's first bytes.
constexpr std::size_t kHeader = alignof(std::max_align_t);
constexpr std::size_t kClassSizes[] = {16, 32, 64, 128, 256, 1024};
constexpr std::size_t kKeptPerClass[] = {32, 32, 16, 16, 8, 4};
constexpr std::size_t kClasses = std::size(kClassSizes);
constexpr unsigned char kUnclassed = 0xFF;

struct Kept {
    Kept* next;
};

// Trivially destructible, so it stays usable while the thread's other
// objects are destroyed; `closed` then sends every buffer straight back.
struct KeptLists {
    Kept* heads[kClasses];
    std::size_t counts[kClasses];
    bool closed;
};
thread_local KeptLists t_kept{};

void deleteBlock(char* block) { delete[] block; }

// Hands the thread's kept buffers back when the thread ends.
struct KeptListsCloser {
    ~KeptListsCloser() {
        t_kept.closed = true;
        for (std::size_t c = 0; c < kClasses; ++c)
            while (Kept* kept = t_kept.heads[c]) {
                t_kept.heads[c] = kept->next;
                deleteBlock(reinterpret_cast<char*>(kept));
            }
    }
};
thread_local KeptListsCloser t_closer;

char* takeChars(std::size_t size) {
    std::size_t c = 0;
    // Sanitizer builds allocate exactly what is asked for, so that a write
    // past the end is caught too.
    if (!kKeepReleased) c = kClasses;
    while (c < kClasses && kClassSizes[c] < size) ++c;
    if (c < kClasses && t_kept.heads[c] != nullptr) {
        Kept* kept = t_kept.heads[c];
        t_kept.heads[c] = kept->next;
        --t_kept.counts[c];
        return reinterpret_cast<char*>(kept) + kHeader;
    }
    char* block = new (std::nothrow) char[kHeader + (c < kClasses ? kClassSizes[c] : size)];
    if (block == nullptr) return nullptr;
    block[kHeader - 1] = static_cast<char>(c < kClasses ? c : kUnclassed);
    return block + kHeader;
}

void giveChars(char* chars) {
    if (chars == nullptr) return;
    char* block = chars - kHeader;
    const auto c = static_cast<unsigned char>(block[kHeader - 1]);
    if (kKeepReleased && c < kClasses && !t_kept.closed && t_kept.counts[c] < kKeptPerClass[c]) {
        (void)&t_closer;  // makes sure the thread's lists are emptied when it ends
        auto* kept = reinterpret_cast<Kept*>(block);
        kept->next = t_kept.heads[c];
        t_kept.heads[c] = kept;
        ++t_kept.counts[c];
        return;
    }
    deleteBlock(block);
}

}  // namespace

void AllocationFaults::failAt(std::uint64_t n) {
    g_allocations.store(0, std::memory_order_relaxed);
    g_failAt.store(n, std::memory_order_relaxed);
    g_armed.store(n != 0, std::memory_order_relaxed);
}

std::uint64_t AllocationFaults::allocationsSinceArmed() { return g_allocations.load(std::memory_order_relaxed); }

OwnedChars allocateChars(std::size_t size) {
    if (g_armed.load(std::memory_order_relaxed)) {
        const std::uint64_t ordinal = g_allocations.fetch_add(1, std::memory_order_relaxed) + 1;
        if (ordinal == g_failAt.load(std::memory_order_relaxed)) return nullptr;
    }
    return OwnedChars(takeChars(size));
}

void ReleaseChars::operator()(char* chars) const noexcept { giveChars(chars); }

}  // namespace braxcfg::rsrc
