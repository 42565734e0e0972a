#include "tools/pelkraft/plate_names.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/near_names.h"
#include "tools/pelkraft/system_calls.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* processInks[] = {"CYAN", "MAGENTA", "YELLOW", "BLACK"};
// File systems take no longer name.
constexpr std::size_t longestFileName = 255;

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

// The value of a hexadecimal digit, or -1.
int DigitValue(char letter)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::size_t place =
        digits.find(static_cast<char>(std::toupper(static_cast<unsigned char>(letter))));
    return place == std::string_view::npos || letter == '\0' ? -1 : static_cast<int>(place);
}

std::string Decoded(std::string_view text)
{
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? DigitValue(text[i + 1]) : -1;
        const int low = high >= 0 ? DigitValue(text[i + 2]) : -1;
        decoded += low < 0 ? text[i] : static_cast<char>(high * 16 + low);
        i += low < 0 ? 0 : 2;
    }
    return decoded;
}

void AppendEncoded(std::string& text, char letter)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(letter);
    text += '%';
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

// The parenthesis that the last letter closes, or npos.
std::size_t OpeningOf(std::string_view text)
{
    int depth = 0;
    for (std::size_t i = text.size(); i-- > 0;) {
        depth += text[i] == ')' ? 1 : text[i] == '(' ? -1 : 0;
        if (depth == 0)
            return i;
    }
    return std::string_view::npos;
}

bool IsBalanced(std::string_view name)
{
    int depth = 0;
    for (const char letter : name) {
        depth += letter == '(' ? 1 : letter == ')' ? -1 : 0;
        if (depth < 0)
            return false;
    }
    return depth == 0;
}

// Bytes that a file name can't have on some system, or that would be read as something else.
std::string Encoded(const std::string& name, PlateNaming naming)
{
    std::string special = "%/\\:*?\"<>|";
    if (naming == PlateNaming::Dot)
        special += ".()";
    else if (!IsBalanced(name))
        special += "()";
    std::string encoded;
    for (const char letter : name) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < 0x20 || byte >= 0x7F || special.find(letter) != std::string::npos)
            AppendEncoded(encoded, letter);
        else
            encoded += letter;
    }
    return encoded;
}

std::string Spelled(const std::string& encoded, PlateNaming naming)
{
    return naming == PlateNaming::Dot ? '.' + encoded + ".tif" : '(' + encoded + ").tif";
}

std::string FileName(const std::string& path)
{
    const std::u8string name = PathOf(path).filename().u8string();
    return std::string(name.begin(), name.end());
}

// The length of the ending that says that this is a picture; 0 if there is none.
std::size_t EndingOf(const std::string& name)
{
    for (const std::string_view ending : {".TIF", ".TIFF"}) {
        if (name.size() > ending.size() &&
            UpperCase(name.substr(name.size() - ending.size())) == ending)
            return ending.size();
    }
    return 0;
}

// A place among the process inks, or after them.
std::ptrdiff_t ProcessRank(const std::string& ink)
{
    return std::find(std::begin(processInks), std::end(processInks), UpperCase(ink)) -
           std::begin(processInks);
}

std::vector<std::string> SplitList(const std::string& list)
{
    std::vector<std::string> names;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        names.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

std::size_t FindInk(const std::vector<std::string>& inks, const std::string& name)
{
    const auto exact = std::find(inks.begin(), inks.end(), name);
    if (exact != inks.end())
        return static_cast<std::size_t>(exact - inks.begin());
    const auto found = std::find_if(inks.begin(), inks.end(), [&](const std::string& ink) {
        return UpperCase(ink) == UpperCase(name);
    });
    if (found != inks.end())
        return static_cast<std::size_t>(found - inks.begin());
    const std::string near = NearestName(name, inks);
    throw Failure(ExitCode::Usage, {},
                  "--order names " + Quoted(name) + ", of which there is no plate" +
                      (near.empty() ? std::string() : "; did you mean " + near + '?'));
}

} // namespace

