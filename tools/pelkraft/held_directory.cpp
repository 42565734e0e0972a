#include "tools/pelkraft/held_directory.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint64_t stripOffsetsTag = 273;
constexpr std::uint64_t stripByteCountsTag = 279;

// Bytes of a number of the kinds SHORT, LONG and LONG8.
std::size_t BytesOfKind(std::uint64_t kind)
{
    return kind == 3 ? 2 : kind == 4 ? 4 : 8;
}

// libtiff writes new files in the machine's own order.
template <typename Word>
std::uint64_t LoadWord(const unsigned char* from)
{
    Word word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <typename Word>
void StoreWord(unsigned char* to, std::uint64_t number)
{
    const auto word = static_cast<Word>(number);
    std::memcpy(to, &word, sizeof word);
}

std::uint64_t Load(const unsigned char* from, std::size_t bytes)
{
    return bytes == 2   ? LoadWord<std::uint16_t>(from)
           : bytes == 4 ? LoadWord<std::uint32_t>(from)
                        : LoadWord<std::uint64_t>(from);
}

void Store(unsigned char* to, std::size_t bytes, std::uint64_t number)
{
    if (bytes == 2)
        StoreWord<std::uint16_t>(to, number);
    else if (bytes == 4)
        StoreWord<std::uint32_t>(to, number);
    else
        StoreWord<std::uint64_t>(to, number);
}

// In the order of their numbers: all strips of a plane before those of the next.
std::pair<std::vector<std::uint64_t>, std::vector<std::uint64_t>>
OffsetsAndSizes(const StripRun& strips, std::uint64_t offset)
{
    const std::uint32_t rows = std::max<std::uint32_t>(strips.rowsPerStrip, 1);
    const std::size_t perPlane = (std::uint64_t{strips.height} + rows - 1) / rows;
    std::vector<std::uint64_t> offsets(perPlane * strips.planes);
    std::vector<std::uint64_t> sizes(offsets.size());
    for (std::size_t strip = 0; strip < perPlane; ++strip) {
        const std::uint64_t left = strips.height - strip * rows;
        for (std::size_t plane = 0; plane < strips.planes; ++plane) {
            const std::size_t number = plane * perPlane + strip;
            offsets[number] = offset;
            sizes[number] = std::min<std::uint64_t>(rows, left) * strips.planeBytes;
            offset += sizes[number];
        }
    }
    return {std::move(offsets), std::move(sizes)};
}

} // namespace

void HeldDirectory::Start(std::uint64_t offset)
{
    directory = offset;
    if (nextOffset == 0)
        return;
    former = std::exchange(present, {offset, {}});
    // libtiff looks for the last directory, which names no next one.
    Store(&former.bytes.at(link), big ? 8 : 4, 0);
}

void HeldDirectory::Write(std::uint64_t offset, const void* bytes, std::size_t size)
{
    Piece& piece = offset >= present.start ? present : former;
    // libtiff links the first page and the one before again, which are on their way already.
    if (offset < piece.start)
        return;
    const auto place = static_cast<std::size_t>(offset - piece.start);
    if (piece.bytes.size() < place + size)
        piece.bytes.resize(place + size);
    std::memcpy(piece.bytes.data() + place, bytes, size);
}

std::size_t HeldDirectory::Read(std::uint64_t offset, void* bytes, std::size_t size) const
{
    const Piece& piece = offset >= present.start ? present : former;
    if (offset < piece.start || offset - piece.start > piece.bytes.size())
        return 0;
    const auto place = static_cast<std::size_t>(offset - piece.start);
    const std::size_t got = std::min(size, piece.bytes.size() - place);
    std::memcpy(bytes, piece.bytes.data() + place, got);
    return got;
}

void HeldDirectory::Complete(const StripRun& strips)
{
    const std::size_t countBytes = big ? 8 : 2;
    const std::size_t entryBytes = big ? 20 : 12;
    const auto start = static_cast<std::size_t>(directory - present.start);
    const auto entries = static_cast<std::size_t>(Load(&present.bytes.at(start), countBytes));
    const std::uint64_t stripStart = (present.start + present.bytes.size() + 1) & ~std::uint64_t{1};
    present.bytes.resize(static_cast<std::size_t>(stripStart - present.start));
    nextOffset = (stripStart + strips.Bytes() + 1) & ~std::uint64_t{1};

    const auto [offsets, sizes] = OffsetsAndSizes(strips, stripStart);
    std::size_t entry = start + countBytes;
    for (std::size_t i = 0; i < entries; ++i, entry += entryBytes) {
        const std::uint64_t tag = Load(&present.bytes.at(entry), 2);
        if (tag == stripOffsetsTag)
            FillIn(entry, offsets);
        else if (tag == stripByteCountsTag)
            FillIn(entry, sizes);
    }
    --pagesLeft;
    link = entry;
    Store(&present.bytes.at(link), big ? 8 : 4, pagesLeft > 0 ? nextOffset : 0);
}

void HeldDirectory::FillIn(std::size_t entry, const std::vector<std::uint64_t>& values)
{
    const std::size_t wordBytes = big ? 8 : 4;
    const std::size_t bytes = BytesOfKind(Load(&present.bytes.at(entry + 2), 2));
    // Values that fit stand in the entry itself, others where it points to.
    std::size_t place = entry + 4 + wordBytes;
    if (values.size() * bytes > wordBytes)
        place = static_cast<std::size_t>(Load(&present.bytes.at(place), wordBytes) - present.start);
    for (std::size_t i = 0; i < values.size(); ++i)
        Store(&present.bytes.at(place + i * bytes), bytes, values[i]);
}

} // namespace zvk::Pelkraft::Client
