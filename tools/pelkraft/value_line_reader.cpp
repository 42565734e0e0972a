#include "tools/pelkraft/value_line_reader.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t highestSum = std::numeric_limits<std::uint32_t>::max();
// Below this version the engines that draw combinations take no values.
constexpr std::int32_t lowestVersion = 2;
constexpr std::int32_t highestInk = 255;

bool IsStepWord(std::string_view word)
{
    if (!word.empty() && word.back() == '+')
        word.remove_suffix(1);
    return IsPlainNumber(word);
}

bool IsRatioWord(const std::string& word)
{
    return !word.empty() && word.front() != ':' && word.back() != ':' &&
           word.find("::") == std::string::npos &&
           word.find_first_not_of("0123456789:") == std::string::npos;
}

bool IsEntryWord(const std::string& word)
{
    const std::size_t dash = word.find('-');
    return dash != std::string::npos && IsPlainNumber(std::string_view(word).substr(0, dash)) &&
           IsPlainNumber(std::string_view(word).substr(dash + 1));
}

std::string Count(std::size_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace

// One line while it is read.
struct ValueLineReader::Line
{
    struct Entry
    {
        std::int32_t weight = 0;
        int position = 0;
        std::int32_t value = 0;
        TextSpan place;
    };

    int step = 0;
    bool usable = true;
    std::int64_t sum = 0;
    bool weightBelowZero = false;
    std::vector<Entry> entries;
    const PatternWord* stepWord = nullptr;
    const PatternWord* ratioWord = nullptr;
};

ValueLineReader::ValueLineReader(OutlineCursor& newCursor, std::int32_t newVersion,
                                 bool& newToldOfVersion)
    : cursor(newCursor), version(newVersion), toldOfVersion(newToldOfVersion)
{}

void ValueLineReader::ReadInto(InColour& inColour, const PatternWord& opening)
{
    while (const PatternWord* word = cursor.Next()) {
        if (cursor.EndsSection(*word, opening, "END_VALUES"))
            return;
        ReadLine(*word, inColour);
    }
    cursor.TellOfOpenSection(opening, "END_VALUES");
}

void ValueLineReader::ReadLine(const PatternWord& stepWord, InColour& inColour)
{
    if (cursor.Guesses() && !cursor.StartsLine(stepWord) && IsEntryWord(stepWord.text)) {
        cursor.Warn("entry-surplus", stepWord.place,
                    Quoted(stepWord.text) + " is one entry too many, and is read as a step number",
                    "give the ratio a weight for it, or leave it out");
        return;
    }
    Line line;
    line.stepWord = &stepWord;
    line.step = ReadStep(stepWord);
    line.usable = line.step != noIndex;

    const PatternWord* ratio = cursor.Next();
    if (ratio == nullptr || (cursor.Guesses() && KeywordInAnyCase(ratio->text) != nullptr)) {
        cursor.Warn("line-broken", stepWord.place, "the line ends behind its step number",
                    "write the ratio of the alternatives and an entry for each of them");
        if (ratio != nullptr)
            cursor.StepBack();
        return;
    }
    line.ratioWord = ratio;
    ReadRatio(*ratio, line);
    if (ReadEntries(line) && line.usable)
        Store(line, inColour);
}

int ValueLineReader::ReadStep(const PatternWord& word)
{
    const std::int32_t step = NumberOf(word.text);
    if (step < 0 || step >= stepLimit) {
        cursor.Error("step-range", word.place,
                     "step " + std::to_string(step) + " is outside of 0 to 7",
                     "use steps from 0 to 7; a pixel has at most 8 of them");
        return noIndex;
    }
    if (!IsStepWord(word.text))
        cursor.Warn("number-odd", word.place,
                    Quoted(word.text) + " is read as step " + std::to_string(step),
                    "begin a value line with its step number, 0 to 7");
    else if (word.text.back() == '+')
        cursor.Note("step-suffix", word.place,
                    "the suffix + counts for the reference engine alone, which copies the step to "
                    "all higher ones",
                    "leave it out: the other engines take any higher step as the highest anyway");
    return step;
}

void ValueLineReader::ReadRatio(const PatternWord& word, Line& line)
{
    std::string_view rest = word.text;
    bool more = true;
    while (more && line.entries.size() < weightLimit) {
        const std::int32_t weight = NumberOf(rest);
        line.entries.emplace_back().weight = weight;
        line.sum += weight;
        line.weightBelowZero = line.weightBelowZero || weight < 0;
        const std::size_t colon = rest.find(':');
        more = colon != std::string_view::npos;
        if (more)
            rest.remove_prefix(colon + 1);
    }
    JudgeRatio(word, line);
    if (line.weightBelowZero || line.sum == 0 || line.sum > highestSum)
        line.usable = false;
}

void ValueLineReader::JudgeRatio(const PatternWord& word, const Line& line)
{
    const auto colons =
        static_cast<std::size_t>(std::count(word.text.begin(), word.text.end(), ':'));
    if (colons >= weightLimit)
        cursor.Warn("weights-surplus", word.place,
                    "only the first 16 of " + std::to_string(colons + 1) + " weights are read",
                    "use up to 16 alternatives in a step");
    if (line.weightBelowZero)
        cursor.Error("weight-sum", word.place, Quoted(word.text) + " holds a weight below 0",
                     "write whole numbers above 0 joined by colons, such as 1:3");
    else if (line.sum == 0 || line.sum > highestSum)
        cursor.Error("weight-sum", word.place,
                     "the weights of " + Quoted(word.text) + " add up to " +
                         std::to_string(line.sum),
                     "write whole numbers above 0 joined by colons, such as 1:3");
    else if (!IsRatioWord(word.text))
        cursor.Warn("number-odd", word.place,
                    Quoted(word.text) + " is read as " +
                        Count(line.entries.size(), "weight", "weights") + " with the sum " +
                        std::to_string(line.sum),
                    "write whole numbers joined by colons, such as 1:3");
    else if (std::any_of(line.entries.begin(), line.entries.end(),
                         [](const Line::Entry& entry) { return entry.weight == 0; }))
        cursor.Warn("weight-zero", word.place, "an alternative of weight 0 never comes",
                    "leave it out, or give it a weight");
}

bool ValueLineReader::ReadEntries(Line& line)
{
    for (std::size_t i = 0; i < line.entries.size(); ++i) {
        const PatternWord* word = cursor.Next();
        const bool lost =
            word == nullptr ||
            (cursor.Guesses() &&
             (KeywordInAnyCase(word->text) != nullptr ||
              (cursor.StartsLine(*word) && !IsEntryWord(word->text) && version >= lowestVersion)));
        if (lost) {
            cursor.Error("entry-missing", line.ratioWord->place,
                         "step " + std::to_string(line.step) + " has " +
                             Count(line.entries.size(), "weight", "weights") + " but " +
                             Count(i, "entry", "entries"),
                         "write one entry, position-value, for each weight");
            if (word != nullptr)
                cursor.StepBack();
            return false;
        }
        ReadEntry(*word, i, line);
    }
    return true;
}

void ValueLineReader::ReadEntry(const PatternWord& word, std::size_t index, Line& line)
{
    Line::Entry& entry = line.entries[index];
    entry.place = word.place;
    const bool namesPosition = version >= lowestVersion;
    std::string_view value = word.text;
    const std::size_t dash = value.find('-');
    entry.position = namesPosition ? 0 : static_cast<int>(index);
    if (namesPosition && dash != std::string_view::npos) {
        entry.position = NumberOf(value.substr(0, dash));
        value.remove_prefix(dash + 1);
    }
    entry.value = NumberOf(value);
    if (!namesPosition)
        TellOfVersion(word);
    else
        JudgeEntry(word, entry.position, entry.value);
    if (entry.position < 0 || entry.position >= positionLimit)
        line.usable = false;
}

void ValueLineReader::JudgeEntry(const PatternWord& word, int position, std::int32_t value)
{
    const std::string sets =
        "sets position " + std::to_string(position) + " to " + std::to_string(value);
    if (position < 0 || position >= positionLimit)
        cursor.Error("position-range", word.place,
                     "position " + std::to_string(position) + " is outside of 0 to 15",
                     "count the names between BEGIN_INKS and END_INKS from 0");
    else if (word.text.find('-') == std::string::npos)
        cursor.Warn("entry-plain", word.place, Quoted(word.text) + " has no \"-\" and " + sets,
                    "write position-value, such as 0-" + std::to_string(value));
    else if (value == unsetInk)
        cursor.Warn("value-range", word.place, Quoted(word.text) + " sets nothing",
                    "write a value from 0 to 255");
    else if (value < 0 || value > highestInk)
        cursor.Warn("value-range", word.place,
                    "of the value " + std::to_string(value) + " the low 8 bits are used: " +
                        std::to_string(static_cast<std::uint32_t>(value) & 0xFFU),
                    "write a value from 0 to 255");
    else if (!IsEntryWord(word.text))
        cursor.Warn("number-odd", word.place, Quoted(word.text) + " " + sets,
                    "write position-value in digits, such as 0-64");
}

void ValueLineReader::TellOfVersion(const PatternWord& word)
{
    if (toldOfVersion)
        return;
    toldOfVersion = true;
    cursor.Error("version-low", word.place,
                 "values are read at version " + std::to_string(version) +
                     ", which the reference engine alone takes",
                 "write VERSION 2 or VERSION 3 ahead of the first BEGIN_IN_COLOR");
}

void ValueLineReader::Store(const Line& line, InColour& inColour)
{
    Step& step = inColour.steps[static_cast<std::size_t>(line.step)];
    if (step.listed)
        cursor.Warn("step-repeated", line.stepWord->place,
                    "step " + std::to_string(line.step) + " of " + Quoted(inColour.name) +
                        " has a line already, which this one is stored over",
                    "keep one line for each step");
    step.listed = true;
    step.count = line.entries.size();
    step.weightSum = line.sum;
    step.place = line.stepWord->place;
    step.ratioPlace = line.ratioWord->place;
    if (step.alternatives.size() < step.count)
        step.alternatives.resize(step.count);
    for (std::size_t i = 0; i < step.count; ++i) {
        const Line::Entry& entry = line.entries[i];
        Alternative& alternative = step.alternatives[i];
        alternative.weight = entry.weight;
        alternative.place = entry.place;
        alternative.values[static_cast<std::size_t>(entry.position)] = entry.value;
    }
    inColour.stepCount = std::max(inColour.stepCount, line.step + 1);
}

} // namespace zvk::Pelkraft::Client