std::optional<PlateName> ReadPlateName(const std::string& path)
{
    const std::string name = FileName(path);
    const std::size_t ending = EndingOf(name);
    if (ending == 0)
        return std::nullopt;
    const std::string_view stem = std::string_view(name).substr(0, name.size() - ending);
    const bool closed = stem.ends_with(')');
    const std::size_t open = closed ? OpeningOf(stem) : stem.rfind('.');
    if (open == std::string_view::npos)
        return std::nullopt;
    const std::string_view ink = stem.substr(open + 1, stem.size() - open - (closed ? 2 : 1));
    if (ink.empty())
        return std::nullopt;
    const std::string page(stem.substr(0, open));
    return PlateName{path.substr(0, path.size() - name.size()) + page, page, Decoded(ink)};
}

std::vector<std::string> PlatePaths(const std::string& base, const std::vector<std::string>& inks,
                                    PlateNaming naming)
{
    const std::string stem = base.substr(0, base.size() - EndingOf(FileName(base)));
    std::set<std::string> names;
    std::set<std::string> taken;
    std::vector<std::string> paths;
    for (const std::string& ink : inks) {
        if (!names.insert(ink).second)
            throw Failure(ExitCode::BadInput, {},
                          "there are two inks with the name " + Quoted(ink) +
                              ", and their plates would be one file; --inks chooses by number");
        std::string encoded = Encoded(ink, naming);
        // A system for which upper and lower case are the same sees two names all the same.
        for (std::size_t i = 0; !taken.insert(UpperCase(encoded)).second; ++i) {
            encoded.clear();
            for (std::size_t k = 0; k <= std::min(i, ink.size() - 1); ++k)
                AppendEncoded(encoded, ink[k]);
            encoded += Encoded(ink.substr(std::min(i + 1, ink.size())), naming);
        }
        paths.push_back(stem + Spelled(encoded, naming));
        if (FileName(paths.back()).size() > longestFileName)
            throw Failure(ExitCode::BadInput, {},
                          "ink " + Quoted(ink) + " would make a file name of " +
                              std::to_string(FileName(paths.back()).size()) +
                              " bytes; supported are " + std::to_string(longestFileName));
    }
    return paths;
}

std::vector<std::size_t> PlateOrder(const std::vector<std::string>& inks, const std::string& list)
{
    std::vector<std::size_t> order;
    if (!list.empty()) {
        for (const std::string& name : SplitList(list)) {
            order.push_back(FindInk(inks, name));
            if (std::count(order.begin(), order.end(), order.back()) > 1)
                throw Failure(ExitCode::Usage, {}, "--order names " + Quoted(name) + " twice");
        }
    }
    std::vector<std::size_t> rest;
    for (std::size_t ink = 0; ink < inks.size(); ++ink) {
        if (std::find(order.begin(), order.end(), ink) == order.end())
            rest.push_back(ink);
    }
    std::sort(rest.begin(), rest.end(), [&](std::size_t left, std::size_t right) {
        const auto leftRank = ProcessRank(inks[left]);
        const auto rightRank = ProcessRank(inks[right]);
        return leftRank != rightRank ? leftRank < rightRank : inks[left] < inks[right];
    });
    order.insert(order.end(), rest.begin(), rest.end());
    return order;
}

bool AreProcessInks(const std::vector<std::string>& inks)
{
    return std::equal(
        inks.begin(), inks.end(), std::begin(processInks), std::end(processInks),
        [](const std::string& ink, const char* name) { return UpperCase(ink) == name; });
}

bool NumbersBefore(const std::string& left, const std::string& right)
{
    // Digits count as one number: leading zeros away, the longer one is the greater.
    const auto takeNumber = [](std::string_view& text) {
        const std::size_t end = static_cast<std::size_t>(
            std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
        std::string_view number = text.substr(0, end);
        text.remove_prefix(end);
        number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
        return number;
    };
    std::string_view a = left;
    std::string_view b = right;
    while (!a.empty() && !b.empty()) {
        if (IsDigit(a.front()) && IsDigit(b.front())) {
            const std::string_view x = takeNumber(a);
            const std::string_view y = takeNumber(b);
            if (x.size() != y.size())
                return x.size() < y.size();
            if (x != y)
                return x < y;
            continue;
        }
        if (a.front() != b.front())
            return static_cast<unsigned char>(a.front()) < static_cast<unsigned char>(b.front());
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.empty() != b.empty() ? a.empty() : left < right;
}

} // namespace zvk::Pelkraft::Client
