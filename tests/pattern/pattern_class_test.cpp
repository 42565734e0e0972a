#include "pelkraft/dot_weave_pattern.h"

#include "pattern/field_walk.h"
#include "pattern/pattern_engine_portable.h"
#include "pattern/pattern_engine_sse.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_arena.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Engine allEngines[] = {DotWeavePattern::Automatic, DotWeavePattern::Reference,
                                 DotWeavePattern::X86, DotWeavePattern::Sse};

const std::string noColors =
    "wide: DotWeavePattern::Init invalid DotWeave pattern configuration file!";

static_assert(DotWeavePattern::Automatic == 0 && DotWeavePattern::Reference == 1 &&
              DotWeavePattern::X86 == 2 && DotWeavePattern::Sse == 3);
static_assert(std::is_same_v<std::underlying_type_t<DotWeavePattern::Engine>, int>);
static_assert(sizeof(DotWeavePattern) == 2 * sizeof(void*));
static_assert(!std::is_polymorphic_v<DotWeavePattern>);

std::string Listed(int inColors, int outInks)
{
    return Head("2", Names(" C", inColors), Names(" X", outInks));
}

TEST(DotWeavePattern, RefusesWhatTheEarlyCheckRefuses)
{
    for (const Engine engine : allEngines) {
        EXPECT_EQ(WhatIsThrown([=] { DotWeavePattern(nullptr, engine); }),
                  "wide: Internal Message: no input dotweave pattern");
        EXPECT_EQ(Refusal("", engine), "wide: Internal Message: no version in dotweave pattern");
        EXPECT_EQ(Refusal("DotWeavePattern VERSION", engine),
                  "wide: Internal Message: no version in dotweave pattern");
    }
    EXPECT_EQ(WhatIsThrown([] { DotWeavePattern(nullptr); }),
              "wide: Internal Message: no input dotweave pattern");
    // The text is checked before an engine is chosen.
    EXPECT_EQ(Refusal("", static_cast<Engine>(4)),
              "wide: Internal Message: no version in dotweave pattern");
}

TEST(DotWeavePattern, RefusesAnEngineItDoesNotKnow)
{
    // The engine is refused before the parser looks at the text.
    for (const int engine : {4, 5, 255, 1 << 30, -1})
        EXPECT_EQ(Refusal("VERSION 2", static_cast<Engine>(engine)),
                  "narrow: DotWeavePattern::Init unsupported engine")
            << engine;
}

TEST(DotWeavePattern, RefusesATextWithoutTheHeaderWord)
{
    for (const Engine engine :
         {DotWeavePattern::Automatic, DotWeavePattern::X86, DotWeavePattern::Sse})
        EXPECT_EQ(Refusal("VERSION 2", engine),
                  "wide: Internal Message: init from dotweave pattern failed");
}

TEST(DotWeavePattern, RefusesATextWithoutInColorsOrInks)
{
    for (const Engine engine : allEngines)
        for (const char* version : {"1", "2", "3", "9"}) {
            EXPECT_EQ(Refusal(Head(version, "", ""), engine), noColors);
            EXPECT_EQ(Refusal(Head(version, "A B", ""), engine), noColors);
            EXPECT_EQ(Refusal(Head(version, "", "X Y"), engine), noColors);
        }
}

TEST(DotWeavePattern, RefusesMoreThanItsTablesHold)
{
    const std::string portable = "narrow: Array too long for pattern tables";
    const std::string vector = "narrow: Array too long for SSE register";
    const std::string fed = InColor("C0", Names(" X", 16), "1 1:1 0-1 1-2");
    EXPECT_EQ(Refusal(Listed(16, 16) + fed, DotWeavePattern::X86), "nothing");
    EXPECT_EQ(Refusal(Listed(16, 16) + fed, DotWeavePattern::Sse), "nothing");
    for (const auto& [inColors, outInks] :
         {std::pair(17, 16), std::pair(16, 17), std::pair(300, 300)}) {
        EXPECT_EQ(Refusal(Listed(inColors, outInks) + fed, DotWeavePattern::X86), portable);
        EXPECT_EQ(Refusal(Listed(inColors, outInks) + fed, DotWeavePattern::Sse), vector);
    }
    // Only the inks that the tables hold are asked for an in-colour.
    EXPECT_EQ(Refusal(Listed(17, 17) + InColor("C0", "X0", "1 1 0-1"), DotWeavePattern::X86),
              "narrow: out-ink without in-colour in pattern");
}

