#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft::TestSupport {

// Gigabytes of addresses that take next to no memory, with a forbidden page after them.
class WideMemory
{
public:
    enum Kind
    {
        // Every access faults.
        Forbidden,
        // Reads as zeros; a write takes memory for the page that it meets.
        Blank,
        // One megabyte over and over, so that what is written at a place stands at all of its
        // fellows; and at the end one of its own, which only an access there can have met.
        Repeated,
    };

    // Throws std::bad_alloc where there are no such addresses left.
    WideMemory(std::uint64_t newBytes, Kind kind);
    ~WideMemory();
    WideMemory(const WideMemory&) = delete;
    WideMemory& operator=(const WideMemory&) = delete;

    // So many bytes, the last of them in front of the forbidden page.
    unsigned char* Last(std::uint64_t count) const;
    std::uint64_t size() const { return bytes; }

    // Makes blank memory zero again.
    void Clear() const;
    // Writes into the megabyte that is repeated, and into the last one.
    void FillWithNoise(std::uint32_t seed) const;
    void FillWith(unsigned char byte) const;

    static constexpr std::size_t window = std::size_t{1} << 20;

private:
    void MapWindows() const;
    unsigned char* LastWindow() const;

    std::uint64_t bytes;
    std::size_t mappingSize;
    unsigned char* mapping;
};

} // namespace zvk::Pelkraft::TestSupport
