#include "pattern/pattern_reader.h"

#include "pattern/pattern_words.h"

#include <algorithm>

namespace zvk::Pelkraft {
namespace {

constexpr std::int32_t versionOfNamedPositions = 2;

} // namespace

const char* TextOf(PatternRefusal refusal)
{
    switch (refusal) {
    case PatternRefusal::UnsupportedVersion:
        return "unsupported pattern version";
    case PatternRefusal::StepOutOfRange:
        return "step out of range in pattern";
    case PatternRefusal::PositionOutOfRange:
        return "ink position out of range in pattern";
    case PatternRefusal::TooManyPositions:
        return "too many ink positions in pattern";
    case PatternRefusal::InksWithoutInColor:
        return "BEGIN_INKS without in-colour in pattern";
    case PatternRefusal::InColorsWithoutEnd:
        return "BEGIN_IN_COLORS without END_IN_COLORS in pattern";
    case PatternRefusal::InColorWithoutRecord:
        return "in-colour without record in pattern";
    case PatternRefusal::WeightSumOutOfRange:
        break;
    }
    return "sum of weights out of range in pattern";
}

void PatternHandler::Refuse(PatternRefusal refusal, const PatternToken&)
{
    throw TextOf(refusal);
}

PatternReader::PatternReader(const ReaderRules& newRules, NameTable& newInColorNames,
                             NameTable& newOutInkNames, PatternHandler& newHandler)
    : rules(newRules), inColorNames(newInColorNames), outInkNames(newOutInkNames),
      handler(newHandler)
{}

bool PatternReader::Read(const std::vector<PatternToken>& newTokens)
{
    if (newTokens.empty() || newTokens.front().text != patternHeader)
        return false;
    ReadSections(newTokens);
    return true;
}

void PatternReader::ReadSections(const std::vector<PatternToken>& newTokens)
{
    tokens = &newTokens;
    cursor = 0;
    while (const PatternToken* token = NextToken())
        ReadTopLevel(*token);
}

void PatternReader::ReadTopLevel(const PatternToken& token)
{
    if (Is(token, "VERSION")) {
        version = NextNumber(token);
        handler.TakeVersion(version, token);
    } else if (Is(token, "BEGIN_OUT_INKS")) {
        ReadOutInkNames(token);
    } else if (Is(token, "BEGIN_IN_COLORS")) {
        ReadInColorNames(token);
    } else if (Is(token, "BEGIN_IN_COLOR")) {
        ReadInColor(token);
    } else if (Is(token, "RANDOM_SEED")) {
        handler.TakeSeed(NextNumber(token));
    } else {
        handler.SkipToken(token);
    }
}

void PatternReader::ReadOutInkNames(const PatternToken& opening)
{
    handler.BeginNames(NameList::OutInks, opening);
    std::int32_t index = 0;
    while (const PatternToken* token = NextTokenOf(opening, "END_OUT_INKS")) {
        outInkNames[UpperCase(token->text)] = index;
        handler.TakeName(NameList::OutInks, index++, *token);
    }
}

void PatternReader::ReadInColorNames(const PatternToken& opening)
{
    handler.BeginNames(NameList::InColors, opening);
    handler.AllocateInColors(0);
    std::int32_t count = 0;
    while (const PatternToken* token = NextTokenOf(opening, "END_IN_COLORS")) {
        inColorNames[UpperCase(token->text)] = count;
        handler.TakeName(NameList::InColors, count++, *token);
    }
    if (!closed && !inColorNames.empty())
        handler.Refuse(PatternRefusal::InColorsWithoutEnd, opening);
    FinishInColorNames(opening, count);
}

void PatternReader::FinishInColorNames(const PatternToken& opening, std::int32_t count)
{
    // Names of an earlier list stay in the table, and each of them can be selected.
    std::int32_t needed = static_cast<std::int32_t>(inColorNames.size());
    for (const auto& [name, index] : inColorNames)
        needed = std::max(needed, index + 1);
    if (needed > count)
        handler.Refuse(PatternRefusal::InColorWithoutRecord, opening);
    handler.AllocateInColors(std::max(needed, count));
}

void PatternReader::ReadInColor(const PatternToken& opening)
{
    std::int32_t inColor = noIndex;
    while (const PatternToken* token = NextTokenOf(opening, "END_IN_COLOR")) {
        if (Is(*token, "BEGIN_INKS")) {
            ReadInks(*token, inColor);
        } else if (Is(*token, "BEGIN_VALUES")) {
            if (inColor == noIndex)
                handler.SkipValues(*token, opening);
            ReadValues(*token, inColor);
        } else if (const std::int32_t found = FindName(NameList::InColors, *token);
                   found != noIndex) {
            inColor = found;
            handler.SelectInColor(inColor, *token);
        }
    }
}

void PatternReader::ReadInks(const PatternToken& opening, std::int32_t inColor)
{
    std::int32_t position = 0;
    while (const PatternToken* token = NextTokenOf(opening, "END_INKS")) {
        const std::int32_t outInk = FindName(NameList::OutInks, *token);
        if (outInk == noIndex)
            continue;
        if (inColor == noIndex)
            handler.Refuse(PatternRefusal::InksWithoutInColor, opening);
        else if (position == rules.positions)
            handler.Refuse(PatternRefusal::TooManyPositions, *token);
        else
            handler.TakeInk(inColor, position++, outInk, *token);
    }
    if (closed && inColor != noIndex)
        handler.TakeInkCount(inColor, position);
}

void PatternReader::ReadValues(const PatternToken& opening, std::int32_t inColor)
{
    if (inColor != noIndex)
        handler.BeginValueLines(inColor);
    while (const PatternToken* token = NextTokenOf(opening, "END_VALUES")) {
        if (inColor == noIndex)
            continue;
        ValueLine line;
        if (ReadValueLine(*token, line))
            handler.TakeValueLine(inColor, line);
        else
            handler.TakeBrokenLine(inColor, line);
    }
}

bool PatternReader::ReadValueLine(const PatternToken& stepToken, ValueLine& line)
{
    line.stepToken = &stepToken;
    line.step = ReadNumber(stepToken.text);
    line.hasSuffix = !stepToken.text.empty() && stepToken.text.back() == '+';
    bool isSound = line.step >= 0 && line.step < stepsOfInColor;
    if (!isSound)
        handler.Refuse(PatternRefusal::StepOutOfRange, stepToken);

    line.ratioToken = NextTokenOf(line);
    if (line.ratioToken == nullptr)
        return false;
    isSound = ReadWeights(line) && isSound;

    for (std::int32_t alternative = 0; alternative < line.count; ++alternative) {
        const PatternToken* entry = NextTokenOf(line);
        if (entry == nullptr)
            return false;
        line.entryTokens[static_cast<std::size_t>(alternative)] = entry;
        isSound = ReadEntry(alternative, line) && isSound;
    }
    return isSound;
}

bool PatternReader::ReadWeights(ValueLine& line) const
{
    std::string_view token = line.ratioToken->text;
    std::int64_t sum = 0;
    bool isSound = true;
    bool more = true;
    while (more && line.count < rules.weightsOfLine) {
        const std::int32_t weight = ReadNumber(token);
        isSound = isSound && weight >= 0;
        line.weights[static_cast<std::size_t>(line.count++)] = weight;
        sum += weight;
        const std::size_t separator = token.find(':');
        more = separator != std::string_view::npos;
        if (more)
            token.remove_prefix(separator + 1);
    }
    isSound = isSound && sum > 0 && sum <= static_cast<std::int64_t>(rules.highestWeightSum);
    line.weightSum = isSound ? static_cast<std::uint32_t>(sum) : 0;
    if (isSound)
        return true;
    handler.Refuse(PatternRefusal::WeightSumOutOfRange, *line.ratioToken);
    return false;
}

bool PatternReader::ReadEntry(std::int32_t alternative, ValueLine& line) const
{
    const auto index = static_cast<std::size_t>(alternative);
    std::string_view token = line.entryTokens[index]->text;
    const bool isSupported = version >= rules.lowestVersion;
    if (!isSupported)
        handler.Refuse(PatternRefusal::UnsupportedVersion, *line.entryTokens[index]);
    const bool namesPosition =
        rules.entriesAlwaysNamePosition ? isSupported : version == versionOfNamedPositions;

    std::int32_t position = namesPosition ? 0 : alternative;
    const std::size_t separator = token.find('-');
    if (namesPosition && separator != std::string_view::npos) {
        position = ReadNumber(token.substr(0, separator));
        token.remove_prefix(separator + 1);
    }
    line.positions[index] = position;
    line.values[index] = ReadNumber(token);
    if (position < rules.positions)
        return true;
    handler.Refuse(PatternRefusal::PositionOutOfRange, *line.entryTokens[index]);
    return false;
}

bool PatternReader::Is(const PatternToken& token, std::string_view keyword) const
{
    return token.text == keyword || handler.Means(token, keyword);
}

std::int32_t PatternReader::FindName(NameList list, const PatternToken& token) const
{
    const NameTable& names = list == NameList::OutInks ? outInkNames : inColorNames;
    const auto found = names.find(UpperCase(token.text));
    return found != names.end() ? found->second : handler.FindMeantName(list, token);
}

const PatternToken* PatternReader::NextToken()
{
    return cursor < tokens->size() ? &(*tokens)[cursor++] : nullptr;
}

const PatternToken* PatternReader::NextTokenOf(const PatternToken& opening,
                                               std::string_view closing)
{
    closed = true;
    while (const PatternToken* token = NextToken()) {
        if (token->text == closing)
            return nullptr;
        switch (handler.FindEnd(*token, opening, closing)) {
        case SectionEnd::None:
            return token;
        case SectionEnd::Skipped:
            break;
        case SectionEnd::Before:
            --cursor;
            return nullptr;
        case SectionEnd::Here:
            return nullptr;
        }
    }
    closed = false;
    handler.TakeOpenSection(opening, closing);
    return nullptr;
}

const PatternToken* PatternReader::NextTokenOf(const ValueLine& line)
{
    const PatternToken* token = NextToken();
    if (token == nullptr || !handler.BreaksLine(*token, line))
        return token;
    --cursor;
    return nullptr;
}

std::int32_t PatternReader::NextNumber(const PatternToken& keyword)
{
    const PatternToken* token = NextToken();
    const bool isNumber = handler.IsNumberOf(keyword, token);
    if (token == nullptr)
        return 0;
    if (isNumber)
        return ReadNumber(token->text);
    --cursor;
    return 0;
}

} // namespace zvk::Pelkraft
