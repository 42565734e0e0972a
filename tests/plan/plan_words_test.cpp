#include "plan/plan_words.h"

#include "tests/plan/planned_case.h"

#include <gtest/gtest.h>

// A plan's words are held against what each conversion is, written out by hand.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Steps = std::vector<std::string>;

// Without vector code every level is plain.
std::string LevelText(const char* instructions, int level)
{
    return std::string(hasVectorRoad ? instructions : "plain code") + " (level " +
           std::to_string(level) + ")";
}

struct Described
{
    NaiveGeometry from;
    NaiveGeometry to;
    NaiveOperation operation;
    int level;
    const char* road;
    Steps steps;
    std::uint64_t bytesRead;
    std::uint64_t bytesWritten;
};

void ExpectWords(const std::vector<Described>& all)
{
    for (const auto& [from, to, operation, level, road, steps, bytesRead, bytesWritten] : all) {
        const ConversionCase tested = CaseOf(from, to, level, operation);
        SCOPED_TRACE(Describe(tested) + ", level " + std::to_string(level));
        const PlanWords words = Describe(PlanOf(tested, level));
        EXPECT_EQ(road, words.road);
        EXPECT_EQ(steps, words.steps);
        EXPECT_EQ(bytesRead, words.bytesRead);
        EXPECT_EQ(bytesWritten, words.bytesWritten);
    }
}

TEST(PlanWords, NameOnePassForEachSweepOverTheRow)
{
    ExpectWords({
        {{1000, 4, 8, false},
         {1000, 4, 8, true},
         {},
         7,
         "direct",
         {"split 4 channels of 8 bits"},
         4000,
         4000},
        {{50, 3, 10, false}, {50, 3, 10, false}, {}, 6, "direct", {"copy the row"}, 300, 300},
        {{50, 3, 2, true}, {50, 3, 2, true}, {}, 0, "direct", {"copy the planes"}, 39, 39},
        {{50, 3, 8, true}, {50, 3, 16, true}, {}, 3, "direct", {"widen to 16 bits"}, 150, 300},
        {{99, 2, 16, false}, {99, 2, 8, false}, {}, 3, "direct", {"narrow to 8 bits"}, 396, 198},
        {{99, 1, 16, true},
         {99, 1, 1, true},
         {},
         6,
         "direct",
         {"narrow and pack to 1 bit"},
         198,
         13},
        {{99, 2, 8, true}, {99, 2, 2, true}, {}, 3, "direct", {"pack to 2 bits"}, 198, 50},
        {{99, 4, 8, false},
         {99, 4, 16, true},
         {},
         6,
         "direct",
         {"split 4 channels and widen to 16 bits"},
         396,
         792},
        {{99, 3, 16, false},
         {99, 3, 8, true},
         {},
         7,
         "direct",
         {"narrow to 8 bits and split 3 channels"},
         594,
         297},
    });
}

TEST(PlanWords, PutTheFewestBytesOnTheWay)
{
    ExpectWords({
        {{1000, 4, 16, true},
         {1000, 4, 8, false},
         {},
         6,
         "direct",
         {"narrow to 8 bits", "merge 4 channels of 8 bits"},
         8000,
         4000},
        {{1000, 17, 8, true},
         {1000, 17, 16, false},
         {},
         3,
         "direct",
         {"merge 17 channels of 8 bits", "widen to 16 bits"},
         17000,
         34000},
        // Pixels of 300 bytes do not stand in the tile.
        {{10, 300, 8, true},
         {10, 300, 16, false},
         {},
         3,
         "direct",
         {"widen to 16 bits", "merge 300 channels of 16 bits"},
         3000,
         6000},
        {{999, 3, 16, false},
         {999, 3, 1, true},
         {},
         7,
         "direct",
         {"narrow to 8 bits", "split 3 channels and pack to 1 bit"},
         5994,
         375},
        {{999, 5, 8, false},
         {999, 5, 2, true},
         {},
         3,
         "direct",
         {"split 5 channels of 8 bits", "pack to 2 bits"},
         4995,
         1250},
    });
}

TEST(PlanWords, DescribeUnpacking)
{
    const int level = hasVectorRoad ? 3 : 0;
    ExpectWords({
        {{999, 16, 1, true},
         {999, 16, 8, true},
         {},
         level,
         "direct",
         {"unpack from 1 bit"},
         2000,
         15984},
        {{999, 16, 2, true},
         {999, 16, 16, true},
         {},
         level,
         "direct",
         {"unpack from 2 bits and widen to 16 bits"},
         4000,
         31968},
        {{999, 16, 2, true},
         {999, 16, 8, false},
         {},
         level,
         "direct",
         {"unpack from 2 bits", "merge 16 channels of 8 bits"},
         4000,
         15984},
        {{50, 4, 2, true},
         {50, 4, 16, false},
         {},
         0,
         "chain",
         {"load chunks", "unpack from 2 bits", "widen to 16 bits", "save chunks"},
         52,
         400},
    });
}

