#include "pelkraft/dot_weave_pattern.h"

#include "pattern/field_walk.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/pattern_engine_portable.h"
#include "pattern/reference_pattern.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/virtual_slots.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

// Programs built elsewhere rely on the place of the fields and the absence of a virtual table.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Pattern = DotWeavePattern;

static_assert(!std::is_polymorphic_v<Pattern> && !std::has_virtual_destructor_v<Pattern>);
static_assert(std::is_standard_layout_v<Pattern> && !std::is_final_v<Pattern>);
static_assert(!std::is_default_constructible_v<Pattern>);
static_assert(std::is_constructible_v<Pattern, char*, Pattern::Engine>);
static_assert(std::is_constructible_v<Pattern, char*> && !std::is_convertible_v<char*, Pattern>);
static_assert(std::is_copy_constructible_v<Pattern> && std::is_copy_assignable_v<Pattern>);
static_assert(std::is_same_v<std::underlying_type_t<Pattern::Engine>, int>);
static_assert(std::is_same_v<decltype(&Pattern::ResetRandomizer), void (Pattern::*)()>);
static_assert(std::is_same_v<decltype(&Pattern::ApplyPattern),
                             void (Pattern::*)(unsigned char*, unsigned char*, unsigned long)>);
static_assert(std::is_same_v<decltype(&Pattern::GetInColorCount), int (Pattern::*)()>);
static_assert(
    std::is_same_v<decltype(&Pattern::GetNumberOfStepsForInColor), int (Pattern::*)(int)>);
static_assert(std::is_same_v<decltype(&Pattern::GetOutColorCount), int (Pattern::*)()>);

// The binary interface promises this memory.
struct PatternFields
{
    const void* engine;
    int textVersion;
};
static_assert(sizeof(PatternFields) == sizeof(Pattern));
static_assert(alignof(PatternFields) == alignof(Pattern));

PatternFields FieldsOf(const Pattern& pattern)
{
    PatternFields fields;
    std::memcpy(&fields, static_cast<const void*>(&pattern), sizeof fields);
    return fields;
}

Pattern PatternOfVersion(const std::string& version)
{
    std::string text = Head(version, " Cyan", " C") + InColor("Cyan", "C", "1 1 0-255");
    return Pattern(text.data(), Pattern::Reference);
}

TEST(DotWeavePatternInterface, HasItsEngineInFrontOfTheVersionOfItsText)
{
    for (const int version : {2, 3, 0x01020304}) {
        const PatternFields fields = FieldsOf(PatternOfVersion(std::to_string(version)));
        EXPECT_NE(nullptr, fields.engine);
        EXPECT_EQ(version, fields.textVersion);
    }
}

TEST(DotWeavePatternInterface, SharesTheFieldInFrontWithItsCopiesAlone)
{
    const Pattern pattern = PatternOfVersion("3");
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tried.
    const Pattern copy(pattern);
    const Pattern other = PatternOfVersion("3");
    EXPECT_EQ(FieldsOf(pattern).engine, FieldsOf(copy).engine);
    EXPECT_EQ(3, FieldsOf(copy).textVersion);
    EXPECT_NE(FieldsOf(pattern).engine, FieldsOf(other).engine);
}

TEST(DotWeavePatternEngines, HaveTheirVirtualOperationsInTheirOrder)
{
    using Base = DotWeavePatternEngine;
    // The destructor takes the two places before these.
    int next = 2;
    EXPECT_EQ(next++, SlotOf(&Base::InitFromText));
    EXPECT_EQ(next++, SlotOf(&Base::ResetRandomizer));
    EXPECT_EQ(next++, SlotOf(&Base::ApplyPattern));
    EXPECT_EQ(next++, SlotOf(&Base::GetInColorCount));
    EXPECT_EQ(next++, SlotOf(&Base::GetNumberOfStepsForInColor));
    EXPECT_EQ(next++, SlotOf(&Base::GetOutColorCount));
    EXPECT_EQ(next++, SlotOf(&Base::GetConverter));
    EXPECT_EQ(next, SlotOf(&DotWeavePatternEngineX86<RandomField>::GetRandomSource));
    EXPECT_EQ(next, SlotOf(&DotWeavePatternEngineX86<RandomFieldNG>::GetRandomSource));
    EXPECT_EQ(next, SlotOf(&Testonly::CDotWeavePattern<RandomField>::GetRandomSource));
}

TEST(DotWeavePatternConverter, HasItsVirtualOperationsInTheirOrder)
{
    EXPECT_EQ(0, SlotOf(&DotWeavePatternConverter::Parse));
    EXPECT_EQ(1, SlotOf(&DotWeavePatternConverter::Reset));
    EXPECT_EQ(2, SlotOf(&DotWeavePatternConverterSse::GetSseTables));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
