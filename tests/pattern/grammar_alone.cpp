#include "pattern/early_check.h"
#include "pattern/pattern_combinations.h"
#include "pattern/pattern_reader.h"
#include "pattern/shuffled_field.h"
#include "pattern/sse_transformation_builder.h"

#include <cstdio>
#include <memory>
#include <string>

// The grammar without the library, as a page in a browser has it: this program links the static
// target and the standard library alone.
namespace {

using namespace zvk::Pelkraft;

// Notes the places where the text breaks a rule, and builds the model of what is left.
class Notes final : public PatternHandler
{
public:
    void TakeVersion(std::int32_t, const PatternToken&) override {}
    void TakeSeed(std::int32_t) override {}
    void AllocateInColors(std::int32_t count) override { records.Allocate(count); }
    void SelectInColor(std::int32_t inColor, const PatternToken&) override
    {
        records.Select(inColor).steps[0].numRandoms = 1;
    }
    void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                 const PatternToken&) override
    {
        records.Select(inColor).inks[static_cast<std::size_t>(position)] = outInk;
    }
    void TakeInkCount(std::int32_t inColor, std::int32_t count) override
    {
        records.Select(inColor).numInks = count;
    }
    void BeginValueLines(std::int32_t) override {}
    void TakeValueLine(std::int32_t inColor, const ValueLine& line) override
    {
        records.Select(inColor).Store(line);
    }
    void Refuse(PatternRefusal refusal, const PatternToken& at) override
    {
        said += at.text + ": " + TextOf(refusal) + "; ";
    }

    InColorRecords<InColorRecord> records;
    std::string said;
};

bool Check(bool holds, const char* what)
{
    if (!holds)
        std::printf("%s\n", what);
    return holds;
}

} // namespace

int main()
{
    const std::string text = "DotWeavePattern VERSION 3 BEGIN_OUT_INKS X Y END_OUT_INKS\n"
                             "BEGIN_IN_COLORS A END_IN_COLORS BEGIN_IN_COLOR A\n"
                             "BEGIN_INKS X Y END_INKS BEGIN_VALUES\n"
                             "1 1:3 0-4 1-5\n9 1 0-1\n2 -1:3 0-1 0-2\n2 1 16-0\n2 1 0-7\n"
                             "END_VALUES END_IN_COLOR";
    Notes notes;
    NameTable inColors;
    NameTable outInks;
    PatternReader(mainRules, inColors, outInks, notes).Read(CutTokens(text, patternComment));
    BuildChannelCombinations(*notes.records.Find(0));
    const auto combinations = std::make_unique<PatternCombinations>();
    const std::uint32_t count = BuildPatternCombinations(notes.records, 1, *combinations);
    const std::uint32_t denominator = FindFieldDenominator(*combinations, count, 1);

    const bool places = Check(notes.said == "9: step out of range in pattern; "
                                            "-1:3: sum of weights out of range in pattern; "
                                            "16-0: ink position out of range in pattern; ",
                              notes.said.c_str());
    const bool model = Check(count == 2 && CountStoredValues((*combinations)[0]) == 2, "the model");
    const bool field = Check(MeasureField(denominator).Size() == 100004, "the field");
    return places && model && field ? 0 : 1;
}
