#include "tools/pelkraft/raw_directory.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/file_damage.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t typeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
constexpr std::uint64_t chunkBytes = 65536;
// No program writes a directory of more tags.
constexpr std::uint64_t mostTags = 65535;

std::size_t BytesOfType(std::uint16_t type)
{
    return type < std::size(typeBytes) ? typeBytes[type] : 0;
}

} // namespace

std::uint64_t RawTag::ValueBytes() const
{
    const std::uint64_t each = BytesOfType(type);
    // A count that no file can hold, rather than a product that has lost its highest bits.
    if (each != 0 && count > std::numeric_limits<std::uint64_t>::max() / each)
        return std::numeric_limits<std::uint64_t>::max();
    return each * count;
}

RawTiff::RawTiff(const std::string& newPath, const Spool& spool)
    : path(newPath), input(newPath, FileKind::Tiff, spool)
{
    const std::string head = Read(0, 16);
    bigEndian = head.starts_with("MM");
    const std::uint64_t kind = head.size() >= 8 ? Number(head, 2, 2) : 0;
    big = kind == 43;
    if (head.size() < (big ? 16 : 8) || (!bigEndian && !head.starts_with("II")) ||
        (kind != 42 && kind != 43))
        throw Failure(ExitCode::BadInput, path, DamageWords({input.Descriptor(), Size()}));
    firstDirectory = big ? Number(head, 8, 8) : Number(head, 4, 4);
    if (firstDirectory >= Size())
        throw Failure(ExitCode::BadInput, path, DamageWords({input.Descriptor(), Size()}));
}

std::optional<std::vector<RawTag>> RawTiff::ReadDirectory(std::uint64_t offset,
                                                          std::uint64_t& next) const
{
    const std::size_t countBytes = big ? 8 : 2;
    const std::size_t entryBytes = big ? 20 : 12;
    const std::size_t placeBytes = big ? 8 : 4;
    const std::string head = Read(offset, countBytes);
    const std::uint64_t count = head.size() == countBytes ? Number(head, 0, countBytes) : 0;
    if (count == 0 || count > mostTags)
        return std::nullopt;
    const std::uint64_t size = count * entryBytes + placeBytes;
    const std::string body = Read(offset + countBytes, size);
    if (body.size() < size)
        return std::nullopt;
    std::vector<RawTag> tags;
    for (std::size_t entry = 0; entry < count * entryBytes; entry += entryBytes) {
        RawTag tag;
        tag.tag = static_cast<std::uint16_t>(Number(body, entry, 2));
        tag.type = static_cast<std::uint16_t>(Number(body, entry + 2, 2));
        tag.count = Number(body, entry + 4, placeBytes);
        const std::size_t value = entry + 4 + placeBytes;
        tag.offset = tag.ValueBytes() <= placeBytes ? offset + countBytes + value
                                                    : Number(body, value, placeBytes);
        tags.push_back(tag);
    }
    next = Number(body, count * entryBytes, placeBytes);
    return tags;
}

bool RawTiff::Holds(const RawTag& tag) const
{
    return tag.offset <= Size() && tag.ValueBytes() <= Size() - tag.offset;
}

void RawTiff::ForEachNumber(const RawTag& tag, const std::function<bool(std::uint64_t)>& take) const
{
    const std::size_t each = BytesOfType(tag.type);
    if (each == 0)
        return;
    for (std::uint64_t done = 0; done < tag.ValueBytes();) {
        const std::string chunk =
            Read(tag.offset + done, std::min(chunkBytes, tag.ValueBytes() - done));
        for (std::size_t at = 0; at + each <= chunk.size(); at += each) {
            if (!take(Number(chunk, at, each)))
                return;
        }
        if (chunk.size() < each)
            return;
        done += chunk.size();
    }
}

std::vector<std::uint64_t> RawTiff::Numbers(const RawTag& tag, std::size_t most) const
{
    std::vector<std::uint64_t> numbers;
    ForEachNumber(tag, [&](std::uint64_t number) {
        if (numbers.size() < most)
            numbers.push_back(number);
        return numbers.size() < most;
    });
    return numbers;
}

std::string RawTiff::Bytes(const RawTag& tag, std::size_t most) const
{
    return Read(tag.offset, std::min<std::uint64_t>(tag.ValueBytes(), most));
}

double RawTiff::Fraction(const RawTag& tag) const
{
    const std::string bytes = Read(tag.offset, 8);
    if (tag.type != 5 || bytes.size() < 8)
        return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(Number(bytes, 0, 4)) / static_cast<double>(Number(bytes, 4, 4));
}

std::uint64_t RawTiff::Number(const std::string& bytes, std::size_t offset, std::size_t size) const
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t place = offset + (bigEndian ? i : size - 1 - i);
        number = number << 8 | static_cast<unsigned char>(bytes[place]);
    }
    return number;
}

std::string RawTiff::Read(std::uint64_t offset, std::uint64_t size) const
{
    const std::uint64_t left = Size() - std::min(Size(), offset);
    std::string bytes(static_cast<std::size_t>(std::min(left, size)), '\0');
    std::size_t got = 0;
    if (const int error = ReadUpTo(input.Descriptor(), bytes.data(), bytes.size(), offset, got);
        error != 0)
        ThrowReadFailure(path, ErrorText(error));
    bytes.resize(got);
    return bytes;
}

} // namespace zvk::Pelkraft::Client
