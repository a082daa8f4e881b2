#pragma once
// The one allocation helper of the resource-string code, and the fault hook
// tests use to make a chosen allocation fail. Allocation failure is an
// answer here (a null buffer), never an exception.
#include <cstddef>
#include <cstdint>
#include <memory>

namespace braxcfg::rsrc {

// Process-wide: while armed, counts allocations made through
// allocateChars and makes the n-th one from the arming (1-based) fail.
class AllocationFaults {
public:
    // Counts without ever failing.
    static constexpr std::uint64_t kNever = UINT64_MAX;
    // Arms the hook so that the n-th allocation from now fails; 0 disarms.
    static void failAt(std::uint64_t n);
    static void disarm() { failAt(0); }
    // Allocations made since the hook was last armed (the failed one included).
    static std::uint64_t allocationsSinceArmed();
};

// Disarms the hook when it goes out of scope, so a failing test leaves no
// armed fault behind for the next one.
class ScopedAllocationFault {
public:
    explicit ScopedAllocationFault(std::uint64_t n) { AllocationFaults::failAt(n); }
    ~ScopedAllocationFault() { AllocationFaults::disarm(); }
    ScopedAllocationFault(const ScopedAllocationFault&) = delete;
    ScopedAllocationFault& operator=(const ScopedAllocationFault&) = delete;
};

// Gives a buffer from allocateChars back.
struct ReleaseChars {
    void operator()(char* chars) const noexcept;
};
using OwnedChars = std::unique_ptr<char[], ReleaseChars>;

// `size` characters, or null when memory (or the fault hook) says no.
// Every parse allocates and frees the same few small sizes, so released
// buffers are kept per thread for the next allocation of their size class
// (not in sanitizer builds, where every buffer goes back at once so that
// a use after release is caught).
OwnedChars allocateChars(std::size_t size);

}  // namespace braxcfg::rsrc
