#include "tools/pelkraft/profile_header.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t headerBytes = 128;
constexpr std::size_t entryBytes = 12;
// Profiles have some dozens of tags.
constexpr std::uint32_t mostTags = 1000;
constexpr std::size_t longestDescription = 200;

std::uint32_t ByteAt(std::string_view bytes, std::size_t offset)
{
    return offset < bytes.size() ? static_cast<unsigned char>(bytes[offset]) : 0;
}

// Numbers have their highest byte first; those beyond the end are 0.
std::uint32_t NumberAt(std::string_view bytes, std::size_t offset)
{
    return ByteAt(bytes, offset) << 24 | ByteAt(bytes, offset + 1) << 16 |
           ByteAt(bytes, offset + 2) << 8 | ByteAt(bytes, offset + 3);
}

std::string_view PartOf(std::string_view bytes, std::size_t offset, std::size_t size)
{
    return offset < bytes.size() ? bytes.substr(offset, size) : std::string_view();
}

std::string FourLetters(std::string_view bytes, std::size_t offset)
{
    std::string letters(PartOf(bytes, offset, 4));
    while (!letters.empty() && (letters.back() == ' ' || letters.back() == '\0'))
        letters.pop_back();
    return letters;
}

int ChannelsOf(const std::string& space)
{
    constexpr std::pair<const char*, int> known[] = {
        {"GRAY", 1}, {"RGB", 3}, {"CMYK", 4}, {"Lab", 3}, {"XYZ", 3}, {"CMY", 3},
        {"YCbr", 3}, {"Luv", 3}, {"Yxy", 3},  {"HSV", 3}, {"HLS", 3}};
    for (const auto& [name, channels] : known) {
        if (space == name)
            return channels;
    }
    // "2CLR" to "FCLR"
    if (space.size() != 4 || space.substr(1) != "CLR")
        return 0;
    const char digit = space[0];
    if (digit >= '1' && digit <= '9')
        return digit - '0';
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : 0;
}

void AppendUtf8(std::string& text, std::uint32_t code)
{
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Two bytes a letter; halves of letters beyond 16 bits become question marks.
std::string WideText(std::string_view bytes)
{
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const std::uint32_t code = ByteAt(bytes, i) << 8 | ByteAt(bytes, i + 1);
        if (code == 0)
            break;
        AppendUtf8(text, code >= 0xD800 && code < 0xE000 ? '?' : code);
    }
    return text;
}

std::string Description(std::string_view tag)
{
    const std::string kind = FourLetters(tag, 0);
    if (kind == "desc") {
        const std::string_view text =
            PartOf(tag, 12, std::min<std::size_t>(NumberAt(tag, 8), longestDescription));
        return std::string(text.substr(0, text.find('\0')));
    }
    // The first of the languages.
    if (kind == "mluc" && NumberAt(tag, 8) > 0)
        return WideText(PartOf(tag, NumberAt(tag, 24),
                               std::min<std::size_t>(NumberAt(tag, 20), 2 * longestDescription)));
    return {};
}

std::string FindDescription(std::string_view bytes)
{
    const std::uint32_t tags = std::min(NumberAt(bytes, headerBytes), mostTags);
    for (std::uint32_t tag = 0; tag < tags; ++tag) {
        const std::size_t entry = headerBytes + 4 + tag * entryBytes;
        if (FourLetters(bytes, entry) == "desc")
            return Description(
                PartOf(bytes, NumberAt(bytes, entry + 4), NumberAt(bytes, entry + 8)));
    }
    return {};
}

} // namespace

ProfileHeader ReadProfileHeader(std::string_view bytes)
{
    ProfileHeader header;
    header.presentBytes = bytes.size();
    if (bytes.size() < headerBytes || bytes.substr(36, 4) != "acsp")
        return header;
    header.sound = true;
    header.declaredBytes = NumberAt(bytes, 0);
    header.version = std::to_string(ByteAt(bytes, 8)) + '.' + std::to_string(ByteAt(bytes, 9) >> 4);
    header.profileClass = FourLetters(bytes, 12);
    header.colourSpace = FourLetters(bytes, 16);
    header.description = FindDescription(bytes);
    header.channels = ChannelsOf(header.colourSpace);
    return header;
}

} // namespace zvk::Pelkraft::Client
