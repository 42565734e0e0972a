#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

struct FinishKernels;

// The bits of a target that are turned over when all else is done: those of inverted channels, and
// those that make constants of zeros. It points to memory of others.
struct RowPatch
{
    // Interleaved pixels, repeated after so many bytes, with patternBytes more after them; or null.
    const unsigned char* pixels;
    std::size_t period;
    // For each plane 16 bits of it, or null.
    const std::uint16_t* planes;
    // All planes share the first one's bits.
    bool uniform;
    std::uint8_t bits;
    // For people alone.
    bool inverts;
    bool setsConstants;
};

// The first byte of so many pixels, and of the first of so many planes.
struct PatchedRow
{
    unsigned char* bytes;
    std::ptrdiff_t planeStep;
    std::size_t firstChannel;
    std::size_t channels;
    std::size_t pixels;
};

// Interleaved pixels are patched with all their channels. The unused bits of packed planes that are
// turned over become 0.
void PatchRow(const FinishKernels& kernels, const RowPatch& patch, const PatchedRow& row);

// Sets the bits after the last pixel, in its byte of a packed plane, to 0.
void ClearUnusedBits(unsigned char* plane, std::size_t pixels, std::uint8_t bits);

} // namespace zvk::Pelkraft
