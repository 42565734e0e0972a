#pragma once

#include "pattern/tokenizer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

// Knows the keywords of the pattern language that slips of the hand turned into other words. One
// token is asked about several times in a row, and compared once.
class KeywordSlips
{
public:
    // Whether the token is a slip of this keyword. It may be one of another keyword as well, and
    // whoever asks knows which of them can stand there.
    bool IsSlipOf(const PatternToken& token, std::string_view keyword);
    // Whether the token is a slip of any keyword.
    bool IsSlip(const PatternToken& token) { return !Near(token).empty(); }

private:
    const std::vector<std::string>& Near(const PatternToken& token);

    const PatternToken* compared = nullptr;
    std::vector<std::string> near;
    std::size_t comparisons = 0;
};

} // namespace zvk::Pelkraft::Client
