#include "pelkraft/dot_weave_pattern.h"
#include "tests/support/random_bytes.h"
#include "tests/tools/pattern_texts.h"
#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/pattern_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

// The program's own reading of a text against what the library does with the same text.
namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Client;

// A stream of small numbers out of fixed random bytes.
class Dice
{
public:
    explicit Dice(std::uint32_t seed) : bytes(RandomBytes(4096, seed)) {}
    int Below(int limit)
    {
        const int high = bytes[at % bytes.size()];
        const int low = bytes[(at + 1) % bytes.size()];
        at += 2;
        return (high * 256 + low) % limit;
    }

private:
    std::vector<unsigned char> bytes;
    std::size_t at = 0;
};

void WriteInColour(std::ostream& text, Dice& dice, int inColour, int outInks, bool drawn)
{
    text << "BEGIN_IN_COLOR C" << inColour << "\nBEGIN_INKS";
    const int fed = 1 + dice.Below(3);
    for (int i = 0; i < fed; ++i)
        text << " Ink" << dice.Below(outInks);
    text << " END_INKS\nBEGIN_VALUES\n";
    const char* const ratios[] = {"1", "1", "1:1", "1:3", "2:2", "1:1:2", "3:1"};
    const int steps = 1 + dice.Below(7);
    for (int step = 1; step <= steps; ++step) {
        const std::string ratio = ratios[dice.Below(drawn ? 7 : 1)];
        text << step << " " << ratio;
        const auto entries = std::count(ratio.begin(), ratio.end(), ':') + 1;
        for (int i = 0; i < entries; ++i) {
            const int position = dice.Below(fed);
            text << " " << position << "-" << dice.Below(5);
        }
        text << "\n";
    }
    text << "END_VALUES END_IN_COLOR\n";
}

std::string RandomPattern(std::uint32_t seed)
{
    Dice dice(seed);
    const int outInks = 1 + dice.Below(6);
    const int inColours = 1 + dice.Below(4);
    std::ostringstream text;
    text << "DotWeavePattern VERSION " << 2 + seed % 2 << " RANDOM_SEED " << seed
         << "\nBEGIN_OUT_INKS";
    for (int i = 0; i < outInks; ++i)
        text << " Ink" << i;
    text << " END_OUT_INKS BEGIN_IN_COLORS";
    for (int i = 0; i < inColours; ++i)
        text << " C" << i;
    text << " END_IN_COLORS\n";
    for (int i = 0; i < inColours; ++i)
        WriteInColour(text, dice, i, outInks, seed % 5 != 0);
    return text.str();
}

bool Refuses(const PatternReport& report, std::size_t verdict, const std::string& words)
{
    return report.verdicts[verdict].refusal.value_or("") == words;
}

TEST(PatternModel, ForeseesWhatTheEnginesRefuse)
{
    std::set<std::string> met;
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
        const PatternText text("random", RandomPattern(seed));
        const PatternReport report(text);
        SCOPED_TRACE(text.Bytes());
        const bool channelFull =
            std::any_of(report.model.draws.begin(), report.model.draws.end(),
                        [](const InColourDraws& draws) { return draws.combinations > 32; });
        const bool full = !channelFull && report.model.combinations > 1024;
        const bool crowded = report.model.obstacle.empty() && report.model.places > 16;
        const bool nothingToDraw =
            report.outline.Generation() == 2 && report.model.combinations < 2;
        const bool unfed = report.outline.feeders.size() != report.outline.OutInkCount();
        for (const std::size_t drawing : {1U, 2U}) {
            EXPECT_EQ(channelFull,
                      Refuses(report, drawing, "numCombinations > MAXS_CHANNEL_RANDOM"));
            EXPECT_EQ(full, Refuses(report, drawing, "numCombinations > MAXS_TOTAL_RANDOM"));
        }
        EXPECT_EQ(crowded, Refuses(report, 2, "capacity exceeded in mComonTrans"));
        if (report.model.obstacle.empty()) {
            EXPECT_EQ(unfed, Refuses(report, 1, "out-ink without in-colour in pattern"));
            EXPECT_EQ(!crowded, !report.verdicts[2].refusal);
            EXPECT_EQ(!unfed && !nothingToDraw, !report.verdicts[1].refusal);
        }
        for (const EngineVerdict& verdict : report.verdicts)
            met.insert(verdict.refusal.value_or("loads"));
    }
    // The texts are worth something only if they lead everywhere.
    EXPECT_EQ(1U, met.count("capacity exceeded in mComonTrans"));
    EXPECT_EQ(1U, met.count("numCombinations > MAXS_CHANNEL_RANDOM"));
    EXPECT_EQ(1U, met.count("numCombinations > MAXS_TOTAL_RANDOM"));
    EXPECT_EQ(1U, met.count("out-ink without in-colour in pattern"));
    EXPECT_EQ(1U, met.count("pattern without random combinations"));
    EXPECT_EQ(1U, met.count("loads"));
}

TEST(PatternModel, MeasuresTheSharesThatItExpects)
{
    int measured = 0;
    for (std::uint32_t seed = 1; seed <= 120; ++seed) {
        const PatternText text("random", RandomPattern(seed));
        const PatternReport report(text);
        // A finding reports what the field itself can't keep, so that it is no measure.
        if (report.verdicts[1].refusal || report.model.fieldSkew > 1e-9 ||
            report.outline.Generation() == 1)
            continue;
        SCOPED_TRACE(text.Bytes());
        std::string refusal;
        const auto pattern = TryPattern(text, DotWeavePattern::X86, refusal);
        ASSERT_NE(nullptr, pattern);
        for (const StepShares& step : MeasureShares(report.outline, report.model, pattern.get())) {
            for (const InkShares& ink : step.inks) {
                for (const ValueShare& share : ink.values)
                    EXPECT_NEAR(share.expected, share.measured, 1e-9)
                        << step.inColour << " " << step.step << " " << ink.outInk;
            }
        }
        ++measured;
    }
    EXPECT_GT(measured, 10);
}

TEST(PatternModel, CountsAndNamesAsTheLibraryDoes)
{
    const char* const texts[] = {
        smallPattern,
        fixedPattern,
        // A name again, and a colour without a block.
        "DotWeavePattern VERSION 2 BEGIN_OUT_INKS A \"B c\" a END_OUT_INKS "
        "BEGIN_IN_COLORS X Y END_IN_COLORS BEGIN_IN_COLOR x BEGIN_INKS a \"b C\" END_INKS "
        "BEGIN_VALUES 1 1 0-3 3+ 1:1 1-4 0-5 2 1 0-9 END_VALUES END_IN_COLOR",
    };
    for (const char* words : texts) {
        const PatternText text("given", words);
        const PatternReport report(text);
        std::string refusal;
        const auto pattern = TryPattern(text, DotWeavePattern::Sse, refusal);
        ASSERT_NE(nullptr, pattern) << refusal;
        EXPECT_EQ(pattern->GetInColorCount(), static_cast<int>(report.outline.InColourCount()));
        EXPECT_EQ(pattern->GetOutColorCount(), static_cast<int>(report.outline.OutInkCount()));
        for (int i = 0; i < pattern->GetInColorCount(); ++i)
            EXPECT_EQ(pattern->GetNumberOfStepsForInColor(i),
                      (report.outline.Record(static_cast<std::size_t>(i)).numSteps - 1) & 0xFF);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
