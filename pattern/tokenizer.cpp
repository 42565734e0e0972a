#include "pattern/tokenizer.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft {
namespace {

bool IsWhiteSpace(char byte)
{
    return byte == '\t' || byte == '\n' || byte == '\r' || byte == ' ';
}

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The three states of the pass, and the token that grows in it.
class Tokenizer
{
public:
    explicit Tokenizer(char newCommentCharacter) : commentCharacter(newCommentCharacter) {}

    void Take(char byte)
    {
        TakeByState(byte);
        ++offset;
    }

    std::vector<PatternToken> Finish()
    {
        token.openQuote = inQuotes;
        Store();
        return std::move(tokens);
    }

private:
    void TakeByState(char byte)
    {
        if (inComment)
            inComment = byte != '\r' && byte != '\n';
        else if (inQuotes)
            TakeQuoted(byte);
        else
            TakePlain(byte);
    }

    void TakeQuoted(char byte)
    {
        if (byte == '"')
            inQuotes = false;
        else
            token.text += byte;
    }

    void TakePlain(char byte)
    {
        if (IsWhiteSpace(byte)) {
            Store();
        } else if (byte == commentCharacter && !started) {
            inComment = true;
        } else {
            if (!started)
                token.place.offset = offset;
            started = true;
            if (byte == '"')
                inQuotes = true;
            else
                token.text += byte;
        }
    }

    // An empty token counts once it is started: that is what a pair of quotes is for.
    void Store()
    {
        if (!started)
            return;
        token.place.length = offset - token.place.offset;
        tokens.push_back(std::move(token));
        token = {};
        started = false;
    }

    const char commentCharacter;
    bool inComment = false;
    bool inQuotes = false;
    bool started = false;
    std::size_t offset = 0;
    PatternToken token;
    std::vector<PatternToken> tokens;
};

} // namespace

std::vector<PatternToken> CutTokens(std::string_view text, char commentCharacter)
{
    Tokenizer tokenizer(commentCharacter);
    for (const char byte : text)
        tokenizer.Take(byte);
    return tokenizer.Finish();
}

TextLines::TextLines(std::string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (text[i] == '\n' || (text[i] == '\r' && !pair))
            starts.push_back(i + 1);
    }
}

TextPlace TextLines::PlaceOf(std::size_t offset, std::string_view text) const
{
    const std::size_t clamped = std::min(offset, text.size());
    const auto next = std::upper_bound(starts.begin(), starts.end(), clamped);
    const std::string_view before = text.substr(*(next - 1), clamped - *(next - 1));
    const auto characters = std::count_if(before.begin(), before.end(),
                                          [](char byte) { return !IsContinuation(byte); });
    return {static_cast<int>(next - starts.begin()), 1 + static_cast<int>(characters)};
}

std::string_view TextLines::Line(int number, std::string_view text) const
{
    const std::size_t start = starts[static_cast<std::size_t>(number - 1)];
    const std::size_t end = std::min(text.find_first_of("\r\n", start), text.size());
    return text.substr(start, end - start);
}

} // namespace zvk::Pelkraft
