#pragma once

#include "common/road.h"

#include <cstddef>

namespace zvk::Pelkraft {

// A part of a row, and the mask's row for it. No address is aligned.
struct DitherRow
{
    // Samples of 1 or 2 bytes, and a step of 1 byte for each. They may begin at the same address.
    const unsigned char* source;
    unsigned char* target;
    std::size_t samples;
    // The mask's row for interleaved samples: `period` of them, and spareBytes of the next period.
    // They are as wide as those of the source, the first of which meets number `phase`.
    std::size_t period;
    std::size_t phase;
    // Ones where a sample is reversed.
    const unsigned char* flips;
    // The first of the planes. A sample reaches so many steps as it exceeds limits.
    const unsigned char* limits;
    std::size_t planeBytes;
    int planes;
};

// Bytes after a period that a kernel may read.
inline constexpr std::size_t spareBytes = 128;

using DitherKernel = void (*)(const DitherRow& row);

// By the bytes of a sample.
struct DitherKernels
{
    DitherKernel bytes;
    DitherKernel words;
};

namespace PortableRoad {
const DitherKernels& GetDitherKernels();
}
namespace VectorRoad {
const DitherKernels& GetDitherKernels();
}
namespace Avx2Road {
const DitherKernels& GetDitherKernels();
}
namespace Avx512Road {
const DitherKernels& GetDitherKernels();
}

const DitherKernels& DitherKernelsOf(Road road);

} // namespace zvk::Pelkraft
