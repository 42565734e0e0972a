#pragma once

#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// While it lives, this thread's allocations of a stated alignment are written down, which are all
// that a conversion makes. One of them can be made to fail.
class CountedMemory
{
public:
    static constexpr std::size_t noFailure = static_cast<std::size_t>(-1);

    // The allocation of this number, from 0 on, fails.
    explicit CountedMemory(std::size_t failingAllocation = noFailure);
    ~CountedMemory();
    CountedMemory(const CountedMemory&) = delete;
    CountedMemory& operator=(const CountedMemory&) = delete;

    // In their order, the failed one included.
    const std::vector<std::size_t>& GetSizes() const { return sizes; }
    const std::vector<std::size_t>& GetAlignments() const { return alignments; }
    // Allocations that are not yet freed.
    std::ptrdiff_t CountLive() const { return live; }

    // For the operators: whether this allocation is to succeed.
    bool Admit(std::size_t size, std::size_t alignment);
    void Forget() { --live; }

private:
    std::size_t failing;
    std::vector<std::size_t> sizes;
    std::vector<std::size_t> alignments;
    std::ptrdiff_t live = 0;
};

} // namespace zvk::Pelkraft::TestSupport
