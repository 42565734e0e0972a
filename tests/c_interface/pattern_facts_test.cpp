#include "tests/c_interface/pattern_calls.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace zvk::Pelkraft::TestSupport {
namespace {

plk_pattern_facts FactsOf(const plk_pattern* pattern)
{
    plk_pattern_facts facts;
    std::memset(&facts, 0x5A, sizeof facts);
    facts.size = sizeof facts;
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_needs(pattern, &facts, &failure), PLK_OK) << failure.text;
    EXPECT_EQ(facts.size, sizeof facts);
    return facts;
}

TEST(PatternFacts, AreThoseOfTheText)
{
    const plk_pattern_facts facts = FactsOf(MakeHandle(exampleText).get());
    EXPECT_EQ(facts.in_colours, 2);
    EXPECT_EQ(facts.out_inks, 3);
    EXPECT_EQ(facts.version, 2);
    EXPECT_EQ(facts.combinations, 2);
    EXPECT_EQ(facts.field_size, 65536);
    const Bytes tops(facts.top_steps, facts.top_steps + 16);
    EXPECT_EQ(tops, (Bytes{3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(PatternFacts, AreThoseOfAShuffledField)
{
    // Fractions of 1/4 and 3/4 in a field of 25001 times 4, and an in-colour without a block.
    const std::string text = Head("5", "C D", "X") + InColor("C", "X", "1 1:3 0-9 0-8");
    const plk_pattern_facts facts = FactsOf(MakeHandle(text).get());
    EXPECT_EQ(facts.version, 5);
    EXPECT_EQ(facts.field_size, 100004);
    EXPECT_EQ(facts.top_steps[0], 1);
    EXPECT_EQ(facts.top_steps[1], 255);
}

TEST(PatternFacts, FillARecordAsFarAsItGoes)
{
    const PatternHandle handle = MakeHandle(exampleText);
    for (std::uint32_t size = 4; size <= sizeof(plk_pattern_facts) + 8; ++size) {
        alignas(plk_pattern_facts) unsigned char bytes[sizeof(plk_pattern_facts) + 16];
        // All that a longer record has beyond this library's is 0.
        std::memset(bytes, size > sizeof(plk_pattern_facts) ? 0 : 0x5A, sizeof bytes);
        std::memset(bytes + size, 0x5A, sizeof bytes - size);
        std::memcpy(bytes, &size, sizeof size);
        ASSERT_EQ(
            plk_pattern_needs(handle.get(), reinterpret_cast<plk_pattern_facts*>(bytes), nullptr),
            PLK_OK);
        std::int32_t inks = 0;
        std::memcpy(&inks, bytes + offsetof(plk_pattern_facts, out_inks), sizeof inks);
        EXPECT_EQ(inks, size >= 12 ? 3 : 0x5A5A5A5A) << size;
        for (std::size_t i = size; i < sizeof bytes; ++i)
            ASSERT_EQ(bytes[i], 0x5A) << size << " " << i;
    }
}

TEST(PatternFacts, AreRefusedWithoutARecord)
{
    const PatternHandle handle = MakeHandle(exampleText);
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_needs(handle.get(), nullptr, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 facts");
    plk_pattern_facts facts = {};
    EXPECT_EQ(plk_pattern_needs(handle.get(), &facts, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 facts.size");
    facts.size = sizeof facts;
    EXPECT_EQ(plk_pattern_needs(nullptr, &facts, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 pattern");
}

TEST(PatternSource, IsTheTextAndTheEngineThatWereGiven)
{
    // With the zero byte at its end.
    const PatternHandle handle =
        MakeHandle(std::string_view(exampleText, std::strlen(exampleText) + 1), PLK_ENGINE_X86);
    const char* text = nullptr;
    std::uint64_t bytes = 0;
    plk_pattern_spec spec = {sizeof spec, 9};
    ASSERT_EQ(plk_pattern_text(handle.get(), &text, &bytes, &spec, nullptr), PLK_OK);
    EXPECT_STREQ(text, exampleText);
    EXPECT_EQ(bytes, std::strlen(exampleText));
    EXPECT_EQ(spec.engine, PLK_ENGINE_X86);
    EXPECT_EQ(spec.size, sizeof spec);
    // A record of its size alone has no engine.
    spec = {4, 9};
    ASSERT_EQ(plk_pattern_text(handle.get(), &text, &bytes, &spec, nullptr), PLK_OK);
    EXPECT_EQ(spec.engine, 9);
}

TEST(PatternSource, NamesTheArgumentThatIsNull)
{
    const PatternHandle handle = MakeHandle(exampleText);
    const char* text = nullptr;
    std::uint64_t bytes = 0;
    plk_pattern_spec spec = {sizeof spec, 9};
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_text(nullptr, &text, &bytes, &spec, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 pattern");
    EXPECT_EQ(plk_pattern_text(handle.get(), nullptr, &bytes, &spec, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 text");
    EXPECT_EQ(plk_pattern_text(handle.get(), &text, nullptr, &spec, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 bytes");
    EXPECT_EQ(plk_pattern_text(handle.get(), &text, &bytes, nullptr, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 spec");
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(bytes, 0U);
}

TEST(PatternNames, AreSpelledAsInTheText)
{
    const PatternHandle handle =
        MakeHandle(Head("2", "cYan \"dark red\"", "Key") + InColor("CYAN", "KEY", "1 1 0-1"));
    EXPECT_STREQ(plk_pattern_name(handle.get(), PLK_IN_COLOURS, 0), "cYan");
    EXPECT_STREQ(plk_pattern_name(handle.get(), PLK_IN_COLOURS, 1), "dark red");
    EXPECT_STREQ(plk_pattern_name(handle.get(), PLK_OUT_INKS, 0), "Key");
}

TEST(PatternNames, EndWithTheirList)
{
    const PatternHandle handle = MakeHandle(exampleText);
    for (const std::int32_t index : {2, 3, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(plk_pattern_name(handle.get(), PLK_IN_COLOURS, index), nullptr);
    EXPECT_EQ(plk_pattern_name(handle.get(), PLK_OUT_INKS, 3), nullptr);
    EXPECT_EQ(plk_pattern_name(handle.get(), 2, 0), nullptr);
    EXPECT_EQ(plk_pattern_name(handle.get(), -1, 0), nullptr);
    EXPECT_EQ(plk_pattern_name(nullptr, PLK_OUT_INKS, 0), nullptr);
}

TEST(PatternNames, AreEmptyWhereARepeatedNameHasMovedOn)
{
    // Two different names are counted, and C stands for index 2.
    const PatternHandle handle = MakeHandle(Head("2", "C D c", "X") + InColor("D", "X", "1 1 0-1"));
    EXPECT_EQ(FactsOf(handle.get()).in_colours, 2);
    EXPECT_STREQ(plk_pattern_name(handle.get(), PLK_IN_COLOURS, 0), "");
    EXPECT_STREQ(plk_pattern_name(handle.get(), PLK_IN_COLOURS, 1), "D");
    EXPECT_EQ(plk_pattern_name(handle.get(), PLK_IN_COLOURS, 2), nullptr);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
