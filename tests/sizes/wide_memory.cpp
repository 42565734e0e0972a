#include "tests/sizes/wide_memory.h"

#include "tests/support/random_bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

void Require(bool holds)
{
    if (!holds)
        throw std::bad_alloc();
}

} // namespace

WideMemory::WideMemory(std::uint64_t newBytes, Kind kind)
    : bytes((newBytes + window - 1) / window * window), mappingSize(0), mapping(nullptr)
{
    Require(bytes < std::numeric_limits<std::size_t>::max() - window);
    mappingSize = static_cast<std::size_t>(bytes) + window;
    void* const memory =
        mmap(nullptr, mappingSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    Require(memory != MAP_FAILED);
    mapping = static_cast<unsigned char*>(memory);
    if (kind == Blank)
        Require(mprotect(mapping, static_cast<std::size_t>(bytes), PROT_READ | PROT_WRITE) == 0);
    else if (kind == Repeated)
        MapWindows();
}

WideMemory::~WideMemory()
{
    munmap(mapping, mappingSize);
}

void WideMemory::MapWindows() const
{
    const int file = memfd_create("wide_memory", 0);
    Require(file >= 0 && ftruncate(file, static_cast<off_t>(window)) == 0);
    for (std::size_t at = 0; at != bytes; at += window)
        Require(mmap(mapping + at, window, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file,
                     0) != MAP_FAILED);
    close(file);
    Require(mmap(LastWindow(), window, PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED);
}

unsigned char* WideMemory::LastWindow() const
{
    return mapping + static_cast<std::size_t>(bytes) - window;
}

unsigned char* WideMemory::Last(std::uint64_t count) const
{
    Require(count <= bytes);
    return mapping + static_cast<std::size_t>(bytes - count);
}

void WideMemory::Clear() const
{
    Require(madvise(mapping, static_cast<std::size_t>(bytes), MADV_DONTNEED) == 0);
}

void WideMemory::FillWithNoise(std::uint32_t seed) const
{
    const auto noise = RandomBytes(2 * window, seed);
    const auto middle = noise.begin() + static_cast<std::ptrdiff_t>(window);
    std::copy(noise.begin(), middle, mapping);
    std::copy(middle, noise.end(), LastWindow());
}

void WideMemory::FillWith(unsigned char byte) const
{
    std::fill_n(mapping, window, byte);
    std::fill_n(LastWindow(), window, byte);
}

} // namespace zvk::Pelkraft::TestSupport
