#include "tools/pelkraft/pattern_intention.h"

#include "pattern/early_check.h"
#include "pattern/pattern_words.h"
#include "tools/pelkraft/glued_keywords.h"
#include "tools/pelkraft/keyword_slips.h"
#include "tools/pelkraft/name_separators.h"
#include "tools/pelkraft/near_names.h"
#include "tools/pelkraft/ratio_blanks.h"
#include "tools/pelkraft/value_line_lints.h"
#include "zvk/split.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";
// No author looks for a name among more.
constexpr std::size_t mostCompared = 100;

bool StartsWith(const std::string& text, std::string_view start)
{
    return std::string_view(text).substr(0, start.size()) == start;
}

// Words without anything else between them.
struct WordRun
{
    const PatternToken* first;
    std::ptrdiff_t more = 0;
};

void Extend(std::vector<WordRun>& runs, const PatternToken& token)
{
    if (!runs.empty() && runs.back().first + runs.back().more + 1 == &token)
        ++runs.back().more;
    else
        runs.push_back({&token});
}

class IntentionHandler final : public OutlineHandler
{
public:
    IntentionHandler(const PatternText& newText, const std::vector<PatternToken>& newTokens,
                     PatternOutline& newOutline, Findings& newFindings)
        : OutlineHandler(newOutline), text(newText), tokens(newTokens), findings(newFindings)
    {}

    void LintHeader()
    {
        if (!text.WideCode().empty()) {
            const TextSpan place = tokens.empty() ? TextSpan() : tokens.front().place;
            AddFinding(findings, Severity::Error, "header-missing", place,
                       "the text is in " + text.WideCode(),
                       "save it as UTF-8 without a byte order mark");
            return;
        }
        if (tokens.empty()) {
            AddFinding(findings, Severity::Error, "header-missing", {}, "the text holds no word",
                       "begin the text with the word DotWeavePattern");
            return;
        }
        const PatternToken& first = tokens.front();
        outline.hasHeader = first.text == patternHeader;
        if (outline.hasHeader)
            return;
        if (first.text == byteOrderMark + std::string(patternHeader))
            Error("header-missing", first, "a byte order mark stands ahead of the header word",
                  "save the text as UTF-8 without a byte order mark", patternHeader);
        else if (!Means(first, patternHeader))
            LintOtherHeader(first);
    }

    void Finish()
    {
        for (const WordRun& run : strays)
            LintStray(*run.first, run.more);
        for (const WordRun& run : unknownWords)
            LintUnknownWords(*run.first, run.more);
        if (!tokens.empty() && tokens.back().openQuote)
            Warn("quote-open", tokens.back(), "nothing closes this quote",
                 "write a second double quote after the name");
    }

    // The check ahead of the parser sees keywords alone, and would find no version at all.
    void TakeVersion(std::int32_t version, const PatternToken& keyword) override
    {
        if (!StandsAlone(text.Bytes(), keyword) ||
            (!outline.earlyVersion && !IsKeyword(keyword.text))) {
            outline.earlyVersion = version;
            outline.earlyVersionPlace = keyword.place;
        }
        OutlineHandler::TakeVersion(version, keyword);
    }

    void SelectInColor(std::int32_t inColor, const PatternToken& name) override
    {
        InColourPlaces& places = Places(inColor);
        if (outline.inColourNames.count(UpperCase(name.text)) == 0) {
            guessedInColours.insert(inColor);
        } else if (guessedInColours.erase(inColor) != 0) {
            // The block of this very name counts more.
            outline.records.Select(inColor) = InColorRecord{};
            places.steps = {};
            std::erase_if(outline.feeders,
                          [=](const auto& feeder) { return feeder.second == inColor; });
        } else if (places.described) {
            Warn("in-colour-repeated", name, Quoted(name.text) + " is described already",
                 "describe each in-colour in one block");
        }
        OutlineHandler::SelectInColor(inColor, name);
    }

