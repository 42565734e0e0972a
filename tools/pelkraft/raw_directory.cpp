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

std::string FileBytes::Read(std::uint64_t offset, std::uint64_t count) const
{
    const std::uint64_t left = size - std::min(size, offset);
    std::string bytes(static_cast<std::size_t>(std::min(left, count)), '\0');
    std::size_t got = 0;
    error = ReadUpTo(descriptor, bytes.data(), bytes.size(), offset, got);
    bytes.resize(error == 0 ? got : 0);
    return bytes;
}

std::uint64_t TiffForm::Number(std::string_view bytes) const
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t at = bigEndian ? i : bytes.size() - 1 - i;
        number = number << 8 | static_cast<unsigned char>(bytes[at]);
    }
    return number;
}

std::uint64_t TiffForm::FirstDirectory(std::string_view header) const
{
    return Number(header.substr(HeaderBytes() - PlaceBytes(), PlaceBytes()));
}

std::optional<TiffForm> FormOf(std::string_view start)
{
    for (const bool big : {false, true}) {
        for (const bool bigEndian : {false, true}) {
            const TiffForm form = {big, bigEndian};
            if (start.starts_with(bigEndian ? "MM" : "II") && start.size() >= 4 &&
                form.Number(start.substr(2, 2)) == (big ? 43U : 42U))
                return form;
        }
    }
    return std::nullopt;
}

std::optional<RawDirectory> ReadDirectory(const FileBytes& file, const TiffForm& form,
                                          std::uint64_t offset)
{
    const std::string head = file.Read(offset, form.CountBytes());
    if (head.size() < form.CountBytes())
        return std::nullopt;
    RawDirectory directory;
    directory.count = form.Number(head);
    if (directory.count > mostTags)
        return directory;
    const std::uint64_t first = offset + form.CountBytes();
    const std::uint64_t end = directory.count * form.EntryBytes();
    const std::string body = file.Read(first, end + form.PlaceBytes());
    if (body.size() < end)
        return directory;
    const std::string_view view = body;
    const std::size_t place = form.PlaceBytes();
    for (std::size_t entry = 0; entry < end; entry += form.EntryBytes()) {
        RawTag tag;
        tag.tag = static_cast<std::uint16_t>(form.Number(view.substr(entry, 2)));
        tag.type = static_cast<std::uint16_t>(form.Number(view.substr(entry + 2, 2)));
        tag.count = form.Number(view.substr(entry + 4, place));
        const std::size_t value = entry + 4 + place;
        tag.offset =
            tag.ValueBytes() <= place ? first + value : form.Number(view.substr(value, place));
        directory.tags.push_back(tag);
    }
    directory.whole = body.size() == end + place;
    if (directory.whole)
        directory.next = form.Number(view.substr(static_cast<std::size_t>(end)));
    return directory;
}

RawTiff::RawTiff(const std::string& newPath, const Spool& spool)
    : path(newPath),
      input(newPath, FileKind::Tiff, spool), bytes{input.Descriptor(), input.Size(), 0}
{
    const std::string head = Read(0, 16);
    const std::optional<TiffForm> found = FormOf(head);
    if (found && head.size() >= found->HeaderBytes()) {
        form = *found;
        firstDirectory = form.FirstDirectory(head);
    }
    if (firstDirectory == 0 || firstDirectory >= Size())
        throw Failure(ExitCode::BadInput, path, DamageWords(bytes));
}

std::optional<RawDirectory> RawTiff::DirectoryAt(std::uint64_t offset) const
{
    auto directory = ReadDirectory(bytes, form, offset);
    RequireSound();
    if (!directory || !directory->whole || directory->count == 0)
        return std::nullopt;
    return directory;
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
            if (!take(form.Number(std::string_view(chunk).substr(at, each))))
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
    const std::string both = Read(tag.offset, 8);
    if (tag.type != 5 || both.size() < 8)
        return std::numeric_limits<double>::quiet_NaN();
    const std::string_view view = both;
    return static_cast<double>(form.Number(view.substr(0, 4))) /
           static_cast<double>(form.Number(view.substr(4)));
}

std::string RawTiff::Read(std::uint64_t offset, std::uint64_t count) const
{
    std::string read = bytes.Read(offset, count);
    RequireSound();
    return read;
}

void RawTiff::RequireSound() const
{
    if (bytes.error != 0)
        ThrowReadFailure(path, ErrorText(bytes.error));
}

} // namespace zvk::Pelkraft::Client
