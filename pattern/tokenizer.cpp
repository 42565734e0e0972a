#include "pattern/tokenizer.h"

#include <utility>

namespace zvk::Pelkraft {
namespace {

bool IsWhiteSpace(char byte)
{
    return byte == '\t' || byte == '\n' || byte == '\r' || byte == ' ';
}

// The three states of the pass, and the token that grows in it.
class Tokenizer
{
public:
    explicit Tokenizer(char newCommentCharacter) : commentCharacter(newCommentCharacter) {}

    void Take(char byte)
    {
        if (inComment)
            inComment = byte != '\r' && byte != '\n';
        else if (inQuotes)
            TakeQuoted(byte);
        else
            TakePlain(byte);
    }

    std::vector<std::string> Finish()
    {
        Store();
        return std::move(tokens);
    }

private:
    void TakeQuoted(char byte)
    {
        if (byte == '"')
            inQuotes = false;
        else
            token += byte;
    }

    void TakePlain(char byte)
    {
        if (IsWhiteSpace(byte)) {
            Store();
        } else if (byte == commentCharacter && !started) {
            inComment = true;
        } else {
            started = true;
            if (byte == '"')
                inQuotes = true;
            else
                token += byte;
        }
    }

    // An empty token counts once it is started: that is what a pair of quotes is for.
    void Store()
    {
        if (!started)
            return;
        tokens.push_back(std::move(token));
        token.clear();
        started = false;
    }

    const char commentCharacter;
    bool inComment = false;
    bool inQuotes = false;
    bool started = false;
    std::string token;
    std::vector<std::string> tokens;
};

} // namespace

std::vector<std::string> CutTokens(std::string_view text, char commentCharacter)
{
    Tokenizer tokenizer(commentCharacter);
    for (const char byte : text)
        tokenizer.Take(byte);
    return tokenizer.Finish();
}

} // namespace zvk::Pelkraft
