#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace zvk::Pelkraft::Benchmarks {

// One combination's tables in 64 bytes, of which the bare loop reads the last 16.
struct alignas(64) BareTable
{
    unsigned char others[48];
    unsigned char values[16];
};

struct Row
{
    const unsigned char* source;
    unsigned char* destination;
    std::size_t pixels;
    std::size_t inColors;
    std::size_t outInks;
};

// The least that a pixel can cost with a drawn table: one load, two byte shuffles, one store.
// It reads and writes up to 16 bytes after the rows.
void ApplyBare(const Row& row, const BareTable* const* field, const unsigned char* lanes);

// The loop that one would write by hand: values by combination, ink and step, and a draw for each
// pixel.
void ApplyPlain(const Row& row, const std::vector<unsigned char>& values, std::size_t combinations,
                std::mt19937& random);

} // namespace zvk::Pelkraft::Benchmarks
