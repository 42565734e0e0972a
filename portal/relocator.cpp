#include "portal/relocator.h"

#include "portal/operation_buffers.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedRelocation =
    "zvk::Pelkraft::ConversionPortal::Relocator unsupported bit depth for relocation";

template <int bits>
unsigned char TurnSamplesRound(unsigned byte)
{
    unsigned turned = (byte >> 4 | byte << 4) & 0xFF;
    turned = (turned >> 2 & 0x33) | (turned << 2 & 0xCC);
    if constexpr (bits == 1)
        turned = (turned >> 1 & 0x55) | (turned << 1 & 0xAA);
    return static_cast<unsigned char>(turned);
}

template <int bits>
void TurnRowRound(unsigned char* target, const PackedRow& row)
{
    const unsigned char* source = row.source;
    if (row.lastByteBits == 0) {
        for (std::int64_t i = 0; i < row.bytes; ++i)
            target[i] = TurnSamplesRound<bits>(source[i]);
        return;
    }
    const auto up = static_cast<unsigned>(row.lastByteBits);
    const unsigned down = 8 - up;
    if (row.bytes > 0)
        target[0] = TurnSamplesRound<bits>(static_cast<unsigned>(source[0]) >> down);
    for (std::int64_t i = 1; i < row.bytes; ++i) {
        const unsigned pair = static_cast<unsigned>(source[i - 1]) << 8 | source[i];
        target[i] = TurnSamplesRound<bits>(pair >> down & 0xFF);
    }
}

} // namespace

void Relocator(unsigned char* target, const PackedRow& row)
{
    if (row.bits != 1 && row.bits != 2)
        throw unsupportedRelocation;
    if (row.lastByteBits > 7)
        return;
    if (row.bits == 1)
        TurnRowRound<1>(target, row);
    else
        TurnRowRound<2>(target, row);
}

const unsigned char* RelocateChunk(const unsigned char* row, ChunkHeader* chunk)
{
    if (reinterpret_cast<std::uintptr_t>(row) % unitBytes == 0)
        return row;
    const std::uint64_t bytes = chunk->pixelBytes * slotsPerChunk;
    unsigned char* target = GetSlots(chunk) + SlotAreaBytes(chunk->pixelBytes) - bytes;
    std::memcpy(target, row, static_cast<std::size_t>(bytes));
    return target;
}

} // namespace zvk::Pelkraft
