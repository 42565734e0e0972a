#include "plan/plan_words.h"

#include "tests/plan/planned_case.h"

#include <gtest/gtest.h>

// A plan's words are held against what each conversion is, written out by hand.
namespace zvk::Pelkraft::TestSupport {
namespace {

// Without vector code every level is plain.
std::string LevelText(const char* instructions, int level)
{
    return std::string(hasVectorRoad ? instructions : "plain code") + " (level " +
           std::to_string(level) + ")";
}

// The road, its steps, and the bytes that are read and written.
std::string TextOf(const PlanWords& words)
{
    std::string text = words.road;
    for (const std::string& step : words.steps)
        text.append(&step == &words.steps.front() ? ": " : "; ").append(step);
    return text + ": " + std::to_string(words.bytesRead) + " to " +
           std::to_string(words.bytesWritten);
}

void ExpectWords(const NaiveGeometry& from, const NaiveGeometry& to, int level,
                 const char* expected, const NaiveOperation& operation = {})
{
    const ConversionCase tested = CaseOf(from, to, level, operation);
    EXPECT_EQ(expected, TextOf(Describe(PlanOf(tested, level))))
        << Describe(tested) << ", level " << level;
}

TEST(PlanWords, NameOnePassForEachSweepOverTheRow)
{
    ExpectWords({1000, 4, 8, false}, {1000, 4, 8, true}, 7,
                "direct: split 4 channels of 8 bits: 4000 to 4000");
    ExpectWords({50, 3, 10, false}, {50, 3, 10, false}, 6, "direct: copy the row: 300 to 300");
    ExpectWords({50, 3, 2, true}, {50, 3, 2, true}, 0, "direct: copy the planes: 39 to 39");
    ExpectWords({50, 3, 8, true}, {50, 3, 16, true}, 3, "direct: widen to 16 bits: 150 to 300");
    ExpectWords({99, 2, 16, false}, {99, 2, 8, false}, 3, "direct: narrow to 8 bits: 396 to 198");
    ExpectWords({99, 1, 16, true}, {99, 1, 1, true}, 6,
                "direct: narrow and pack to 1 bit: 198 to 13");
    ExpectWords({99, 2, 8, true}, {99, 2, 2, true}, 3, "direct: pack to 2 bits: 198 to 50");
    ExpectWords({99, 4, 8, false}, {99, 4, 16, true}, 6,
                "direct: split 4 channels and widen to 16 bits: 396 to 792");
    ExpectWords({99, 3, 16, false}, {99, 3, 8, true}, 7,
                "direct: narrow to 8 bits and split 3 channels: 594 to 297");
}

TEST(PlanWords, PutTheFewestBytesOnTheWay)
{
    ExpectWords({1000, 4, 16, true}, {1000, 4, 8, false}, 6,
                "direct: narrow to 8 bits; merge 4 channels of 8 bits: 8000 to 4000");
    ExpectWords({1000, 17, 8, true}, {1000, 17, 16, false}, 3,
                "direct: merge 17 channels of 8 bits; widen to 16 bits: 17000 to 34000");
    // Pixels of 300 bytes do not stand in the tile.
    ExpectWords({10, 300, 8, true}, {10, 300, 16, false}, 3,
                "direct: widen to 16 bits; merge 300 channels of 16 bits: 3000 to 6000");
    ExpectWords({999, 3, 16, false}, {999, 3, 1, true}, 7,
                "direct: narrow to 8 bits; split 3 channels and pack to 1 bit: 5994 to 375");
    ExpectWords({999, 5, 8, false}, {999, 5, 2, true}, 3,
                "direct: split 5 channels of 8 bits; pack to 2 bits: 4995 to 1250");
}

TEST(PlanWords, DescribeUnpacking)
{
    const int level = hasVectorRoad ? 3 : 0;
    ExpectWords({999, 16, 1, true}, {999, 16, 8, true}, level,
                "direct: unpack from 1 bit: 2000 to 15984");
    ExpectWords({999, 16, 2, true}, {999, 16, 16, true}, level,
                "direct: unpack from 2 bits and widen to 16 bits: 4000 to 31968");
    ExpectWords({999, 16, 2, true}, {999, 16, 8, false}, level,
                "direct: unpack from 2 bits; merge 16 channels of 8 bits: 4000 to 15984");
    ExpectWords({50, 4, 2, true}, {50, 4, 16, false}, 0,
                "chain: load chunks; unpack from 2 bits; widen to 16 bits; save chunks: 52 to 400");
}

TEST(PlanWords, DescribeTurns)
{
    ExpectWords({100, 3, 8, false}, {400, 3, 8, false}, 6,
                "direct: repeat 4 times the pixels: 300 to 1200", RepeatBy(4));
    ExpectWords({100, 3, 8, false}, {301, 3, 8, false}, 6,
                "direct: mirror and repeat 4 times the pixels: 228 to 903", RepeatBy(-4));
    ExpectWords({70, 3, 8, true}, {70, 3, 8, true}, 3, "direct: mirror the planes: 210 to 210",
                RepeatBy(-1));
    ExpectWords({999, 3, 2, true}, {999, 3, 2, true}, hasVectorRoad ? 3 : 0,
                hasVectorRoad ? "direct: mirror the packed planes: 750 to 750"
                              : "chain: load chunks; mirror; unpack from 2 bits; pack to 2 bits; "
                                "save chunks: 750 to 750",
                RepeatBy(-1));
    ExpectWords({70, 3, 8, true}, {70, 3, 8, false}, 3,
                "direct: merge 3 channels of 8 bits; mirror the pixels: 210 to 210", RepeatBy(-1));
    ExpectWords(
        {50, 4, 1, true}, {100, 4, 1, true}, 0,
        "chain: load chunks; mirror; unpack from 1 bit; repeat 2 times; pack to 1 bit; save "
        "chunks: 28 to 52",
        RepeatBy(-2));
}

TEST(PlanWords, DescribeMaps)
{
    ExpectWords({70, 3, 8, false}, {70, 3, 8, false}, 7, "direct: map the pixels: 210 to 210",
                MapTo({2, -1, 0}));
    // Two of the five planes are read.
    ExpectWords({70, 5, 8, true}, {70, 4, 8, true}, 7,
                "direct: map the planes; copy the planes: 140 to 280", MapTo({2, -1, 0, 0}));
    ExpectWords({70, 5, 8, true}, {70, 4, 8, false}, 6,
                "direct: map the planes; merge 4 channels of 8 bits: 210 to 280",
                MapTo({2, 1, 0, -5}));
    ExpectWords({70, 5, 16, false}, {70, 3, 16, true}, 3,
                "direct: split and map to 3 channels of 16 bits: 700 to 420", MapTo({4, 0, 4}));
    ExpectWords({70, 3, 8, false}, {70, 65, 8, false}, 7,
                "chain: load chunks; map; save chunks: 210 to 4550",
                MapTo(std::vector<int>(65, 1)));
    ExpectWords({70, 3, 16, false}, {70, 2, 8, false}, 7,
                "chain: load chunks; narrow to 8 bits; map; save chunks: 420 to 140",
                MapTo({3, 1}));
    // The entry beyond the source names no plane to read.
    ExpectWords({70, 3, 8, true}, {70, 2, 16, true}, 7,
                "chain: load chunks; map; widen to 16 bits; save chunks: 70 to 280", MapTo({3, 1}));
}

TEST(PlanWords, DescribeMirroredMaps)
{
    NaiveOperation mirroredMap = MapTo({4, 0});
    mirroredMap.factor = -1;
    ExpectWords({70, 5, 8, false}, {70, 2, 8, false}, 3,
                "direct: map, mirror the pixels: 350 to 140", mirroredMap);
    // One step maps and mirrors, and leaves fewer samples to be split.
    ExpectWords({70, 5, 8, false}, {70, 2, 8, true}, 3,
                "direct: map, mirror the pixels; split 2 channels of 8 bits: 350 to 140",
                mirroredMap);
    ExpectWords({70, 5, 8, true}, {70, 2, 8, true}, 3,
                "direct: map the planes; mirror the planes: 140 to 140", mirroredMap);
    // Pixels of 80 bytes are too long for one step.
    ExpectWords({70, 40, 16, false}, {70, 2, 16, true}, 3,
                "direct: split and map to 2 channels of 16 bits; mirror the planes: 5600 to 280",
                mirroredMap);
}

TEST(PlanWords, CountThePixelsThatBothRowsHave)
{
    ExpectWords({90, 3, 8, false}, {50, 3, 8, true}, 3,
                "direct: split 3 channels of 8 bits: 150 to 150");
    ExpectWords({50, 3, 8, false}, {90, 3, 8, true}, 3,
                "direct: split 3 channels of 8 bits: 150 to 150");
    ExpectWords({0, 3, 8, false}, {90, 3, 8, true}, 3, "none: 0 to 0");
    ExpectWords({90, 0, 8, false}, {90, 0, 8, true}, 3, "none: 0 to 0");
}

std::string LevelOf(const NaiveGeometry& from, const NaiveGeometry& to, int level,
                    const NaiveOperation& operation = {})
{
    return Describe(PlanOf(CaseOf(from, to, level, operation), level)).level;
}

TEST(PlanWords, NameTheInstructionsAndTheLevelThatWasAskedFor)
{
    const NaiveGeometry from{70, 3, 8, false};
    const NaiveGeometry to{70, 3, 8, true};
    EXPECT_EQ("plain code (level 0)", LevelOf(from, to, 0));
    EXPECT_EQ("plain code (level 2)", LevelOf(from, to, 2));
    EXPECT_EQ(LevelText("SSSE3", 3), LevelOf(from, to, 3));
    EXPECT_EQ(LevelText("SSSE3", 5), LevelOf(from, to, 5));
    EXPECT_EQ(LevelText(hasWideRoads ? "AVX2" : "SSSE3", 6), LevelOf(from, to, 6));
    EXPECT_EQ(LevelText(hasWideRoads ? "AVX-512" : "SSSE3", 7), LevelOf(from, to, 7));
    // The chain has no wider vectors.
    const NaiveOperation beyond = MapTo({3, 0, 1});
    EXPECT_EQ(LevelText("SSSE3", 6), LevelOf(from, to, 6, beyond));
    EXPECT_EQ(LevelText("SSSE3", 7), LevelOf(from, to, 7, beyond));
    EXPECT_EQ("plain code (level 1)", LevelOf(from, to, 1, beyond));
}

TEST(PlanWords, AreALineForEachStatement)
{
    const ConversionCase tested = CaseOf({999, 5, 8, false}, {999, 5, 2, true}, 0);
    EXPECT_EQ("road: direct, plain code (level 0)\n"
              "  split 5 channels of 8 bits\n"
              "  pack to 2 bits\n"
              "reads 4995 bytes, writes 1250 bytes\n",
              ToText(Describe(PlanOf(tested, 0))));
    const ConversionCase least = CaseOf({1, 1, 8, true}, {9, 1, 16, true}, 0);
    EXPECT_EQ("road: direct, plain code (level 0)\n"
              "  widen to 16 bits\n"
              "reads 1 byte, writes 2 bytes\n",
              ToText(Describe(PlanOf(least, 0))));
    const ConversionCase nothing = CaseOf({0, 1, 8, true}, {9, 1, 16, true}, 0);
    EXPECT_EQ("road: none, plain code (level 0)\n"
              "reads 0 bytes, writes 0 bytes\n",
              ToText(Describe(PlanOf(nothing, 0))));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
