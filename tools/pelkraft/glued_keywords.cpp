#include "tools/pelkraft/glued_keywords.h"

#include "pattern/pattern_reader.h"
#include "pattern/pattern_words.h"
#include "tools/pelkraft/near_names.h"
#include "tools/pelkraft/pattern_outline.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
// A file that is no pattern has words of any length, and no author glues so many.
constexpr std::size_t longestWord = 256;
constexpr std::size_t mostParted = 10000;
constexpr std::string_view versionKeyword = "VERSION";
// No name looks like these. A longer one stands ahead of one that it begins with.
constexpr std::string_view plainKeywords[] = {"BEGIN_OUT_INKS", "END_OUT_INKS",   "BEGIN_IN_COLORS",
                                              "END_IN_COLORS",  "BEGIN_IN_COLOR", "END_IN_COLOR",
                                              "BEGIN_INKS",     "END_INKS",       "BEGIN_VALUES",
                                              "END_VALUES",     "RANDOM_SEED"};

// A word of which one part is a keyword.
struct Parts
{
    std::string_view keyword;
    // The bytes of the word up to here are the first part.
    std::size_t cut = 0;
    bool keywordIsFirst = true;
};

class KeywordParter
{
public:
    KeywordParter(const std::string& newText, const std::vector<PatternToken>& newTokens,
                  Findings& newFindings)
        : text(newText), tokens(newTokens), findings(newFindings)
    {}

    std::vector<PatternToken> Run()
    {
        for (const PatternToken& token : tokens)
            Take(token);
        return std::move(parted);
    }

private:
    void Take(const PatternToken& token)
    {
        const std::optional<Parts> parts = FindParts(token);
        if (!parts || IsNameInUse(token)) {
            parted.push_back(token);
            return;
        }
        ++partedCount;
        Tell(token, *parts);
        Take(Piece(token.place.offset, parts->cut));
        Take(Piece(token.place.offset + parts->cut, token.place.length - parts->cut));
    }

    std::string_view BytesOf(const PatternToken& token) const
    {
        return std::string_view(text).substr(token.place.offset, token.place.length);
    }

    PatternToken Piece(std::size_t offset, std::size_t length) const
    {
        PatternToken piece =
            CutTokens(std::string_view(text).substr(offset, length), patternComment).front();
        piece.place = {offset, length};
        return piece;
    }

    std::optional<Parts> FindParts(const PatternToken& token)
    {
        const bool isPlain = token.openQuote || token.place.length > longestWord ||
                             partedCount >= mostParted || KeywordInAnyCase(token.text) != nullptr;
        if (isPlain)
            return std::nullopt;
        if (const auto parts = PartsAtStart(token))
            return parts;
        const std::string_view bytes = BytesOf(token);
        for (const std::string_view keyword : plainKeywords)
            if (bytes.ends_with(keyword) && IsWord(bytes.substr(0, bytes.size() - keyword.size())))
                return Parts{keyword, bytes.size() - keyword.size(), false};
        return std::nullopt;
    }

    std::optional<Parts> PartsAtStart(const PatternToken& token)
    {
        const std::string_view bytes = BytesOf(token);
        if (parted.empty() && bytes.starts_with(patternHeader))
            return Parts{patternHeader, std::string_view(patternHeader).size()};
        const bool followsHeader = parted.size() == 1 && parted.front().text == patternHeader;
        const bool isVersion =
            bytes.starts_with(versionKeyword) && IsNumber(bytes.substr(versionKeyword.size()));
        if (followsHeader && isVersion)
            return Parts{versionKeyword, versionKeyword.size()};
        std::optional<Parts> found;
        for (const std::string_view keyword : plainKeywords) {
            const std::size_t cut = EndOfKeyword(bytes, keyword);
            if (cut == 0 || !IsWord(bytes.substr(cut)))
                continue;
            // BEGIN_IN_COLORSky is about Sky if the text speaks of it, and a letter too many is a
            // slip unless it stands for something.
            const std::string_view rest = bytes.substr(cut);
            if (IsOtherToken(rest) || (!found && (IsNumber(rest) || !IsSlip(token))))
                found = Parts{keyword, cut};
        }
        return found;
    }

    // 0 if the bytes do not begin with it, with or without quotes.
    static std::size_t EndOfKeyword(std::string_view bytes, std::string_view keyword)
    {
        if (bytes.starts_with(keyword))
            return keyword.size();
        const bool isQuoted = bytes.starts_with('"') && bytes.substr(1).starts_with(keyword) &&
                              bytes.substr(1 + keyword.size()).starts_with('"');
        return isQuoted ? keyword.size() + 2 : 0;
    }

    static bool IsNumber(std::string_view bytes)
    {
        return bytes.find_first_not_of("0123456789") == std::string_view::npos;
    }

    // Not all bytes make a word by themselves: a comment begins with #, and a quote has an end.
    static bool IsWord(std::string_view bytes)
    {
        const std::vector<PatternToken> cut = CutTokens(bytes, patternComment);
        return cut.size() == 1 && cut.front().place.length == bytes.size() &&
               !cut.front().openQuote;
    }

    static bool IsSlip(const PatternToken& token) { return !NearestKeywords(token.text).empty(); }

    bool IsOtherToken(std::string_view word)
    {
        if (words.empty())
            for (const PatternToken& token : tokens)
                words.insert(UpperCase(token.text));
        return words.count(UpperCase(std::string(word))) != 0;
    }

    // A name that is listed and then used is one, whatever it looks like.
    bool IsNameInUse(const PatternToken& token)
    {
        if (!outline)
            outline = ReadOutline(text);
        const std::string upper = UpperCase(token.text);
        const auto ink = outline->outInkNames.find(upper);
        if (ink != outline->outInkNames.end() && outline->feeders.count(ink->second.index) != 0)
            return true;
        const auto colour = outline->inColourNames.find(upper);
        if (colour == outline->inColourNames.end())
            return false;
        const auto index = static_cast<std::size_t>(colour->second.index);
        return index < outline->inColours.size() && outline->inColours[index].described;
    }

    void Tell(const PatternToken& token, const Parts& parts)
    {
        const std::string_view bytes = BytesOf(token);
        const std::string first(bytes.substr(0, parts.cut));
        const std::string second(bytes.substr(parts.cut));
        const std::string keyword(parts.keyword);
        // Every engine loads a text without a seed.
        AddFinding(findings, keyword == "RANDOM_SEED" ? Severity::Warning : Severity::Error,
                   "keyword-glued", token.place,
                   "nothing parts " + keyword + " from the word " +
                       (parts.keywordIsFirst ? "after" : "ahead of") + " it",
                   std::string("put a blank or a line end ") +
                       (parts.keywordIsFirst ? "after " : "ahead of ") + keyword,
                   first + ' ' + second);
    }

    const std::string& text;
    const std::vector<PatternToken>& tokens;
    Findings& findings;
    std::vector<PatternToken> parted;
    std::size_t partedCount = 0;
    // Both are made for the first word that is in doubt: all words of the text, and the text by the
    // rules of the library.
    std::set<std::string> words;
    std::optional<PatternOutline> outline;
};

} // namespace

std::vector<PatternToken> PartGluedKeywords(const std::string& text,
                                            const std::vector<PatternToken>& tokens,
                                            Findings& findings)
{
    return KeywordParter(text, tokens, findings).Run();
}

bool StandsAlone(const std::string& text, const PatternToken& token)
{
    const std::size_t end = token.place.offset + token.place.length;
    return end >= text.size() || whiteSpace.find(text[end]) != std::string_view::npos;
}

} // namespace zvk::Pelkraft::Client
