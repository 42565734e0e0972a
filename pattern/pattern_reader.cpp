#include "pattern/pattern_reader.h"

#include "pattern/pattern_words.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedVersion = "unsupported pattern version";
constexpr const char* stepOutOfRange = "step out of range in pattern";
constexpr const char* positionOutOfRange = "ink position out of range in pattern";
constexpr const char* tooManyPositions = "too many ink positions in pattern";
constexpr const char* inksWithoutInColor = "BEGIN_INKS without in-colour in pattern";
constexpr const char* inColorsWithoutEnd = "BEGIN_IN_COLORS without END_IN_COLORS in pattern";
constexpr const char* inColorWithoutRecord = "in-colour without record in pattern";
constexpr const char* weightSumOutOfRange = "sum of weights out of range in pattern";

constexpr std::string_view headerWord = "DotWeavePattern";
constexpr std::int32_t versionOfNamedPositions = 2;
constexpr std::int32_t noInColor = -1;

} // namespace

PatternReader::PatternReader(const ReaderRules& newRules, NameTable& newInColorNames,
                             NameTable& newOutInkNames, IPatternSink& newSink)
    : rules(newRules), inColorNames(newInColorNames), outInkNames(newOutInkNames), sink(newSink)
{}

bool PatternReader::Read(const std::vector<PatternToken>& newTokens)
{
    if (newTokens.empty() || newTokens.front().text != headerWord)
        return false;
    tokens = &newTokens;
    cursor = 0;
    while (const PatternToken* token = NextToken())
        ReadTopLevel(*token);
    return true;
}

void PatternReader::ReadTopLevel(const PatternToken& token)
{
    if (token.text == "VERSION") {
        version = NextNumber();
        sink.TakeVersion(version);
    } else if (token.text == "BEGIN_OUT_INKS") {
        ReadOutInkNames();
    } else if (token.text == "BEGIN_IN_COLORS") {
        ReadInColorNames();
    } else if (token.text == "BEGIN_IN_COLOR") {
        ReadInColor();
    } else if (token.text == "RANDOM_SEED") {
        sink.TakeSeed(NextNumber());
    }
}

void PatternReader::ReadOutInkNames()
{
    std::int32_t index = 0;
    while (const PatternToken* token = NextTokenUpTo("END_OUT_INKS"))
        outInkNames[UpperCase(token->text)] = index++;
}

void PatternReader::ReadInColorNames()
{
    sink.AllocateInColors(0);
    std::int32_t count = 0;
    while (const PatternToken* token = NextToken()) {
        if (token->text == "END_IN_COLORS") {
            FinishInColorNames(count);
            return;
        }
        inColorNames[UpperCase(token->text)] = count++;
    }
    if (!inColorNames.empty())
        throw inColorsWithoutEnd;
}

void PatternReader::FinishInColorNames(std::int32_t count)
{
    // Names of an earlier list stay in the table, and each of them can be selected.
    if (inColorNames.size() > static_cast<std::size_t>(count))
        throw inColorWithoutRecord;
    for (const auto& [name, index] : inColorNames)
        if (index >= count)
            throw inColorWithoutRecord;
    sink.AllocateInColors(count);
}

void PatternReader::ReadInColor()
{
    std::int32_t inColor = noInColor;
    while (const PatternToken* token = NextTokenUpTo("END_IN_COLOR")) {
        if (token->text == "BEGIN_INKS") {
            ReadInks(inColor);
        } else if (token->text == "BEGIN_VALUES") {
            if (inColor == noInColor)
                SkipValues();
            else
                ReadValues(inColor);
        } else if (const auto found = inColorNames.find(UpperCase(token->text));
                   found != inColorNames.end()) {
            inColor = found->second;
            sink.SelectInColor(inColor);
        }
    }
}

void PatternReader::ReadInks(std::int32_t inColor)
{
    std::int32_t position = 0;
    while (const PatternToken* token = NextToken()) {
        if (token->text == "END_INKS") {
            if (inColor != noInColor)
                sink.TakeInkCount(inColor, position);
            return;
        }
        const auto found = outInkNames.find(UpperCase(token->text));
        if (found == outInkNames.end())
            continue;
        if (inColor == noInColor)
            throw inksWithoutInColor;
        if (position == rules.positions)
            throw tooManyPositions;
        sink.TakeInk(inColor, position++, found->second);
    }
}

void PatternReader::SkipValues()
{
    while (NextTokenUpTo("END_VALUES") != nullptr) {
    }
}

void PatternReader::ReadValues(std::int32_t inColor)
{
    sink.BeginValueLines(inColor);
    while (const PatternToken* token = NextTokenUpTo("END_VALUES")) {
        ValueLine line;
        // A line that the text breaks off is no line.
        if (ReadValueLine(*token, line))
            sink.TakeValueLine(inColor, line);
    }
}

bool PatternReader::ReadValueLine(const PatternToken& stepToken, ValueLine& line)
{
    line.step = ReadNumber(stepToken.text);
    line.hasSuffix = !stepToken.text.empty() && stepToken.text.back() == '+';
    if (line.step < 0 || line.step >= stepsOfInColor)
        throw stepOutOfRange;

    const PatternToken* weights = NextToken();
    if (weights == nullptr)
        return false;
    ReadWeights(weights->text, line);

    for (std::int32_t alternative = 0; alternative < line.count; ++alternative) {
        const PatternToken* entry = NextToken();
        if (entry == nullptr)
            return false;
        ReadEntry(entry->text, alternative, line);
    }
    return true;
}

void PatternReader::ReadWeights(std::string_view token, ValueLine& line) const
{
    std::int64_t sum = 0;
    bool more = true;
    while (more && line.count < rules.weightsOfLine) {
        const std::int32_t weight = ReadNumber(token);
        if (weight < 0)
            throw weightSumOutOfRange;
        line.weights[static_cast<std::size_t>(line.count++)] = weight;
        sum += weight;
        const std::size_t separator = token.find(':');
        more = separator != std::string_view::npos;
        if (more)
            token.remove_prefix(separator + 1);
    }
    if (sum == 0 || sum > static_cast<std::int64_t>(rules.highestWeightSum))
        throw weightSumOutOfRange;
    line.weightSum = static_cast<std::uint32_t>(sum);
}

void PatternReader::ReadEntry(std::string_view token, std::int32_t alternative,
                              ValueLine& line) const
{
    if (version < rules.lowestVersion)
        throw unsupportedVersion;
    const bool namesPosition =
        rules.entriesAlwaysNamePosition || version == versionOfNamedPositions;

    std::int32_t position = namesPosition ? 0 : alternative;
    const std::size_t separator = token.find('-');
    if (namesPosition && separator != std::string_view::npos) {
        position = ReadNumber(token.substr(0, separator));
        token.remove_prefix(separator + 1);
    }
    if (position >= rules.positions)
        throw positionOutOfRange;
    line.positions[static_cast<std::size_t>(alternative)] = position;
    line.values[static_cast<std::size_t>(alternative)] = ReadNumber(token);
}

const PatternToken* PatternReader::NextToken()
{
    return cursor < tokens->size() ? &(*tokens)[cursor++] : nullptr;
}

const PatternToken* PatternReader::NextTokenUpTo(std::string_view closingWord)
{
    const PatternToken* token = NextToken();
    return token != nullptr && token->text != closingWord ? token : nullptr;
}

std::int32_t PatternReader::NextNumber()
{
    const PatternToken* token = NextToken();
    return token != nullptr ? ReadNumber(token->text) : 0;
}

} // namespace zvk::Pelkraft
