#include "tests/rows/row_fields.h"
#include "tests/support/virtual_slots.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

// The order of the fields and of the virtual table is what programs built elsewhere rely on.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Options = ImageRow::OptionalParameters;

static_assert(std::is_polymorphic_v<ImageRow>);
static_assert(!std::is_abstract_v<ImageRow> && !std::is_final_v<ImageRow>);
static_assert(std::has_virtual_destructor_v<ImageRow>);
static_assert(std::is_default_constructible_v<ImageRow>);
static_assert(std::is_copy_constructible_v<ImageRow> && std::is_copy_assignable_v<ImageRow>);
static_assert(std::is_constructible_v<ImageRow, int, int, int, bool, unsigned char*>);
static_assert(std::is_same_v<decltype(ImageRow::Alignment), const int>);
static_assert(std::is_same_v<decltype(ImageRow::SafetyTrail), const int>);
static_assert(ImageRow::Alignment == 16 && ImageRow::SafetyTrail == 64);
static_assert(std::is_same_v<decltype(&ImageRow::CalcBufferSize), int (*)(int, int, int, bool)>);

static_assert(!std::is_polymorphic_v<Options> && std::is_standard_layout_v<Options>);
static_assert(sizeof(Options) == 3);
static_assert(offsetof(Options, firstFlag) == 0);
static_assert(offsetof(Options, forcePortable) == 1);
static_assert(offsetof(Options, thirdFlag) == 2);
static_assert(std::is_constructible_v<Options, bool, bool>);
static_assert(!std::is_constructible_v<Options, bool, bool, bool>);

// Opens the protected operations and adds a virtual one after the last.
class OpenRow : public ImageRow
{
public:
    using ImageRow::CalcDataSize;
    using ImageRow::FillFromBody2;
    using ImageRow::FillFromSehGuard;
    using ImageRow::FillFromWithPixelRepeatBody2;
    using ImageRow::FillFromWithPixelRepeatSehGuard;
    using ImageRow::FillFromWithRemapBody2;
    using ImageRow::FillFromWithRemapSehGuard;
    using ImageRow::ImageRow;

    virtual void BehindTheLast() {}
};

TEST(RowInterface, HasItsVirtualOperationsInTheirOrder)
{
    using Row = ImageRow;
    // The destructor takes the two places before these.
    int next = 2;
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(unsigned char*)>(&Row::SetData)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(int, int, int, bool, unsigned char*)>(&Row::SetAll)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)()>(&Row::Release)));
    EXPECT_EQ(next++, (SlotOf<unsigned char* (Row::*)() const>(&Row::GetData)));
    EXPECT_EQ(next++, (SlotOf<int (Row::*)() const>(&Row::GetDataSize)));
    EXPECT_EQ(next++, (SlotOf<int (Row::*)() const>(&Row::GetWidth)));
    EXPECT_EQ(next++, (SlotOf<int (Row::*)() const>(&Row::GetChannels)));
    EXPECT_EQ(next++, (SlotOf<int (Row::*)() const>(&Row::GetBits)));
    EXPECT_EQ(next++, (SlotOf<bool (Row::*)() const>(&Row::IsPlanar)));
    EXPECT_EQ(next++, (SlotOf<int (Row::*)() const>(&Row::CalcPlaneSize)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(int)>(&Row::FillBuffer)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, const Options*)>(&Row::FillFrom)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, bool, bool)>(&Row::FillFrom)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, const int*, const Options*)>(
                          &Row::FillFromWithRemap)));
    EXPECT_EQ(next++,
              (SlotOf<void (Row::*)(const Row&, const int*, bool, bool)>(&Row::FillFromWithRemap)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, int, const Options*)>(
                          &Row::FillFromWithPixelRepeat)));
    EXPECT_EQ(next++,
              (SlotOf<void (Row::*)(const Row&, int, bool, bool)>(&Row::FillFromWithPixelRepeat)));
    EXPECT_EQ(next++, (SlotOf<int (Row::*)() const>(&OpenRow::CalcDataSize)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, const Options&)>(&OpenRow::FillFromBody2)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, const int*, const Options&)>(
                          &OpenRow::FillFromWithRemapBody2)));
    EXPECT_EQ(next++, (SlotOf<void (Row::*)(const Row&, int, const Options&)>(
                          &OpenRow::FillFromWithPixelRepeatBody2)));
    EXPECT_EQ(next, SlotOf(&OpenRow::BehindTheLast));
}

TEST(RowInterface, HasItsGuardsOutsideTheVirtualTable)
{
    EXPECT_EQ(notVirtual, SlotOf(&OpenRow::FillFromSehGuard));
    EXPECT_EQ(notVirtual, SlotOf(&OpenRow::FillFromWithRemapSehGuard));
    EXPECT_EQ(notVirtual, SlotOf(&OpenRow::FillFromWithPixelRepeatSehGuard));
}

TEST(RowInterface, HasItsFieldsInTheirOrder)
{
    unsigned char byte = 0;
    const ImageRow row(0x11223344, 0x01020304, 3, true, &byte);
    const RowFields fields = FieldsOf(row);
    EXPECT_NE(nullptr, fields.virtualTable);
    EXPECT_EQ(0x11223344, fields.width);
    EXPECT_EQ(0x01020304, fields.channels);
    EXPECT_EQ(3, fields.bits);
    EXPECT_TRUE(fields.planar);
    EXPECT_FALSE(fields.ownsData);
    EXPECT_EQ(&byte, fields.data);
    EXPECT_EQ(row.GetDataSize(), fields.dataCapacity);

    const ImageRow owning(9, 1, 8, false, nullptr);
    EXPECT_FALSE(FieldsOf(owning).planar);
    EXPECT_TRUE(FieldsOf(owning).ownsData);
    EXPECT_EQ(owning.GetData(), FieldsOf(owning).data);
    EXPECT_EQ(9, FieldsOf(owning).dataCapacity);
}

TEST(RowInterface, HasConstantsThatCanBeReferredTo)
{
    const int* const alignment = &ImageRow::Alignment;
    const int* const trail = &ImageRow::SafetyTrail;
    EXPECT_EQ(16, *alignment);
    EXPECT_EQ(64, *trail);
}

TEST(OptionalParameters, AreFalseFalseTrueByDefault)
{
    const Options options;
    EXPECT_FALSE(options.firstFlag);
    EXPECT_FALSE(options.forcePortable);
    EXPECT_TRUE(options.thirdFlag);
}

TEST(OptionalParameters, TakeTwoFlagsAndSetTheThird)
{
    for (const bool first : {false, true})
        for (const bool portable : {false, true}) {
            const Options options(first, portable);
            EXPECT_EQ(first, options.firstFlag);
            EXPECT_EQ(portable, options.forcePortable);
            EXPECT_TRUE(options.thirdFlag);
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
