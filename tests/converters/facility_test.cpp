#include "converters/convert_facility.h"
#include "tests/converters/step_runner.h"
#include "tests/support/class_name.h"
#include "tests/support/thrown_text.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Names a template's instance as ClassOf does.
std::string Instance(std::string name, std::initializer_list<std::string> parameters)
{
    const char* mark = "<";
    for (const std::string& parameter : parameters) {
        name += mark + parameter;
        mark = ",";
    }
    return name + ">";
}

std::string SelectedClass(const ChunkConvertFacility& facility, const ImageRowFormat& input)
{
    return ClassOf(*facility.select(facility, input));
}

constexpr std::int32_t portableLevels[] = {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 2};
constexpr std::int32_t vectorLevels[] = {3, 4, 7, std::numeric_limits<std::int32_t>::max()};

// Checks one line of the table: how the record is made at a level, and the class on each road.
template <typename Create>
void ExpectClasses(Create create, const ImageRowFormat& input, const std::string& vectorClass,
                   const std::string& portableClass)
{
    for (const std::int32_t level : portableLevels)
        EXPECT_EQ(portableClass, SelectedClass(create(level), input)) << "level " << level;
    const bool built = HasVectorRoad();
    for (const std::int32_t level : vectorLevels)
        EXPECT_EQ(built ? vectorClass : portableClass, SelectedClass(create(level), input))
            << "level " << level;
}

TEST(ConvertFacility, IsNoStepByDefault)
{
    const ChunkConvertFacility facility;
    EXPECT_EQ(0, facility.sseVersion);
    EXPECT_EQ(1, facility.repeat);
    EXPECT_EQ(0U, facility.remapChannels);
    EXPECT_EQ(nullptr, facility.remap);
    EXPECT_EQ(nullptr, facility.select);
}

void ExpectPlainRecord(const ChunkConvertFacility& facility)
{
    EXPECT_EQ(5, facility.sseVersion);
    EXPECT_EQ(1, facility.repeat);
    EXPECT_EQ(0U, facility.remapChannels);
    EXPECT_EQ(nullptr, facility.remap);
    EXPECT_NE(nullptr, facility.select);
}

TEST(ConvertFacility, KeepsTheLevelAndNothingElseForPlainSteps)
{
    ExpectPlainRecord(ChunkConvertFacility::Create_Convert8to16(5));
    ExpectPlainRecord(ChunkConvertFacility::Create_Convert16to8(5));
    ExpectPlainRecord(ChunkConvertFacility::Create_Packer(5, 1));
    ExpectPlainRecord(ChunkConvertFacility::Create_Packer(5, 2));
    ExpectPlainRecord(ChunkConvertFacility::Create_Unpacker(5, 1));
    ExpectPlainRecord(ChunkConvertFacility::Create_Unpacker(5, 2));
    ExpectPlainRecord(ChunkConvertFacility::Create_Reverse(5));
}

TEST(ConvertFacility, KeepsTheRepeatFactorWithItsSignAndUnchecked)
{
    for (const std::int32_t repeat : {1, 2, 4, -1, -2, -4, 3, 0, -77}) {
        const auto facility = ChunkConvertFacility::Create_PixelRepeat(3, repeat);
        EXPECT_EQ(3, facility.sseVersion);
        EXPECT_EQ(repeat, facility.repeat);
        EXPECT_EQ(0U, facility.remapChannels);
        EXPECT_EQ(nullptr, facility.remap);
        EXPECT_NE(nullptr, facility.select);
    }
}

TEST(ConvertFacility, KeepsTheRemapTableByItsAddress)
{
    const std::int32_t table[] = {2, 0, -1};
    const auto facility = ChunkConvertFacility::Create_Remap(2, 3, table);
    EXPECT_EQ(2, facility.sseVersion);
    EXPECT_EQ(1, facility.repeat);
    EXPECT_EQ(3U, facility.remapChannels);
    EXPECT_EQ(table, facility.remap);
    EXPECT_NE(nullptr, facility.select);
}

