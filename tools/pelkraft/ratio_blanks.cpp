#include "tools/pelkraft/ratio_blanks.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/value_line_lints.h"

#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

bool IsPieceOfRatio(const std::string& word)
{
    return !word.empty() && word.find_first_not_of("0123456789:") == std::string::npos;
}

// Nothing but blanks lies between them, and a colon beside these.
bool AreParted(const std::string& text, const PatternToken& left, const PatternToken& right)
{
    if (!IsPieceOfRatio(left.text) || !IsPieceOfRatio(right.text) ||
        (left.text.back() != ':' && right.text.front() != ':'))
        return false;
    const std::size_t end = left.place.offset + left.place.length;
    return std::string_view(text).substr(end, right.place.offset - end).find_first_not_of(" \t") ==
           std::string_view::npos;
}

void Append(PatternToken& ratio, const PatternToken& piece)
{
    ratio.text += piece.text;
    ratio.place.length = piece.place.offset + piece.place.length - ratio.place.offset;
}

} // namespace

std::vector<PatternToken> JoinRatios(const std::string& text,
                                     const std::vector<PatternToken>& tokens, Findings& findings)
{
    std::vector<PatternToken> joined;
    bool inValues = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string upper = UpperCase(tokens[i].text);
        inValues = upper.starts_with("BEGIN_V") || (inValues && !upper.starts_with("END_"));
        joined.push_back(tokens[i]);
        // A ratio comes after its step, which is no part of it.
        const bool isRatio = inValues && i > 0 && IsPlainNumber(tokens[i - 1].text) &&
                             !tokens[i].text.starts_with(':');
        const std::size_t first = i;
        while (isRatio && i + 1 < tokens.size() && AreParted(text, tokens[i], tokens[i + 1]))
            Append(joined.back(), tokens[++i]);
        if (i > first)
            AddFinding(findings, Severity::Error, "weights-parted", joined.back().place,
                       "blanks part the weights of this ratio",
                       "write " + Quoted(joined.back().text) + " without blanks",
                       joined.back().text);
    }
    return joined;
}

} // namespace zvk::Pelkraft::Client