TEST(DotWeavePattern, RefusesAnInkWithoutInColorOrRowOnThePortableEngine)
{
    const std::string refusal = "narrow: out-ink without in-colour in pattern";
    EXPECT_EQ(Refusal(Listed(1, 2) + InColor("C0", "X0", ""), DotWeavePattern::X86), refusal);
    // The ink is fed, but the list of inks does not end.
    EXPECT_EQ(Refusal(Listed(1, 1) + "BEGIN_IN_COLOR C0 BEGIN_INKS X0", DotWeavePattern::X86),
              refusal);
    EXPECT_EQ(Refusal(Listed(1, 1) + "BEGIN_IN_COLOR C0 BEGIN_INKS X0", DotWeavePattern::Sse),
              "nothing");
    // In the second generation this comes before the refusal of a single combination.
    EXPECT_EQ(Refusal(Head("3", "A", "X"), DotWeavePattern::X86), refusal);
}

TEST(DotWeavePattern, PassesOnTheFaultsOfTheModel)
{
    for (const Engine engine :
         {DotWeavePattern::Automatic, DotWeavePattern::X86, DotWeavePattern::Sse}) {
        const auto refusal = [=](const std::string& values) {
            return Refusal(Head("2", "A", "X") + InColor("A", "X", values), engine);
        };
        EXPECT_EQ(refusal("2 1 0-1"), "narrow: step without value line in pattern");
        EXPECT_EQ(refusal("1 1:65535 0-1 0-2 2 3:65533 0-1 0-2"),
                  "narrow: fraction out of range in pattern");
        EXPECT_EQ(refusal("1 1:1:1:1:1:1 0 0 0 0 0 0 2 2:1:1:1:1:1 0 0 0 0 0 0"),
                  "narrow: numCombinations > MAXS_CHANNEL_RANDOM");
        EXPECT_EQ(refusal("9"), "narrow: step out of range in pattern");
    }
}

TEST(DotWeavePattern, TakesTheGenerationFromTheEarlyCheckAndTheGrammarFromTheParser)
{
    // The word in the comment is read first and selects the second generation.
    const std::string body = "RANDOM_SEED 5 BEGIN_OUT_INKS X END_OUT_INKS BEGIN_IN_COLORS A "
                             "END_IN_COLORS" +
                             InColor("A", "X", "1 1:1 0-1 0-2");
    const Bytes source(300, 1);
    DotWeavePattern first = Load("DotWeavePattern VERSION 2 " + body, DotWeavePattern::X86);
    DotWeavePattern second = Load("DotWeavePattern VERSION 3 " + body, DotWeavePattern::X86);
    DotWeavePattern odd =
        Load("DotWeavePattern #VERSION 3\nVERSION 2 " + body, DotWeavePattern::X86);
    const Bytes expected = Apply(second, source);
    EXPECT_EQ(Apply(odd, source), expected);
    EXPECT_NE(Apply(first, source), expected);
    EXPECT_EQ(Refusal("DotWeavePattern #VERSION 3\n" + body, DotWeavePattern::X86),
              "narrow: unsupported pattern version");
}

TEST(DotWeavePattern, ChoosesByProcessorUnlessTold)
{
    // Only one of the families takes an ink that nobody feeds.
    const std::string text = Head("2", "A", "X Y") + InColor("A", "X", "1 1 0-1");
    const std::string portable = "narrow: out-ink without in-colour in pattern";
    for (const int level : {0, 1, 2}) {
        zvk::SystemTools::LimitSseVersion(level);
        EXPECT_EQ(Refusal(text, DotWeavePattern::Automatic), portable) << level;
        EXPECT_EQ(WhatIsThrown([&] { DotWeavePattern(std::string(text).data()); }), portable);
        EXPECT_EQ(Refusal(text, DotWeavePattern::Sse), "nothing");
    }
    zvk::SystemTools::LimitSseVersion(3);
    const bool vector = zvk::SystemTools::GetSseVersion() >= 3;
    EXPECT_EQ(Refusal(text, DotWeavePattern::Automatic), vector ? "nothing" : portable);
    zvk::SystemTools::LimitSseVersion(100);
}

