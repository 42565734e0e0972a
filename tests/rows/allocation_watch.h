#pragma once

#include <cstddef>

namespace zvk::Pelkraft::TestSupport {

// Watches what this thread allocates through operator new between Start and Stop, and can let one
// of the allocations fail. For programs that are built with allocation_watch.cpp.
class AllocationWatch
{
public:
    struct Allocation
    {
        std::size_t bytes;
        // 0 where none was asked for.
        std::size_t alignment;
    };

    AllocationWatch() = default;
    // The allocation of this number fails, counted from 0.
    explicit AllocationWatch(std::size_t newFailing);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    void Start();
    void Stop();

    // All that were asked for, the failed one included.
    std::size_t CountAsked() const { return asked; }
    bool HasFailed() const { return asked > failing; }
    // What is still held of all that was allocated.
    std::ptrdiff_t CountHeld() const { return held; }
    // The first ones asked for, up to as many as are kept.
    static constexpr std::size_t kept = 8;
    const Allocation& GetAllocation(std::size_t index) const { return allocations[index]; }

    // For the operators alone.
    bool Allow(const Allocation& allocation);
    void NoteAllocated() { ++held; }
    void NoteFreed() { --held; }

private:
    static constexpr std::size_t never = static_cast<std::size_t>(-1);

    std::size_t failing = never;
    std::size_t asked = 0;
    std::ptrdiff_t held = 0;
    Allocation allocations[kept] = {};
};

} // namespace zvk::Pelkraft::TestSupport
