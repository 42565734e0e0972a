#include "pattern/field_walk.h"
#include "pattern/reference_pattern.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_random.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

// Counts the questions for the setting, and keeps the default of the last one.
int questions = 0;
bool lastDefault = false;

} // namespace

// In the place of the library's, which can't answer with anything but the default that it is given.
namespace zvk::Pelkraft::Testonly {

bool ReadRandomOldSetting(bool byDefault)
{
    ++questions;
    lastDefault = byDefault;
    return false;
}

} // namespace zvk::Pelkraft::Testonly

namespace zvk::Pelkraft::TestSupport {
namespace {

class OpenReference : public Testonly::CDotWeavePattern<RandomField>
{
public:
    using CDotWeavePattern::mRandomOld;
};

TEST(ReferenceSetting, IsAskedForOnceAndKept)
{
    questions = 0;
    lastDefault = false;
    const OpenReference reference;
    EXPECT_FALSE(reference.mRandomOld);
    EXPECT_EQ(1, questions);
    EXPECT_TRUE(lastDefault);
}

TEST(ReferenceSetting, IsAskedForByTheEngineReferenceAlone)
{
    for (const Engine engine : {Engine::Automatic, Engine::X86, Engine::Sse, Engine::Reference}) {
        questions = 0;
        DotWeavePattern pattern = Load(exampleText, engine);
        Apply(pattern, Bytes(200, 1));
        EXPECT_EQ(engine == Engine::Reference ? 1 : 0, questions) << engine;
    }
}

TEST(ReferenceSetting, SaysInWhichWayAPatternDraws)
{
    const std::string values = "1 1:1 0-0 0-1";
    DotWeavePattern pattern = Load(Head("2", "A B", "X Y") + "RANDOM_SEED 11" +
                                       InColor("A", "X", values) + InColor("B", "Y", values),
                                   Engine::Reference);
    NaiveRand rand(11);
    for (std::uint32_t i = 0; i != NaiveJump(0) + 1U; ++i)
        rand();
    // In the newer way both in-colours take a digit of the pixel's number. In the older one they
    // take turns at a source.
    constexpr std::size_t pixels = 300;
    Bytes expected;
    for (std::size_t i = 0; i != pixels; ++i) {
        const std::uint32_t draw = rand();
        expected.push_back(static_cast<unsigned char>(draw % 2));
        expected.push_back(static_cast<unsigned char>(draw / 2 % 2));
    }
    EXPECT_EQ(expected, Apply(pattern, Bytes(2 * pixels, 1)));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