TEST(DotWeavePattern, LoadsATextThatNobodyMayWrite)
{
    const std::string text = TestSupport::exampleText;
    const TestSupport::GuardedArena memory(text.size() + 1);
    unsigned char* bytes = memory.Place(text.size() + 1, TestSupport::Flush::AtEnd);
    std::memcpy(bytes, text.c_str(), text.size() + 1);
    memory.MakeReadOnly();
    for (const Engine engine : allEngines) {
        DotWeavePattern pattern(reinterpret_cast<char*>(bytes), engine);
        EXPECT_EQ(pattern.GetOutColorCount(), 3);
    }
}

// A locale without capitals, where digits are white space and numbers hold commas.
struct OddLetters : std::ctype<char>
{
    OddLetters() : std::ctype<char>(Table()) {}
    char do_toupper(char letter) const override { return letter; }
    const char* do_toupper(char*, const char* end) const override { return end; }
    static const mask* Table()
    {
        static mask table[table_size];
        std::copy_n(classic_table(), table_size, table);
        std::fill_n(table + '0', 10, space);
        return table;
    }
};

struct OddNumbers : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '1'; }
    std::string do_grouping() const override { return "\1"; }
};

TEST(DotWeavePattern, IsTheSameInAnyLocale)
{
    const std::string text =
        Head("2", "i", "Pink lime") + InColor("I", "LIME pink", "1 1:3 0-4 1-50");
    const Bytes source = TestSupport::RandomSteps(200, 5);
    const std::string systemBefore = std::setlocale(LC_ALL, nullptr);
    for (const Engine engine : allEngines) {
        DotWeavePattern before = Load(text, engine);
        const Bytes expected = Apply(before, source);
        const std::locale plain = std::locale::global(
            std::locale(std::locale(std::locale(), new OddLetters), new OddNumbers));
        // Those of the system change what the C library takes for letters and digits.
        for (const char* name : {"C", "tr_TR.UTF-8", "tr_TR.ISO-8859-9", "de_DE.UTF-8"}) {
            if (std::setlocale(LC_ALL, name) == nullptr)
                continue;
            DotWeavePattern inLocale = Load(text, engine);
            EXPECT_EQ(inLocale.GetNumberOfStepsForInColor(0), 1) << name;
            EXPECT_EQ(Apply(inLocale, source), expected) << name;
        }
        std::locale::global(plain);
        std::setlocale(LC_ALL, systemBefore.c_str());
    }
}

TEST(DotWeavePattern, SharesItsEngineWithCopiesThatOutliveIt)
{
    for (const Engine engine : allEngines) {
        const Bytes source(200, 2);
        DotWeavePattern alone = Load(exampleText, engine);
        auto original = std::make_unique<DotWeavePattern>(Load(exampleText, engine));
        DotWeavePattern target = Load(Head("2", "A", "X") + InColor("A", "X", "1 1 0-1"), engine);
        EXPECT_EQ(&(target = *original), &target);
        EXPECT_EQ(target.GetInColorCount(), 2);
        EXPECT_EQ(target.GetOutColorCount(), 3);
        // Both move one random source.
        for (int row = 0; row < 6; ++row) {
            DotWeavePattern copy = row % 3 == 0 ? *original : target;
            EXPECT_EQ(Apply(copy, source), Apply(alone, source)) << row;
        }
        original.reset();
        const DotWeavePattern& itself = target;
        EXPECT_EQ(&(target = itself), &target);
        EXPECT_EQ(Apply(target, source), Apply(alone, source));
    }
}