    void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                 const PatternToken& name) override
    {
        toldOfSurplus = false;
        if (outline.outInkNames.count(UpperCase(name.text)) == 0)
            guessedInks.insert(outInk);
        const auto before = outline.feeders.find(outInk);
        if (before != outline.feeders.end() && guessedInks.erase(outInk) == 0)
            Warn("ink-fed-twice", name,
                 before->second == inColor ? Quoted(name.text) + " stands in this list twice"
                                           : Quoted(name.text) + " is fed by in-colour " +
                                                 Quoted(Places(before->second).name) +
                                                 " already; the values of one of the two are lost",
                 "feed each ink from one place in one in-colour");
        OutlineHandler::TakeInk(inColor, position, outInk, name);
    }

    void TakeValueLine(std::int32_t inColor, const ValueLine& line) override
    {
        LintValueLine(line, outline.version, findings);
        const StepPlaces& step = StepOf(inColor, line);
        if (step.listed && !step.broken)
            Warn("step-repeated", *line.stepToken,
                 "step " + std::to_string(line.step) + " of " + Quoted(Places(inColor).name) +
                     " has a line already, which this one is stored over",
                 "keep one line for each step");
        OutlineHandler::TakeValueLine(inColor, line);
    }

    // Kept too, so that nobody says that its step has no line.
    void TakeBrokenLine(std::int32_t inColor, const ValueLine& line) override
    {
        LintValueLine(line, outline.version, findings);
        if (line.step < 0 || line.step >= stepsOfInColor || StepOf(inColor, line).listed)
            return;
        ValueLine kept = line;
        for (std::size_t i = 0; i < kept.entryTokens.size(); ++i) {
            if (kept.entryTokens[i] == nullptr || kept.positions[i] >= positionsOfInColor) {
                kept.positions[i] = 0;
                kept.values[i] = unsetValue;
            }
        }
        if (kept.weightSum == 0)
            kept.count = 0;
        if (kept.ratioToken == nullptr)
            kept.ratioToken = kept.stepToken;
        OutlineHandler::TakeValueLine(inColor, kept);
        StepOf(inColor, line).broken = true;
    }

    void Refuse(PatternRefusal refusal, const PatternToken& at) override
    {
        switch (refusal) {
        case PatternRefusal::UnsupportedVersion:
            // A text without a version is told so as a whole.
            if (outline.earlyVersion && !std::exchange(toldOfVersion, true))
                Error("version-low", at,
                      "values are read at version " + std::to_string(outline.version) +
                          ", which the slow reference alone takes",
                      "write VERSION 2 or VERSION 3 ahead of the first BEGIN_IN_COLOR");
            break;
        case PatternRefusal::TooManyPositions:
            if (!std::exchange(toldOfSurplus, true))
                Error("positions-surplus", at,
                      "an in-colour feeds at most 16 inks, and this is one more",
                      "shorten the list");
            break;
        case PatternRefusal::InksWithoutInColor:
            if (std::exchange(inksWithoutInColour, &at) != &at)
                Error("inks-without-in-colour", at,
                      "this list stands in a block without a known in-colour",
                      "name the in-colour after BEGIN_IN_COLOR, ahead of BEGIN_INKS");
            break;
        case PatternRefusal::InColorWithoutRecord:
            Error("in-colour-dropped", at, "this second list drops in-colours of the first one",
                  "list all in-colours in one BEGIN_IN_COLORS");
            break;
        default:
            // Told with the line, or with the section.
            break;
        }
    }

    void TakeName(NameList list, std::int32_t index, const PatternToken& name) override
    {
        if (Names(list).count(UpperCase(name.text)) != 0)
            Warn("name-repeated", name,
                 Quoted(name.text) +
                     " is listed already; it keeps one entry, and takes the later place",
                 "list each name once");
        OutlineHandler::TakeName(list, index, name);
    }

    void SkipToken(const PatternToken& token) override
    {
        // The first one has been looked at as the header word.
        if (token.text == patternHeader || &token == &tokens.front())
            return;
        Extend(strays, token);
    }

    void SkipValues(const PatternToken& opening, const PatternToken& block) override
    {
        skippedValues = &opening;
        if (unknownInColour == nullptr || unknownInColour < &block)
            Warn("values-without-in-colour", opening,
                 "these values stand in a block that names no in-colour, and are skipped",
                 "name the in-colour after BEGIN_IN_COLOR, ahead of BEGIN_VALUES");
    }

    void TakeOpenSection(const PatternToken& opening, std::string_view closing) override
    {
        Error("section-open", opening, "the text ends inside " + opening.text,
              "close it with " + std::string(closing));
    }

    bool Means(const PatternToken& token, std::string_view keyword) override
    {
        const char* const meant = KeywordInAnyCase(token.text);
        if (meant == nullptr)
            return MeansBySlip(token, keyword);
        if (token.text == meant || meant != keyword)
            return false;
        Error("keyword-case", token, Quoted(token.text) + " is no keyword in this case of letters",
              "write " + std::string(keyword), std::string(keyword));
        return true;
    }

    std::int32_t FindMeantName(NameList list, const PatternToken& token) override
    {
        if (list == NameList::InColors)
            unknownInColour = &token;
        if (findings.size() >= mostFindings)
            return noIndex;
        const std::vector<const NamedIndex*> nearest = FindNearest(list, token.text);
        if (nearest.empty() && list == NameList::InColors) {
            Extend(unknownWords, token);
            return noIndex;
        }
        // Whatever is in use already is hardly meant again.
        const bool isMeant = !nearest.empty() && !IsInUse(list, nearest.front()->index);
        LintUnknownName(list, token, nearest.empty() ? nullptr : nearest.front(),
                        isMeant && nearest.size() == 1);
        return isMeant ? nearest.front()->index : noIndex;
    }

    SectionEnd FindEnd(const PatternToken& token, const PatternToken& opening,
                       std::string_view closing) override
    {
        if (Means(token, closing))
            return SectionEnd::Here;
        if (closing == "END_IN_COLOR") {
            if (token.text == "END_INKS" || token.text == "END_VALUES") {
                Warn("section-stray", token, token.text + " closes nothing here",
                     "open the list with BEGIN_" + token.text.substr(4));
                return SectionEnd::Skipped;
            }
            const std::string upper = UpperCase(token.text);
            if (upper == "BEGIN_INKS" || upper == "BEGIN_VALUES")
                return SectionEnd::None;
        }
        const bool holdsLines = closing == "END_VALUES" && &opening != skippedValues;
        if (holdsLines && IsEntryWord(token.text)) {
            Error("entry-surplus", token,
                  Quoted(token.text) + " is one entry too many, and is read as a step number",
                  "give the ratio a weight for it, or leave it out");
            return SectionEnd::Skipped;
        }
        return IsKeyword(token.text) ? EndAtKeyword(token, opening, closing) : SectionEnd::None;
    }

    bool IsNumberOf(const PatternToken& keyword, const PatternToken* number) override
    {
        const bool isVersion =
            UpperCase(keyword.text) == "VERSION" || slips.IsSlipOf(keyword, "VERSION");
        const std::string what = isVersion ? "version" : "seed";
        const std::string hint = "write a number after " + keyword.text;
        if (number == nullptr) {
            Warn("number-missing", keyword, "the text ends before the " + what, hint);
        } else if (IsKeyword(number->text)) {
            Error("number-missing", keyword,
                  keyword.text + " takes the word after it as its number, and that is " +
                      number->text,
                  hint);
            return false;
        } else if (!IsPlainNumber(number->text)) {
            Warn("number-odd", *number,
                 Quoted(number->text) + " is read as the number " +
                     std::to_string(ReadNumber(number->text)),
                 "write the " + what + " in digits alone");
        }
        return true;
    }

    bool BreaksLine(const PatternToken& token, const ValueLine& line) override
    {
        if (KeywordInAnyCase(token.text) != nullptr || slips.IsSlip(token))
            return true;
        return line.ratioToken != nullptr && outline.version >= mainRules.lowestVersion &&
               StartsLine(token) && !IsEntryWord(token.text);
    }

