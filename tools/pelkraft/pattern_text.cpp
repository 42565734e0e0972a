#include "tools/pelkraft/pattern_text.h"

#include <string_view>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// By its mark, or by the zero bytes among its first letters.
std::string FindWideCode(std::string_view text)
{
    using namespace std::string_view_literals;
    for (const std::string_view mark : {"\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv})
        if (text.starts_with(mark))
            return "UTF-32";
    for (const std::string_view mark : {"\xFF\xFE"sv, "\xFE\xFF"sv})
        if (text.starts_with(mark))
            return "UTF-16";
    if (text.size() < 4)
        return {};
    std::string zeros;
    for (const char byte : text.substr(0, 4))
        zeros += byte == '\0' ? '0' : 'x';
    if (zeros == "x0x0" || zeros == "0x0x")
        return "UTF-16";
    return zeros == "x000" || zeros == "000x" ? "UTF-32" : "";
}

} // namespace

PatternText::PatternText(std::string newPath, const std::string& newBytes)
    : path(std::move(newPath)), bytes(newBytes.substr(0, newBytes.find('\0'))),
      endsAtZero(bytes.size() < newBytes.size()), wideCode(FindWideCode(newBytes)), lines(bytes)
{}

} // namespace zvk::Pelkraft::Client
