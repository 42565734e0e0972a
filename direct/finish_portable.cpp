#include "direct/kernels.h"

#include <cstring>

namespace zvk::Pelkraft::PortableRoad {
namespace {

void Patch(unsigned char* __restrict row, std::size_t bytes,
           const unsigned char* __restrict pattern, std::size_t period)
{
    for (std::size_t first = 0; first < bytes; first += period) {
        const std::size_t count = period < bytes - first ? period : bytes - first;
        for (std::size_t i = 0; i < count; ++i)
            row[first + i] = static_cast<unsigned char>(row[first + i] ^ pattern[i]);
    }
}

void Store(const unsigned char* source, unsigned char* destination, std::size_t bytes)
{
    std::memcpy(destination, source, bytes);
}

void Fence() {}

constexpr FinishKernels kernels = {Patch, Store, Fence};

} // namespace

const FinishKernels& GetFinishKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::PortableRoad
