#include "tools/pelkraft/file_damage.h"

#include "tools/pelkraft/file_calls.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

using std::string_view_literals::operator""sv;

constexpr const char* wanted = "; supported are TIFF and BigTIFF";
constexpr const char* anew = "; get a whole copy of it";
// A directory with more entries is looked at no further.
constexpr std::uint64_t mostEntries = 4096;

struct Magic
{
    std::string_view bytes;
    // cppcheck-suppress unusedStructMember // two searches use it
    const char* name;
};

constexpr Magic others[] = {{"\x89PNG"sv, "a PNG file"},
                            {"\xFF\xD8\xFF"sv, "a JPEG file"},
                            {"GIF8"sv, "a GIF file"},
                            {"%PDF"sv, "a PDF file"},
                            {"%!PS"sv, "a PostScript file"},
                            {"8BPS"sv, "a file of layers"},
                            {"BM"sv, "a BMP file"},
                            {"RIFF"sv, "a RIFF file, such as WebP"},
                            {"PK\3\4"sv, "a ZIP archive"},
                            {"\x1F\x8B"sv, "a gzip archive"},
                            {"DotWeavePattern"sv, "a pattern text"}};

constexpr Magic tiffs[] = {
    {"II*\0"sv, "little"}, {"MM\0*"sv, "big"}, {"II+\0"sv, "little"}, {"MM\0+"sv, "big"}};

std::string BytesAt(const OddFile& file, std::uint64_t offset, std::size_t count)
{
    std::string bytes(count, '\0');
    std::size_t got = 0;
    if (ReadUpTo(file.descriptor, bytes.data(), count, offset, got) != 0)
        got = 0;
    bytes.resize(got);
    return bytes;
}

std::string EndWords(const OddFile& file)
{
    return ", and the file ends after " + std::to_string(file.size) + anew;
}

// The header says this of the form of all that follows.
struct TiffForm
{
    bool big = false;
    bool bigEndian = false;

    std::uint64_t HeaderBytes() const { return big ? 16 : 8; }
    std::size_t CountBytes() const { return big ? 8 : 2; }
    std::size_t EntryBytes() const { return big ? 20 : 12; }
    std::size_t PlaceBytes() const { return big ? 8 : 4; }

    std::uint64_t Number(std::string_view bytes) const
    {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::size_t at = bigEndian ? i : bytes.size() - 1 - i;
            number = number << 8 | static_cast<unsigned char>(bytes[at]);
        }
        return number;
    }
};

std::optional<TiffForm> FormOf(std::string_view start)
{
    const auto* const found =
        std::find_if(std::begin(tiffs), std::end(tiffs),
                     [&](const Magic& magic) { return start.starts_with(magic.bytes); });
    if (found == std::end(tiffs))
        return std::nullopt;
    return TiffForm{found - std::begin(tiffs) > 1, found->name == "big"sv};
}

std::string NoTiffWords(std::string_view start)
{
    const auto* const other =
        std::find_if(std::begin(others), std::end(others),
                     [&](const Magic& magic) { return start.starts_with(magic.bytes); });
    if (other != std::end(others))
        return std::string("is not a TIFF file but ") + other->name + wanted;
    std::string words = "is not a TIFF file, since it begins with the bytes";
    for (const char byte : start.substr(0, 4)) {
        char digits[8];
        std::snprintf(digits, sizeof digits, " %02X", static_cast<unsigned char>(byte));
        words += digits;
    }
    return words + " instead of 49 49 or 4D 4D" + wanted;
}

// Bytes of a value of each type, from 0 on; 0 for a type that there is not.
constexpr std::uint64_t typeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};

// The end of an entry's values that have no room within it; 0 if they have.
std::uint64_t EndOfValues(const TiffForm& form, std::string_view entry)
{
    const std::uint64_t type = form.Number(entry.substr(2, 2));
    const std::uint64_t bytes = type < std::size(typeBytes) ? typeBytes[type] : 0;
    const std::uint64_t count = form.Number(entry.substr(4, form.PlaceBytes()));
    // A size that no file can hold is nonsense, and no sign of a file that was cut.
    if (bytes == 0 || count <= form.PlaceBytes() / bytes || count > std::uint64_t{1} << 40)
        return 0;
    const std::uint64_t place = form.Number(entry.substr(4 + form.PlaceBytes(), form.PlaceBytes()));
    return place > std::uint64_t{1} << 60 ? 0 : place + count * bytes;
}

std::string DirectoryWords(const OddFile& file, const TiffForm& form, std::uint64_t offset,
                           const std::string& owner)
{
    const std::string start = "is truncated: the directory of " + owner;
    const std::string countBytes = BytesAt(file, offset, form.CountBytes());
    if (offset >= file.size || countBytes.size() < form.CountBytes())
        return start + " begins at byte " + std::to_string(offset) + EndWords(file);
    const std::uint64_t count = form.Number(countBytes);
    const std::uint64_t first = offset + form.CountBytes();
    if (count > (file.size - first) / form.EntryBytes())
        return start + " has " + std::to_string(count) + " entries from byte " +
               std::to_string(first) + " on" + EndWords(file);
    for (std::uint64_t i = 0; i < std::min(count, mostEntries); ++i) {
        const std::string entry = BytesAt(file, first + i * form.EntryBytes(), form.EntryBytes());
        if (entry.size() < form.EntryBytes())
            return {};
        if (const std::uint64_t end = EndOfValues(form, entry); end > file.size)
            return "is truncated: the values of tag " +
                   std::to_string(form.Number(std::string_view(entry).substr(0, 2))) + " of " +
                   owner + " reach up to byte " + std::to_string(end) + EndWords(file);
    }
    return {};
}

} // namespace

std::string DamageWords(const OddFile& file)
{
    if (file.size == 0)
        return std::string("is not a TIFF file, since it is empty") + wanted;
    const std::string start = BytesAt(file, 0, 16);
    const std::optional<TiffForm> form = FormOf(start);
    if (!form)
        return NoTiffWords(start);
    if (start.size() < form->HeaderBytes())
        return "is truncated: a header takes " + std::to_string(form->HeaderBytes()) + " bytes" +
               EndWords(file);
    const std::uint64_t offset =
        form->Number(std::string_view(start).substr(form->big ? 8 : 4, form->PlaceBytes()));
    return DirectoryWords(file, *form, offset, "page 1");
}

std::string NextPageDamageWords(const OddFile& file, std::uint64_t offset, int page)
{
    const std::optional<TiffForm> form = FormOf(BytesAt(file, 0, 4));
    if (!form)
        return {};
    const std::string countBytes = BytesAt(file, offset, form->CountBytes());
    const std::uint64_t count = form->Number(countBytes);
    if (count > file.size / form->EntryBytes())
        return {};
    const std::string next =
        BytesAt(file, offset + form->CountBytes() + count * form->EntryBytes(), form->PlaceBytes());
    if (next.size() < form->PlaceBytes())
        return {};
    return DirectoryWords(file, *form, form->Number(next), "page " + std::to_string(page));
}

} // namespace zvk::Pelkraft::Client