private:
    // A word ahead of the first keyword takes the header's place.
    void LintOtherHeader(const PatternToken& first)
    {
        const bool takesPlace = KeywordInAnyCase(first.text) == nullptr && !slips.IsSlip(first) &&
                                tokens.size() > 1 && IsKeyword(tokens[1].text);
        Error("header-missing", first, Quoted(first.text) + " stands where the header word must",
              takesPlace ? "did you mean DotWeavePattern?"
                         : "begin the text with the word DotWeavePattern",
              takesPlace ? std::optional<std::string>(patternHeader) : std::nullopt);
    }

    bool MeansBySlip(const PatternToken& token, std::string_view keyword)
    {
        // A letter parts the two words, and a block is of no use ahead of the list.
        const bool isLaterBlock = keyword == "BEGIN_IN_COLORS" && outline.InColourCount() != 0;
        const std::string upper = UpperCase(token.text);
        if (!slips.IsSlipOf(token, keyword) || isLaterBlock ||
            outline.outInkNames.count(upper) != 0 || outline.inColourNames.count(upper) != 0)
            return false;
        // Every engine loads a text without a seed.
        AddFinding(findings, keyword == "RANDOM_SEED" ? Severity::Warning : Severity::Error,
                   "keyword-misspelt", token.place, Quoted(token.text) + " is no keyword",
                   "did you mean " + std::string(keyword) + "?", std::string(keyword));
        return true;
    }

    StepPlaces& StepOf(std::int32_t inColor, const ValueLine& line) const
    {
        return Places(inColor).steps[static_cast<std::size_t>(line.step)];
    }

    SectionEnd EndAtKeyword(const PatternToken& token, const PatternToken& opening,
                            std::string_view closing)
    {
        const bool nested = closing == "END_INKS" || closing == "END_VALUES";
        if (StartsWith(token.text, "END_") && !(nested && token.text == "END_IN_COLOR")) {
            Error("section-closed-wrongly", token, token.text + " does not close " + opening.text,
                  "write " + std::string(closing));
            return SectionEnd::Here;
        }
        Error("section-open", token,
              token.text + " stands inside " + opening.text + ", which is not closed",
              "write " + std::string(closing) + " ahead of it");
        return SectionEnd::Before;
    }

    bool StartsLine(const PatternToken& token) const
    {
        if (&token == &tokens.front())
            return true;
        const std::size_t before = (&token - 1)->place.offset;
        return std::string_view(text.Bytes())
                   .substr(before, token.place.offset - before)
                   .find_first_of("\r\n") != std::string_view::npos;
    }

    bool IsInUse(NameList list, std::int32_t index) const
    {
        return list == NameList::OutInks ? outline.feeders.count(index) != 0
                                         : Places(index).described.has_value();
    }

    // Those that are equally near; none where no name is.
    std::vector<const NamedIndex*> FindNearest(NameList list, const std::string& word) const
    {
        const auto& names = Names(list);
        std::vector<std::string> spellings;
        for (auto name = names.begin(); name != names.end() && spellings.size() < mostCompared;
             ++name) {
            // One that holds a comma is likely to be two.
            if (name->second.spelling.find_first_of(",;") == std::string::npos)
                spellings.push_back(name->second.spelling);
        }
        std::vector<const NamedIndex*> nearest;
        for (const std::string& name : NearestNames(word, spellings))
            nearest.push_back(&names.at(UpperCase(name)));
        return nearest;
    }

    // A name that is certainly meant can be put in its place.
    void LintUnknownName(NameList list, const PatternToken& token, const NamedIndex* nearest,
                         bool isCertain)
    {
        const bool isInk = list == NameList::OutInks;
        const std::string listed = isInk ? "BEGIN_OUT_INKS" : "BEGIN_IN_COLORS";
        const std::string name =
            nearest != nullptr ? nearest->spelling : NearestKeyword(token.text);
        Warn(isInk ? "ink-unknown" : "in-colour-unknown", token,
             Quoted(token.text) + " is not listed in " + listed +
                 (isInk ? " and takes no position, which moves the names after it"
                        : " and selects no in-colour"),
             name.empty() ? "list it in " + listed
                          : "did you mean " + name + "? Otherwise list it in " + listed,
             isCertain ? std::optional<std::string>(NameAsWord(name)) : std::nullopt);
    }

    // The lines of a list whose opening keyword nobody could guess make many of them.
    void LintUnknownWords(const PatternToken& word, std::ptrdiff_t more)
    {
        if (more == 0) {
            LintUnknownName(NameList::InColors, word, nullptr, false);
            return;
        }
        const std::string others =
            more == 1 ? "the word" : "any of the " + std::to_string(more) + " words";
        Warn("in-colour-unknown", word,
             Quoted(word.text) +
                 " is not listed in BEGIN_IN_COLORS and selects no in-colour, nor "
                 "does " +
                 others + " after it",
             "open a list of inks with BEGIN_INKS, and one of value lines with BEGIN_VALUES");
    }

    void LintStray(const PatternToken& word, std::ptrdiff_t more)
    {
        const std::string others = more == 0 ? ""
                                   : more == 1
                                       ? ", and so is the word after it"
                                       : ", and so are " + std::to_string(more) + " words after it";
        Warn("word-skipped", word,
             Quoted(word.text) + " stands outside of all sections and is skipped" + others,
             StrayHint(word.text));
    }

    void Error(const char* kind, const PatternToken& token, std::string message, std::string hint,
               std::optional<std::string> replacement = {})
    {
        AddFinding(findings, Severity::Error, kind, token.place, std::move(message),
                   std::move(hint), std::move(replacement));
    }

    void Warn(const char* kind, const PatternToken& token, std::string message, std::string hint,
              std::optional<std::string> replacement = {})
    {
        AddFinding(findings, Severity::Warning, kind, token.place, std::move(message),
                   std::move(hint), std::move(replacement));
    }

    const PatternText& text;
    const std::vector<PatternToken>& tokens;
    Findings& findings;
    // By index; a block or a list that truly names one counts more than the guess.
    std::set<std::int32_t> guessedInColours;
    std::set<std::int32_t> guessedInks;
    // Those outside of all sections, and those in blocks that are near no in-colour.
    std::vector<WordRun> strays;
    std::vector<WordRun> unknownWords;
    KeywordSlips slips;
    const PatternToken* unknownInColour = nullptr;
    const PatternToken* inksWithoutInColour = nullptr;
    const PatternToken* skippedValues = nullptr;
    bool toldOfVersion = false;
    bool toldOfSurplus = false;
};

} // namespace

PatternOutline ReadIntention(const PatternText& text, Findings& findings)
{
    PatternOutline outline;
    outline.earlyVersion = FindEarlyVersion(text.Bytes(), zvk::split, outline.earlyVersionPlace);
    std::vector<PatternToken> tokens = CutTokens(text.Bytes(), patternComment);
    tokens = PartGluedKeywords(text.Bytes(), tokens, findings);
    tokens = DropNameSeparators(tokens, findings);
    tokens = JoinRatios(text.Bytes(), tokens, findings);
    IntentionHandler handler(text, tokens, outline, findings);
    handler.LintHeader();
    NameTable inColors;
    NameTable outInks;
    PatternReader(mainRules, inColors, outInks, handler).ReadSections(tokens);
    handler.Finish();
    return outline;
}

} // namespace zvk::Pelkraft::Client
