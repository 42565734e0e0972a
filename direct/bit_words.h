#pragma once

#include "common/inlining.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Packed samples in words of 64 bits. All of it has internal linkage on purpose: files built with
// vector flags include it too.
namespace zvk::Pelkraft {
namespace {

inline std::uint64_t SwapBytes(std::uint64_t v)
{
    v = (v >> 8 & 0x00ff00ff00ff00ffu) | (v & 0x00ff00ff00ff00ffu) << 8;
    v = (v >> 16 & 0x0000ffff0000ffffu) | (v & 0x0000ffff0000ffffu) << 16;
    return v >> 32 | v << 32;
}

// The first byte becomes the lowest.
inline std::uint64_t LoadLittle(const unsigned char* bytes)
{
    std::uint64_t v;
    std::memcpy(&v, bytes, sizeof v);
    return std::endian::native == std::endian::little ? v : SwapBytes(v);
}

inline void StoreLittle(unsigned char* bytes, std::uint64_t v)
{
    if (std::endian::native != std::endian::little)
        v = SwapBytes(v);
    std::memcpy(bytes, &v, sizeof v);
}

// The last bytes of a row go in pieces of fixed size: compilers make whole vector loops of a loop
// over bytes, which takes longer than the row.
template <typename Piece>
std::uint64_t LoadPiece(const unsigned char*& bytes, unsigned& place)
{
    Piece piece;
    std::memcpy(&piece, bytes, sizeof piece);
    std::uint64_t v = piece;
    if (std::endian::native != std::endian::little)
        v = SwapBytes(v) >> (64 - 8 * sizeof piece);
    v <<= place;
    bytes += sizeof piece;
    place += 8 * sizeof piece;
    return v;
}

// Loads at most 8 bytes, with zeros after them.
inline std::uint64_t LoadFewLittle(const unsigned char* bytes, std::size_t count)
{
    if (count >= 8)
        return LoadLittle(bytes);
    unsigned place = 0;
    std::uint64_t v = 0;
    if ((count & 4) != 0)
        v |= LoadPiece<std::uint32_t>(bytes, place);
    if ((count & 2) != 0)
        v |= LoadPiece<std::uint16_t>(bytes, place);
    if ((count & 1) != 0)
        v |= LoadPiece<std::uint8_t>(bytes, place);
    return v;
}

template <typename Piece>
void StorePiece(unsigned char*& bytes, std::uint64_t& v)
{
    auto piece = static_cast<Piece>(v);
    if (std::endian::native != std::endian::little)
        piece = static_cast<Piece>(SwapBytes(v) >> (64 - 8 * sizeof piece));
    std::memcpy(bytes, &piece, sizeof piece);
    bytes += sizeof piece;
    v >>= 8 * sizeof piece;
}

inline void StoreFewLittle(unsigned char* bytes, std::size_t count, std::uint64_t v)
{
    if (count >= 8)
        return StoreLittle(bytes, v);
    if ((count & 4) != 0)
        StorePiece<std::uint32_t>(bytes, v);
    if ((count & 2) != 0)
        StorePiece<std::uint16_t>(bytes, v);
    if ((count & 1) != 0)
        StorePiece<std::uint8_t>(bytes, v);
}

// Eight samples, the first one in the lowest byte, to `depth` bytes, the first one lowest.
template <int depth>
std::uint64_t PackWord(std::uint64_t samples)
{
    if constexpr (depth == 1) {
        // The product moves bit 0 of byte k to bit 63 - k; no two of its terms share a bit.
        return (samples & 0x0101010101010101u) * 0x8040201008040201u >> 56;
    } else {
        // It moves sample k of each half to bits 30 - 2k of that half; again none share a bit.
        const std::uint64_t v = (samples & 0x0303030303030303u) * 0x40100401u;
        return (v >> 24 & 0xff) | (v >> 48 & 0xff00);
    }
}

// The way back from PackWord.
template <int depth>
std::uint64_t UnpackWord(std::uint64_t packed)
{
    if constexpr (depth == 1) {
        // Not by a product and a carry: bits of no sample would make the others look undefined.
        const std::uint64_t halves = (packed >> 4 & 0x0f) | (packed & 0x0f) << 32;
        const std::uint64_t pairs =
            (halves >> 2 & 0x0000000300000003u) | (halves & 0x0000000300000003u) << 16;
        return (pairs >> 1 & 0x0001000100010001u) | (pairs & 0x0001000100010001u) << 8;
    } else {
        const std::uint64_t bytes = (packed & 0xff) | (packed & 0xff00) << 24;
        const std::uint64_t pairs =
            (bytes >> 4 & 0x0000000f0000000fu) | (bytes & 0x0000000f0000000fu) << 16;
        return (pairs >> 2 & 0x0003000300030003u) | (pairs & 0x0003000300030003u) << 8;
    }
}

// Turns the order of the samples inside each byte round.
template <int depth>
std::uint64_t TurnBytes(std::uint64_t v)
{
    if constexpr (depth == 1)
        v = (v >> 1 & 0x5555555555555555u) | (v & 0x5555555555555555u) << 1;
    v = (v >> 2 & 0x3333333333333333u) | (v & 0x3333333333333333u) << 2;
    return (v >> 4 & 0x0f0f0f0f0f0f0f0fu) | (v & 0x0f0f0f0f0f0f0f0fu) << 4;
}

// Loads the 64 bits from bit `start` on, the first one highest.
inline std::uint64_t LoadBits(const unsigned char* plane, std::size_t start)
{
    const unsigned char* from = plane + start / 8;
    const std::uint64_t v = SwapBytes(LoadLittle(from));
    const unsigned shift = start % 8;
    // The ninth byte is read only where some of these bits lie in it.
    return shift == 0 ? v : v << shift | from[8] >> (8 - shift);
}

// Loads 1 to 63 bits in the same way; after them stand the bits that their last byte has there.
inline std::uint64_t LoadFewBits(const unsigned char* plane, std::size_t start, std::size_t count)
{
    const unsigned char* from = plane + start / 8;
    const unsigned shift = start % 8;
    const std::size_t bytes = (shift + count + 7) / 8;
    std::uint64_t v = SwapBytes(LoadFewLittle(from, bytes < 8 ? bytes : 8)) << shift;
    if (bytes > 8)
        v |= from[8] >> (8 - shift);
    return v;
}

// The last 8 bytes of a mirror of at least 64 bits before bit `end`.
template <int depth>
void MirrorLastBits(const unsigned char* plane, std::size_t end, unsigned char* destination,
                    std::size_t bits)
{
    const std::size_t bytes = (bits + 7) / 8;
    const std::uint64_t v = LoadBits(plane, end - bits);
    StoreLittle(destination + bytes - 8, TurnBytes<depth>(v >> (8 * bytes - bits)));
}

// A function of its own, as the vector kernels go on to it and should not pay for its frame.
template <int depth>
PELKRAFT_NEVER_INLINE void MirrorWords(const unsigned char* plane, std::size_t end,
                                       unsigned char* destination, std::size_t bits)
{
    if (bits == 0)
        return;
    if (bits < 64) {
        const auto v = LoadFewBits(plane, end - bits, bits);
        StoreFewLittle(destination, (bits + 7) / 8, TurnBytes<depth>(v >> (64 - bits)));
        return;
    }
    std::size_t done = 0;
    for (; done + 64 <= bits; done += 64)
        StoreLittle(destination + done / 8, TurnBytes<depth>(LoadBits(plane, end - done - 64)));
    if (done < bits)
        MirrorLastBits<depth>(plane, end, destination, bits);
}

} // namespace
} // namespace zvk::Pelkraft
