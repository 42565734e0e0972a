#include "tools/pelkraft/shown_text.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

// From here on there are scripts whose letters take two columns.
constexpr char32_t firstWide = 0x1100;
constexpr std::size_t tabColumns = 8;

// A character, and the bytes that it takes; none where there is no UTF-8.
struct Character
{
    char32_t code = 0;
    std::size_t bytes = 0;
};

Character CharacterOf(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t bytes = lead < 0xC2   ? 0
                              : lead < 0xE0 ? 2
                              : lead < 0xF0 ? 3
                              : lead < 0xF5 ? 4
                                            : 0;
    if (bytes == 0 || text.size() < bytes)
        return {};
    char32_t code = lead & (0x7FU >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        if (!IsContinuation(text[i]))
            return {};
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    const bool shorter = (bytes == 3 && code < 0x800) || (bytes == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    return shorter || surrogate || code > 0x10FFFF ? Character() : Character{code, bytes};
}

bool ActsOnATerminal(char32_t code)
{
    const bool isControl = (code < 0x20 && code != '\t') || (code >= 0x7F && code < 0xA0);
    const bool isLineEnd = code == 0x2028 || code == 0x2029;
    const bool turnsText = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return isControl || isLineEnd || turnsText;
}

} // namespace

std::string Shown(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const Character character = CharacterOf(text);
        const bool stays = character.bytes != 0 && !ActsOnATerminal(character.code);
        if (stays)
            shown += text.substr(0, character.bytes);
        else
            shown.append(std::max<std::size_t>(character.bytes, 1), '?');
        text.remove_prefix(std::max<std::size_t>(character.bytes, 1));
    }
    return shown;
}

std::size_t ShownColumns(std::string_view text)
{
    std::size_t columns = 0;
    while (!text.empty()) {
        const Character character = CharacterOf(text);
        columns += character.code == '\t' ? tabColumns : character.code < firstWide ? 1 : 2;
        text.remove_prefix(std::max<std::size_t>(character.bytes, 1));
    }
    return columns;
}

std::string PaddedRight(std::string text, std::size_t columns)
{
    const std::size_t taken = ShownColumns(text);
    return text.append(taken < columns ? columns - taken : 0, ' ');
}

std::string PaddedLeft(const std::string& text, std::size_t columns)
{
    const std::size_t taken = ShownColumns(text);
    return std::string(taken < columns ? columns - taken : 0, ' ') + text;
}

std::string LastColumns(const std::string& text, std::size_t columns)
{
    std::string_view rest = text;
    while (ShownColumns(rest) > columns)
        rest.remove_prefix(std::max<std::size_t>(CharacterOf(rest).bytes, 1));
    return std::string(rest);
}

} // namespace zvk::Pelkraft::Client
