#pragma once

#include <cstddef>

namespace zvk::Pelkraft::TestSupport {

// Counts what this thread allocates through operator new between Start and Stop, and can let
// allocations fail. For programs that are built with counted_memory.cpp.
class CountedMemory
{
public:
    // Aligned counts those of a stated alignment alone, which are all that a conversion makes.
    enum class Counts
    {
        All,
        Aligned,
    };
    struct Allocation
    {
        std::size_t bytes;
        // 0 where none was asked for.
        std::size_t alignment;
    };
    enum class Fails
    {
        Once,
        ForEver,
    };

    explicit CountedMemory(Counts newCounts = Counts::All) : counts(newCounts) {}
    ~CountedMemory();
    CountedMemory(const CountedMemory&) = delete;
    CountedMemory& operator=(const CountedMemory&) = delete;

    void Start();
    void Stop();

    // From here on the allocation of this number, counted from 0, fails; for ever, all after it
    // do as well.
    void FailAt(std::size_t number, Fails fails = Fails::Once);
    // Every allocation of more than so many bytes fails.
    void FailAbove(std::size_t bytes) { mostBytes = bytes; }
    // None fails any more.
    void FailNoMore() { firstFailing = mostBytes = never; }

    // All that were asked for, the failed ones included.
    std::size_t CountAsked() const { return asked; }
    std::size_t CountFailed() const { return failed; }
    // Counts what is still held of all that was allocated.
    std::ptrdiff_t CountHeld() const { return held; }
    // The first ones asked for, up to as many as are kept.
    static constexpr std::size_t kept = 8;
    const Allocation& GetAllocation(std::size_t index) const { return allocations[index]; }

    // For the operators alone.
    bool Counted(std::size_t alignment) const { return counts == Counts::All || alignment != 0; }
    bool Allow(const Allocation& allocation);
    void NoteAllocated() { ++held; }
    void NoteFreed() { --held; }

private:
    static constexpr std::size_t never = static_cast<std::size_t>(-1);

    Counts counts;
    std::size_t firstFailing = never;
    std::size_t lastFailing = never;
    std::size_t mostBytes = never;
    std::size_t asked = 0;
    std::size_t failed = 0;
    std::ptrdiff_t held = 0;
    Allocation allocations[kept] = {};
};

// While it lives, every allocation of this thread through operator new fails.
class DeniedMemory
{
public:
    DeniedMemory();

private:
    CountedMemory memory;
};

} // namespace zvk::Pelkraft::TestSupport
