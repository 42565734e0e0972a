#pragma once

#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/pattern_words.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The words of a text, one after the other, and a list for what is to be said of them. Without a
// list nothing is said, and nothing is guessed.
class OutlineCursor
{
public:
    OutlineCursor(const PatternText& newText, Findings* newFindings);

    // The next word, or null behind the last one.
    const PatternWord* Next();
    // Makes the last word the next one again.
    void StepBack() { --next; }

    bool Guesses() const { return findings != nullptr; }
    // Whether one more finding would be told.
    bool Listens() const { return Guesses() && findings->size() < mostFindings; }
    // Whether the word is this keyword. Where it guesses, the case of the letters is found but
    // doesn't count.
    bool Is(const PatternWord& word, const char* keyword);
    // Whether a section ends here. Where it guesses, any other keyword ends it too: the wrong
    // closing word is taken for the right one, the next section's first word stays to be read.
    bool EndsSection(const PatternWord& word, const PatternWord& opening, const char* closing);
    // Where it guesses: whether the word is a keyword.
    bool IsForeignKeyword(const PatternWord& word) const;
    bool StartsLine(const PatternWord& word) const;

    // The number in the next word; 0 without one. what names it for a finding.
    std::int32_t NextNumber(const PatternWord& keyword, const std::string& what);

    void Error(const char* kind, TextSpan place, std::string message, std::string hint);
    void Warn(const char* kind, TextSpan place, std::string message, std::string hint);
    void Note(const char* kind, TextSpan place, std::string message, std::string hint);
    // The text is over and the section that opening began is not.
    void TellOfOpenSection(const PatternWord& opening, const std::string& closing);
    // A keyword stands where closing should.
    void TellOfMissingEnd(const PatternWord& opening, const std::string& closing,
                          const PatternWord& found);

    const std::vector<PatternWord>& Words() const { return words; }

private:
    void Add(Severity severity, const char* kind, TextSpan place, std::string message,
             std::string hint);

    const PatternText& text;
    Findings* findings;
    std::vector<PatternWord> words;
    std::size_t next = 0;
};

// A word between quotes for a message, cut where it is long.
std::string Quoted(const std::string& word);

} // namespace zvk::Pelkraft::Client