TEST(ConvertFacility, RefusesToPackToOtherDepthsThanOneAndTwo)
{
    for (const std::int32_t depth : {-1, 0, 3, 4, 8, 10, 16})
        for (const std::int32_t level : {0, 3})
            EXPECT_EQ("zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported format",
                      TextOf([=] { ChunkConvertFacility::Create_Packer(level, depth); }));
}

TEST(ConvertFacility, RefusesToUnpackOtherDepthsThanOneAndTwo)
{
    for (const std::int32_t depth : {-1, 0, 3, 4, 8, 10, 16})
        for (const std::int32_t level : {0, 3})
            EXPECT_EQ("zvk::Pelkraft::ChunkConvertFacility::Create_Unpacker unsupported format",
                      TextOf([=] { ChunkConvertFacility::Create_Unpacker(level, depth); }));
}

TEST(ConvertSelection, TakesTheDepthClassesByRoad)
{
    for (const std::size_t channels : {1U, 8U, 9U, 17U, 40U}) {
        ExpectClasses(ChunkConvertFacility::Create_Convert8to16, FormatOf(8, channels),
                      "Convert8to16bit", "Convert8to16bitX86");
        ExpectClasses(ChunkConvertFacility::Create_Convert16to8, FormatOf(16, channels),
                      "Convert16to8bit", "Convert16to8bitX86");
    }
}

TEST(ConvertSelection, TakesThePackersByDepthAndRoad)
{
    const auto packer = [](std::int32_t depth) {
        return
            [=](std::int32_t level) { return ChunkConvertFacility::Create_Packer(level, depth); };
    };
    const auto unpacker = [](std::int32_t depth) {
        return
            [=](std::int32_t level) { return ChunkConvertFacility::Create_Unpacker(level, depth); };
    };
    for (const std::size_t channels : {1U, 16U, 17U, 40U}) {
        const ImageRowFormat bytes = FormatOf(8, channels);
        ExpectClasses(packer(1), bytes, "Convert8bitToNbit<1>", "Convert8bitToNbitX86<1>");
        ExpectClasses(packer(2), bytes, "Convert8bitToNbit<2>", "Convert8bitToNbitX86<2>");
        ExpectClasses(unpacker(1), FormatOf(1, channels, LayoutPlanarPacked),
                      "ConvertNbitTo8bit<1>", "ConvertNbitTo8bitX86<1>");
        ExpectClasses(unpacker(2), FormatOf(2, channels, LayoutPlanarPacked),
                      "ConvertNbitTo8bit<2>", "ConvertNbitTo8bitX86<2>");
    }
}

TEST(ConvertSelection, TakesTheReverseClassByRoad)
{
    for (const std::size_t channels : {1U, 16U, 17U, 40U})
        ExpectClasses(ChunkConvertFacility::Create_Reverse, FormatOf(8, channels), "ConvertReverse",
                      "ConvertReverseX86");
}

TEST(ConvertSelection, TakesTheRepeatClassByFactorWithoutItsSignAndBySlot)
{
    struct Case
    {
        std::size_t channels;
        std::int32_t bits;
        bool oneUnit;
    };
    const Case cases[] = {{1, 8, true},  {16, 8, true},  {17, 8, false}, {40, 8, false},
                          {8, 16, true}, {9, 16, false}, {8, 10, true},  {9, 10, false},
                          {16, 1, true}, {17, 2, false}};
    for (const Case& one : cases)
        for (const std::int32_t factor : {1, 2, 4})
            for (const std::int32_t sign : {1, -1}) {
                const std::string number = std::to_string(factor);
                const bool fixed = one.oneUnit && factor != 1;
                const std::string policy = fixed ? "FixedSize<1>" : "VariableSize";
                ExpectClasses(
                    [=](std::int32_t level) {
                        return ChunkConvertFacility::Create_PixelRepeat(level, sign * factor);
                    },
                    FormatOf(one.bits, one.channels),
                    Instance("ConvertPixelRepeat", {number, policy}),
                    Instance("ConvertPixelRepeatX86", {number}));
            }
}