TEST(PlanWords, DescribeTurns)
{
    ExpectWords({
        {{100, 3, 8, false},
         {400, 3, 8, false},
         RepeatBy(4),
         6,
         "direct",
         {"repeat 4 times the pixels"},
         300,
         1200},
        {{100, 3, 8, false},
         {301, 3, 8, false},
         RepeatBy(-4),
         6,
         "direct",
         {"mirror and repeat 4 times the pixels"},
         228,
         903},
        {{70, 3, 8, true},
         {70, 3, 8, true},
         RepeatBy(-1),
         3,
         "direct",
         {"mirror the planes"},
         210,
         210},
        {{999, 3, 2, true},
         {999, 3, 2, true},
         RepeatBy(-1),
         hasVectorRoad ? 3 : 0,
         hasVectorRoad ? "direct" : "chain",
         hasVectorRoad ? Steps{"mirror the packed planes"}
                       : Steps{"load chunks", "mirror", "unpack from 2 bits", "pack to 2 bits",
                               "save chunks"},
         750,
         750},
        {{70, 3, 8, true},
         {70, 3, 8, false},
         RepeatBy(-1),
         3,
         "direct",
         {"merge 3 channels of 8 bits", "mirror the pixels"},
         210,
         210},
        {{50, 4, 1, true},
         {100, 4, 1, true},
         RepeatBy(-2),
         0,
         "chain",
         {"load chunks", "mirror", "unpack from 1 bit", "repeat 2 times", "pack to 1 bit",
          "save chunks"},
         28,
         52},
    });
}

TEST(PlanWords, DescribeMaps)
{
    NaiveOperation mirroredMap = MapTo({4, 0});
    mirroredMap.factor = -1;
    ExpectWords({
        {{70, 3, 8, false},
         {70, 3, 8, false},
         MapTo({2, -1, 0}),
         7,
         "direct",
         {"map the pixels"},
         210,
         210},
        // Two of the five planes are read.
        {{70, 5, 8, true},
         {70, 4, 8, true},
         MapTo({2, -1, 0, 0}),
         7,
         "direct",
         {"map the planes", "copy the planes"},
         140,
         280},
        {{70, 5, 8, true},
         {70, 4, 8, false},
         MapTo({2, 1, 0, -5}),
         6,
         "direct",
         {"map the planes", "merge 4 channels of 8 bits"},
         210,
         280},
        {{70, 5, 16, false},
         {70, 3, 16, true},
         MapTo({4, 0, 4}),
         3,
         "direct",
         {"split and map to 3 channels of 16 bits"},
         700,
         420},
        {{70, 3, 8, false},
         {70, 65, 8, false},
         MapTo(std::vector<int>(65, 1)),
         7,
         "chain",
         {"load chunks", "map", "save chunks"},
         210,
         4550},
        // One step maps and mirrors, and leaves fewer samples to be split.
        {{70, 5, 8, false},
         {70, 2, 8, true},
         mirroredMap,
         3,
         "direct",
         {"map, mirror the pixels", "split 2 channels of 8 bits"},
         350,
         140},
        {{70, 5, 8, false},
         {70, 2, 8, false},
         mirroredMap,
         3,
         "direct",
         {"map, mirror the pixels"},
         350,
         140},
        {{70, 5, 8, true},
         {70, 2, 8, true},
         mirroredMap,
         3,
         "direct",
         {"map the planes", "mirror the planes"},
         140,
         140},
        // Pixels of 80 bytes are too long for one step.
        {{70, 40, 16, false},
         {70, 2, 16, true},
         mirroredMap,
         3,
         "direct",
         {"split and map to 2 channels of 16 bits", "mirror the planes"},
         5600,
         280},
        {{70, 3, 16, false},
         {70, 2, 8, false},
         MapTo({3, 1}),
         7,
         "chain",
         {"load chunks", "narrow to 8 bits", "map", "save chunks"},
         420,
         140},
        // The entry beyond the source names no plane to read.
        {{70, 3, 8, true},
         {70, 2, 16, true},
         MapTo({3, 1}),
         7,
         "chain",
         {"load chunks", "map", "widen to 16 bits", "save chunks"},
         70,
         280},
    });
}

TEST(PlanWords, CountThePixelsThatBothRowsHave)
{
    const Steps steps{"split 3 channels of 8 bits"};
    ExpectWords({
        {{90, 3, 8, false}, {50, 3, 8, true}, {}, 3, "direct", steps, 150, 150},
        {{50, 3, 8, false}, {90, 3, 8, true}, {}, 3, "direct", steps, 150, 150},
        {{0, 3, 8, false}, {90, 3, 8, true}, {}, 3, "none", {}, 0, 0},
        {{90, 0, 8, false}, {90, 0, 8, true}, {}, 3, "none", {}, 0, 0},
    });
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
    EXPECT_EQ(LevelText("AVX2", 6), LevelOf(from, to, 6));
    EXPECT_EQ(LevelText("AVX-512", 7), LevelOf(from, to, 7));
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
