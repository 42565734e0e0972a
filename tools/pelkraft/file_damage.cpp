#include "tools/pelkraft/file_damage.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

using namespace std::string_view_literals;

constexpr const char* wanted = "; supported are TIFF and BigTIFF";
constexpr const char* anew = "; get a whole copy of it";

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

std::string EndWords(const FileBytes& file)
{
    return ", and the file ends after " + std::to_string(file.size) + anew;
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

// True where the values of a tag have been cut off. A size that no file can hold is nonsense, and
// no sign of that.
bool IsCut(const RawTag& tag, const FileBytes& file)
{
    return tag.count <= std::uint64_t{1} << 40 && tag.offset <= std::uint64_t{1} << 60 &&
           tag.ValueBytes() != 0 && tag.offset + tag.ValueBytes() > file.size;
}

std::string DirectoryWords(const FileBytes& file, const TiffForm& form, std::uint64_t offset,
                           const std::string& owner)
{
    const std::string start = "is truncated: the directory of " + owner;
    const std::optional<RawDirectory> directory = ReadDirectory(file, form, offset);
    if (!directory)
        return start + " begins at byte " + std::to_string(offset) + EndWords(file);
    if (directory->count == 0)
        return "is damaged: the directory of " + owner + ", at byte " + std::to_string(offset) +
               ", has no entries" + anew;
    const std::uint64_t first = offset + form.CountBytes();
    if (directory->count > (file.size - first) / form.EntryBytes())
        return start + " has " + std::to_string(directory->count) + " entries from byte " +
               std::to_string(first) + " on" + EndWords(file);
    const auto cut = std::find_if(directory->tags.begin(), directory->tags.end(),
                                  [&](const RawTag& tag) { return IsCut(tag, file); });
    if (cut == directory->tags.end())
        return {};
    return "is truncated: the values of tag " + std::to_string(cut->tag) + " of " + owner +
           " reach up to byte " + std::to_string(cut->offset + cut->ValueBytes()) + EndWords(file);
}

} // namespace

std::string DamageWords(const FileBytes& file)
{
    if (file.size == 0)
        return std::string("is not a TIFF file, since it is empty") + wanted;
    const std::string start = file.Read(0, 16);
    std::optional<TiffForm> form = FormOf(start);
    // Too short to tell, and it could be one.
    for (const std::string_view magic : {"II*"sv, "MM\0"sv, "II+"sv}) {
        if (!form && magic.starts_with(start))
            form = TiffForm{magic.back() == '+', false};
    }
    if (!form)
        return NoTiffWords(start);
    if (start.size() < form->HeaderBytes())
        return "is truncated: a header takes " + std::to_string(form->HeaderBytes()) + " bytes" +
               EndWords(file);
    const std::uint64_t offset = form->FirstDirectory(start);
    if (offset == 0)
        return std::string("is damaged: its header names no directory, so that it has no page") +
               anew;
    return DirectoryWords(file, *form, offset, "page 1");
}

std::string NextPageDamageWords(const FileBytes& file, std::uint64_t offset, int page)
{
    const std::optional<TiffForm> form = FormOf(file.Read(0, 4));
    const auto directory = form ? ReadDirectory(file, *form, offset) : std::nullopt;
    if (!directory || !directory->whole)
        return {};
    return DirectoryWords(file, *form, directory->next, "page " + std::to_string(page));
}

} // namespace zvk::Pelkraft::Client