TEST(ConvertSelection, RefusesOtherRepeatFactorsOnBothRoads)
{
    const std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    const std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t repeat : {0, 3, -3, 5, 8, -8, 16, lowest, highest})
        for (const std::int32_t level : {0, 2, 3, 7}) {
            const auto facility = ChunkConvertFacility::Create_PixelRepeat(level, repeat);
            EXPECT_EQ("ChunkConvertFacilityInternal::SelectDescriptor Unsupported format",
                      TextOf([&] { facility.select(facility, FormatOf(8, 4)); }))
                << repeat << " at level " << level;
        }
}

TEST(ConvertSelection, TakesTheRemapClassByBothSlotsOrByTheSampleSize)
{
    struct Case
    {
        std::int32_t bits;
        std::size_t channels;
        std::uint64_t remapChannels;
        const char* policy;
    };
    const Case cases[] = {
        {8, 1, 1, "FixedSize<1>"},    {8, 16, 16, "FixedSize<1>"},  {8, 16, 17, "VariableSize"},
        {8, 17, 16, "VariableSize"},  {8, 17, 17, "FixedSize<2>"},  {8, 32, 32, "FixedSize<2>"},
        {8, 20, 20, "FixedSize<2>"},  {8, 20, 10, "VariableSize"},  {8, 32, 33, "VariableSize"},
        {8, 33, 33, "VariableSize"},  {8, 100, 3, "VariableSize"},  {16, 8, 8, "FixedSize<1>"},
        {16, 8, 9, "VariableSize"},   {16, 9, 9, "FixedSize<2>"},   {16, 16, 16, "FixedSize<2>"},
        {16, 17, 16, "VariableSize"}, {16, 17, 17, "VariableSize"}, {10, 8, 8, "FixedSize<1>"},
        {10, 9, 16, "FixedSize<2>"},  {1, 16, 16, "FixedSize<1>"},  {2, 17, 17, "FixedSize<2>"},
        {8, 4, 0, "VariableSize"}};
    const std::vector<std::int32_t> table(200, 0);
    for (const Case& one : cases) {
        const std::string policy = one.policy;
        ExpectClasses(
            [&](std::int32_t level) {
                return ChunkConvertFacility::Create_Remap(level, one.remapChannels, table.data());
            },
            FormatOf(one.bits, one.channels), Instance("ConvertRemap", {policy, policy}),
            one.bits > 8 ? "ConvertRemapX86<unsignedshort>" : "ConvertRemapX86<unsignedchar>");
    }
}

TEST(ConvertSelection, RefusesToRemapWideOrEmptySamplesOnThePortableRoadAlone)
{
    const std::int32_t table[] = {0, 1, 2, 3};
    for (const std::int32_t bits : {17, 24, 32, 64, 0, -16}) {
        const auto portable = ChunkConvertFacility::Create_Remap(2, 4, table);
        EXPECT_EQ("unsupported X86 remap bit depth",
                  TextOf([&] { portable.select(portable, FormatOf(bits, 4)); }))
            << bits;
        const auto vector = ChunkConvertFacility::Create_Remap(3, 4, table);
        if (HasVectorRoad()) {
            EXPECT_NE(nullptr, vector.select(vector, FormatOf(bits, 4))) << bits;
        }
    }
}

TEST(ConvertSelection, GivesTheSameObjectEachTime)
{
    const auto facility = ChunkConvertFacility::Create_Reverse(0);
    const auto other = ChunkConvertFacility::Create_Reverse(1);
    EXPECT_EQ(facility.select(facility, FormatOf(8, 4)), other.select(other, FormatOf(16, 40)));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
