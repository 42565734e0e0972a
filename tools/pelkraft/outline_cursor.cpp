#include "tools/pelkraft/outline_cursor.h"

#include <cstring>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t longestQuoted = 40;

} // namespace

OutlineCursor::OutlineCursor(const PatternText& newText, Findings* newFindings)
    : text(newText), findings(newFindings), words(CutWords(newText.Bytes()))
{}

const PatternWord* OutlineCursor::Next()
{
    // Counts on behind the last word, so that a step back stays right.
    const std::size_t present = next++;
    return present < words.size() ? &words[present] : nullptr;
}

bool OutlineCursor::Is(const PatternWord& word, const char* keyword)
{
    if (word.text == keyword)
        return true;
    const char* const meant = Guesses() ? KeywordInAnyCase(word.text) : nullptr;
    if (meant == nullptr || std::strcmp(meant, keyword) != 0)
        return false;
    Error("keyword-case", word.place, Quoted(word.text) + " is no keyword in this case of letters",
          std::string("write ") + keyword);
    return true;
}

bool OutlineCursor::EndsSection(const PatternWord& word, const PatternWord& opening,
                                const char* closing)
{
    if (Is(word, closing))
        return true;
    if (!IsForeignKeyword(word))
        return false;
    const bool nested =
        std::strcmp(closing, "END_INKS") == 0 || std::strcmp(closing, "END_VALUES") == 0;
    if (word.text.rfind("END_", 0) == 0 && !(nested && word.text == "END_IN_COLOR")) {
        Error("section-closed-wrongly", word.place, word.text + " does not close " + opening.text,
              std::string("write ") + closing);
        return true;
    }
    TellOfMissingEnd(opening, closing, word);
    StepBack();
    return true;
}

bool OutlineCursor::IsForeignKeyword(const PatternWord& word) const
{
    return Guesses() && IsKeyword(word.text);
}

bool OutlineCursor::StartsLine(const PatternWord& word) const
{
    const std::size_t index = static_cast<std::size_t>(&word - words.data());
    if (index == 0)
        return true;
    const std::size_t before = words[index - 1].place.offset;
    return std::string_view(text.Bytes())
               .substr(before, word.place.offset - before)
               .find_first_of("\r\n") != std::string_view::npos;
}

std::int32_t OutlineCursor::NextNumber(const PatternWord& keyword, const std::string& what)
{
    const PatternWord* word = Next();
    if (word == nullptr) {
        Warn("number-missing", keyword.place, "the text ends before the " + what,
             "write a number behind " + keyword.text);
        return 0;
    }
    if (IsForeignKeyword(*word)) {
        StepBack();
        Error("number-missing", keyword.place,
              keyword.text + " takes the word behind it as its number, and that is " + word->text,
              "write a number behind " + keyword.text);
        return 0;
    }
    const std::int32_t number = NumberOf(word->text);
    if (!IsPlainNumber(word->text))
        Warn("number-odd", word->place,
             Quoted(word->text) + " is read as the number " + std::to_string(number),
             "write the " + what + " in digits alone");
    return number;
}

void OutlineCursor::Error(const char* kind, TextSpan place, std::string message, std::string hint)
{
    Add(Severity::Error, kind, place, std::move(message), std::move(hint));
}

void OutlineCursor::Warn(const char* kind, TextSpan place, std::string message, std::string hint)
{
    Add(Severity::Warning, kind, place, std::move(message), std::move(hint));
}

void OutlineCursor::Note(const char* kind, TextSpan place, std::string message, std::string hint)
{
    Add(Severity::Note, kind, place, std::move(message), std::move(hint));
}

void OutlineCursor::TellOfOpenSection(const PatternWord& opening, const std::string& closing)
{
    Error("section-open", opening.place, "the text ends inside " + opening.text,
          "close it with " + closing);
}

void OutlineCursor::TellOfMissingEnd(const PatternWord& opening, const std::string& closing,
                                     const PatternWord& found)
{
    Error("section-open", found.place,
          found.text + " stands inside " + opening.text + ", which is not closed",
          "write " + closing + " ahead of it");
}

void OutlineCursor::Add(Severity severity, const char* kind, TextSpan place, std::string message,
                        std::string hint)
{
    if (findings != nullptr)
        AddFinding(*findings, {severity, kind, place, std::move(message), std::move(hint)});
}

std::string Quoted(const std::string& word)
{
    if (word.size() <= longestQuoted)
        return "\"" + word + "\"";
    return "\"" + word.substr(0, longestQuoted) + "...\"";
}

} // namespace zvk::Pelkraft::Client