TEST(DotWeavePattern, LeavesThePlatformsGeneratorAlone)
{
    const auto drawn = [] {
        std::vector<int> numbers(5);
        std::generate(numbers.begin(), numbers.end(), std::rand);
        return numbers;
    };
    std::srand(815);
    const std::vector<int> expected = drawn();
    for (const Engine engine : allEngines)
        for (const char* version : {"2", "3"}) {
            std::srand(815);
            DotWeavePattern pattern =
                Load(Head(version, "A", "X") + InColor("A", "X", "1 1:1 0-1 0-2"), engine);
            Apply(pattern, Bytes(100, 1));
            pattern.ResetRandomizer();
            EXPECT_EQ(drawn(), expected) << engine << " " << version;
        }
}

// Only a derived class can reach Init.
class Derived : public DotWeavePattern
{
public:
    using DotWeavePattern::DotWeavePattern;
    using DotWeavePattern::Init;
};

TEST(DotWeavePattern, KeepsItsEngineWhenAnotherFailsToLoad)
{
    std::string text = exampleText;
    std::string broken = "DotWeavePattern";
    Derived pattern(text.data(), DotWeavePattern::X86);
    EXPECT_EQ(WhatIsThrown([&] { pattern.Init(broken.data(), DotWeavePattern::Sse); }), noColors);
    EXPECT_EQ(pattern.GetInColorCount(), 2);
    pattern.Init(text.data(), DotWeavePattern::Sse);
    EXPECT_EQ(pattern.GetOutColorCount(), 3);
}

TEST(DotWeavePattern, TakesTheGenerationOverWithTheEngine)
{
    std::string first = Head("2", "A", "X") + InColor("A", "X", "1 1:1 0-1 0-2");
    std::string second = Head("3", "A", "X") + InColor("A", "X", "1 1:1 0-1 0-2");
    std::string single = Head("2", "A", "X") + InColor("A", "X", "1 1 0-1");
    Derived target(first.data(), DotWeavePattern::X86);
    EXPECT_EQ(WhatIsThrown([&] { target.Init(single.data(), DotWeavePattern::X86); }), "nothing");
    target = Derived(second.data(), DotWeavePattern::X86);
    EXPECT_EQ(WhatIsThrown([&] { target.Init(single.data(), DotWeavePattern::X86); }),
              "narrow: pattern without random combinations");
}

template <typename EngineClass, typename... Arguments>
void ExpectAlignment(Arguments... arguments)
{
    std::string text = exampleText;
    std::vector<std::unique_ptr<EngineClass>> engines;
    for (int i = 0; i < 5; ++i) {
        engines.push_back(std::make_unique<EngineClass>(arguments...));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(engines.back().get()) % 32, 0U);
        engines.back()->InitFromText(text.data());
        // A second load replaces the first.
        engines.back()->InitFromText(text.data());
        EXPECT_EQ(engines.back()->GetOutColorCount(), 3);
        EXPECT_NE(engines.back()->GetConverter(), nullptr);
        // A load that fails leaves nothing of it.
        std::string unfinished = "VERSION 2 BEGIN_OUT_INKS A";
        EXPECT_NE(WhatIsThrown([&] { engines.back()->InitFromText(unfinished.data()); }),
                  "nothing");
        EXPECT_EQ(engines.back()->GetConverter(), nullptr);
    }
}

TEST(DotWeavePatternEngines, StandAlignedTo32Bytes)
{
    ExpectAlignment<DotWeavePatternEngineX86<RandomField>>();
    ExpectAlignment<DotWeavePatternEngineX86<RandomFieldNG>>();
    ExpectAlignment<DotWeavePatternEngineSse<RandomPointer<SseTransformation>>>(Road::Vector);
    ExpectAlignment<DotWeavePatternEngineSse<RandomPointerNG<SseTransformation>>>(Road::Vector);
}

TEST(DotWeavePatternEngines, ShowTheSourceThatTheyWalk)
{
    std::string text = exampleText;
    DotWeavePatternEngineX86<RandomField> engine;
    engine.InitFromText(text.data());
    ASSERT_NE(engine.GetRandomSource(), nullptr);
    EXPECT_EQ(engine.GetRandomSource()->GetCount(), 2U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
