#include "pattern/field_walk.h"
#include "pattern/pattern_engine_sse.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/pattern/pattern_support.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <iostream>
#include <memory>
#include <random>
#include <string>

// The processor's level changes the methods, and leaves the bytes alone.
namespace zvk::Pelkraft::TestSupport {
namespace {

using FirstEngine = DotWeavePatternEngineSse<RandomPointer<SseTransformation>>;
using SecondEngine = DotWeavePatternEngineSse<RandomPointerNG<SseTransformation>>;

// In this pattern the last in-colour feeds all out-inks.
std::string Fed(int inColors, int outInks, const std::string& version, const std::string& values)
{
    const std::string inks = Names(" X", outInks);
    return Head(version, Names(" C", inColors), inks) +
           InColor(Numbered("C", inColors - 1), inks, values);
}

class PatternLevels : public testing::Test
{
protected:
    ~PatternLevels() override { SystemTools::LimitSseVersion(INT_MAX); }

    // The result is false where the processor lacks the level.
    static bool Limit(int level)
    {
        SystemTools::LimitSseVersion(level);
        if (SystemTools::GetSseVersion() == level)
            return true;
        std::cout << "level " << level << ": not run, the processor lacks it\n";
        return false;
    }
};

SseRowMethod MethodOn(Road road, const std::string& text)
{
    std::string own = text;
    const auto engine = std::make_unique<FirstEngine>(road);
    engine->InitFromText(own.data());
    return engine->GetRowMethod();
}

TEST_F(PatternLevels, HaveAMethodForEachRoad)
{
    for (int inColors = 1; inColors <= 16; ++inColors)
        for (int outInks = 1; outInks <= 16; ++outInks) {
            SCOPED_TRACE(testing::Message() << inColors << " to " << outInks);
            const std::string text = Fed(inColors, outInks, "2", "1 1 0-1\n2 1 0-2");
            EXPECT_EQ(MethodOn(Road::Portable, text), GetSseRowMethodPortable());
            if constexpr (hasVectorRoad) {
                EXPECT_EQ(MethodOn(Road::Vector, text), GetSseRowMethodVector());
            }
            if constexpr (hasWideRoads) {
                const bool isShort = outInks <= 4 || (outInks <= 8 && inColors <= 4);
                EXPECT_EQ(MethodOn(Road::Avx2, text),
                          isShort ? GetShortWordMethodAvx2() : GetSseRowMethodVector());
                EXPECT_EQ(MethodOn(Road::Avx512, text), GetWideWordMethodAvx512());
            }
        }
}

TEST_F(PatternLevels, LookUpNoStepsWithoutALimit)
{
    if constexpr (hasWideRoads) {
        const std::string text = Fed(2, 3, "2", "");
        EXPECT_EQ(MethodOn(Road::Avx2, text), GetSseRowMethodVector());
        EXPECT_EQ(MethodOn(Road::Avx512, text), GetSseRowMethodVector());
    }
}

template <typename EngineClass>
SseRowMethod MethodOf(const DotWeavePattern& pattern)
{
    // The binary interface promises that the engine stands in front.
    DotWeavePatternEngine* engine = nullptr;
    // NOLINTNEXTLINE(bugprone-sizeof-expression): the pointer itself is copied.
    std::memcpy(&engine, static_cast<const void*>(&pattern), sizeof engine);
    const auto* const vectorEngine = dynamic_cast<EngineClass*>(engine);
    return vectorEngine != nullptr ? vectorEngine->GetRowMethod() : nullptr;
}

// Gives the method for 8 out-inks; null where the portable engine, which has none, is taken.
SseRowMethod MethodAt(int level)
{
    if constexpr (hasWideRoads)
        if (level >= 6)
            return level == 6 ? GetShortWordMethodAvx2() : GetWideWordMethodAvx512();
    if constexpr (hasVectorRoad)
        if (level >= 3)
            return GetSseRowMethodVector();
    return nullptr;
}

TEST_F(PatternLevels, ChooseTheRoadOfTheAutomaticEngineAlone)
{
    if constexpr (hasVectorRoad) {
        const std::string first = Fed(2, 8, "2", "1 1:1 0-1 0-2");
        const std::string second = Fed(2, 8, "3", "1 1:1 0-1 0-2");
        for (int level = 0; level <= 7; ++level) {
            if (!Limit(level))
                continue;
            const SseRowMethod method = MethodAt(level);
            EXPECT_EQ(MethodOf<FirstEngine>(Load(first, DotWeavePattern::Automatic)), method);
            EXPECT_EQ(MethodOf<SecondEngine>(Load(second, DotWeavePattern::Automatic)), method);
            EXPECT_EQ(MethodOf<FirstEngine>(Load(first, DotWeavePattern::Sse)),
                      GetSseRowMethodVector());
            EXPECT_EQ(MethodOf<SecondEngine>(Load(second, DotWeavePattern::Sse)),
                      GetSseRowMethodVector());
        }
    }
}

// The last of these rows goes beyond the end of the field.
void ExpectNaiveRows(const NaivePattern& description, const NaiveSimulation& fresh)
{
    NaiveSimulation naive = fresh;
    const std::string text = description.Text();
    DotWeavePattern pattern = Load(text, DotWeavePattern::Automatic);
    std::mt19937 random(7);
    for (const std::size_t pixels : {1U, 8U, 61U, 500U, 120000U}) {
        const Bytes source =
            RandomSteps(pixels * description.inColors.size(), static_cast<std::uint32_t>(random()));
        ASSERT_TRUE(Apply(pattern, source) == naive.Row(source)) << pixels << "\n" << text;
    }
}

TEST_F(PatternLevels, GiveTheSameBytes)
{
    std::mt19937 random(815);
    int tried = 0;
    for (int round = 0; tried < 12; ++round) {
        const NaivePattern description = RandomPattern(random, 2 + round % 2);
        const std::uint64_t combinations = NaiveSimulation::CountCombinations(description);
        if (combinations < 2 || combinations > 1024 ||
            Refusal(description.Text(), DotWeavePattern::Sse) != "nothing")
            continue;
        ++tried;
        const NaiveSimulation naive(description);
        for (const int level : {0, 3, 6, 7}) {
            SCOPED_TRACE(testing::Message() << "level " << level);
            if (Limit(level))
                ExpectNaiveRows(description, naive);
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
