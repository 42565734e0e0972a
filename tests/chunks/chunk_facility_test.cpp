#include "chunks/chunk_facility.h"

#include "chunks/chunk_methods.h"
#include "common/road.h"
#include "tests/support/class_name.h"
#include "tests/support/thrown_text.h"
#include "tests/support/virtual_slots.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Load = ChunkLoadFacilityInternal;
using Save = ChunkSaveFacilityInternal;

ImageRowFormat MakeFormat(std::int32_t layout, std::int32_t bits, std::int32_t channels)
{
    ImageRowFormat format;
    format.layout = layout;
    format.bits = bits;
    format.channels = channels;
    format.width = 40;
    format.activeWidth = 30;
    return format;
}

template <typename Facility>
std::string ClassAt(const ImageRowFormat& format, std::int32_t sseVersion)
{
    return ClassOf(*Facility::Create(format, sseVersion).descriptor);
}

// The classes of both ends differ by a word alone: an x stands for it.
void ExpectClasses(const std::string& name, const ImageRowFormat& format, std::int32_t sseVersion)
{
    const auto at = name.find('x');
    EXPECT_EQ(ClassAt<Load>(format, sseVersion), std::string(name).replace(at, 1, "Loader"));
    EXPECT_EQ(ClassAt<Save>(format, sseVersion), std::string(name).replace(at, 1, "Saver"));
}

template <typename Facility>
std::string FailureOf(const ImageRowFormat& format, std::int32_t sseVersion)
{
    return TextOf([&] { Facility::Create(format, sseVersion); });
}

constexpr const char* noFailure = "no text was thrown";

TEST(ChunkDescriptors, HaveTheirOperationsInTheirOrder)
{
    EXPECT_EQ(SlotOf(&IChunkLoaderDescriptor::GetLoadMethod), 0);
    EXPECT_EQ(SlotOf(&IChunkLoaderDescriptor::GetChunkStep), 1);
    EXPECT_EQ(SlotOf(&IChunkLoaderDescriptor::LoadPartialChunk), 2);
    EXPECT_EQ(SlotOf(&IChunkLoaderDescriptor::GetPartialChunkSize), 3);
    EXPECT_EQ(SlotOf(&IChunkLoaderDescriptor::GetFirstChunkOffset), 4);
    EXPECT_EQ(SlotOf(&IChunkSaverDescriptor::GetLoadMethod), 0);
    EXPECT_EQ(SlotOf(&IChunkSaverDescriptor::GetChunkStep), 1);
    EXPECT_EQ(SlotOf(&IChunkSaverDescriptor::SavePartialChunk), 2);
    EXPECT_EQ(SlotOf(&IChunkSaverDescriptor::GetPartialChunkSize), 3);
}

TEST(ChunkFacility, TakesItsFieldsFromTheFormat)
{
    for (const bool reversed : {false, true}) {
        ImageRowFormat format = MakeFormat(LayoutInterleaved, 10, 3);
        format.reversed = reversed;
        const auto load = Load::Create(format, 0);
        EXPECT_EQ(load.channels, 3);
        EXPECT_EQ(load.bytesPerSample, 2);
        EXPECT_EQ(load.columns, 40U);
        EXPECT_EQ(load.reversed, reversed);
    }
    const auto save = Save::Create(MakeFormat(LayoutPlanar, 16, 5), 0);
    EXPECT_EQ(save.channels, 5);
    EXPECT_EQ(save.bytesPerSample, 2);
    EXPECT_EQ(save.columns, 40U);
}

TEST(ChunkFacility, CountsTheByteColumnsOfPackedRowsAlone)
{
    struct Case
    {
        std::int32_t layout;
        std::int32_t bits;
        std::int64_t width;
        std::uint64_t columns;
    };
    const std::vector<Case> cases = {
        {LayoutPlanarPacked, 1, 10, 2},
        {LayoutPlanarPacked, 1, 8, 1},
        {LayoutPlanarPacked, 1, 9, 2},
        {LayoutPlanarPacked, 1, 0, 0},
        {LayoutPlanarPacked, 1, 200, 25},
        {LayoutPlanarPacked, 2, 10, 3},
        {LayoutPlanarPacked, 2, 8, 2},
        {LayoutPlanarPacked, 3, 7, 4},
        {LayoutPlanarPacked, 5, 7, 7},
        {LayoutPlanarPacked, 6, 7, 7},
        {LayoutPlanarPacked, 7, 7, 7},
        {LayoutPlanarPacked, 10, 7, 7},
        {LayoutInterleaved, 1, 10, 10},
        {LayoutInterleaved, 2, 10, 10},
        {LayoutInterleaved, 8, 10, 10},
        {LayoutPlanar, 8, 10, 10},
        {LayoutPlanar, 16, 10, 10},
        {LayoutPlanar, 8, 0x90000001, 0x90000001},
        {LayoutPlanarPacked, 1, 0x90000001, 0x12000001},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.layout << " " << c.bits << " " << c.width);
        ImageRowFormat format = MakeFormat(c.layout, c.bits, 1);
        format.width = c.width;
        EXPECT_EQ(Load::Create(format, 0).columns, c.columns);
        EXPECT_EQ(Save::Create(format, 0).columns, c.columns);
    }
}

TEST(ChunkFacility, TakesThePortableClassesBelowLevelThree)
{
    for (std::int32_t level = -1; level < 3; ++level) {
        for (std::int32_t channels : {1, 8, 9, 16, 17, 80, 81, 130}) {
            SCOPED_TRACE(testing::Message() << level << " " << channels);
            const auto interleaved = MakeFormat(LayoutInterleaved, 8, channels);
            ExpectClasses("ChunkMultixX86I", interleaved, level);
            const auto bytes = MakeFormat(LayoutPlanar, 8, channels);
            ExpectClasses("ChunkMultixX86<unsignedchar>", bytes, level);
            const auto packed = MakeFormat(LayoutPlanarPacked, 1, channels);
            ExpectClasses("ChunkMultixX86<unsignedchar>", packed, level);
            const auto words = MakeFormat(LayoutPlanar, 16, channels);
            ExpectClasses("ChunkMultixX86<unsignedshort>", words, level);
        }
    }
}

TEST(ChunkFacility, RefusesPlanarRowsOfWideSamples)
{
    for (const std::int32_t bits : {0, 17, 24, 32, 64}) {
        for (const std::int32_t layout : {LayoutPlanar, 0x300, 0}) {
            SCOPED_TRACE(testing::Message() << bits << " " << layout);
            const auto format = MakeFormat(layout, bits, 1);
            for (const std::int32_t level : {0, 1, 2, 3, 4, 7}) {
                const std::string words = hasVectorRoad && level >= 3
                                              ? "::SelectDescriptor Unsupported format"
                                              : "::SelectDescriptorX86 Unsupported format";
                EXPECT_EQ(FailureOf<Load>(format, level), "ChunkLoadFacilityInternal" + words);
                EXPECT_EQ(FailureOf<Save>(format, level), "ChunkSaveFacilityInternal" + words);
            }
        }
    }
}

TEST(ChunkFacility, ServesInterleavedRowsOfAnySample)
{
    for (const std::int32_t bits : {17, 24, 32, 64}) {
        for (const std::int32_t level : {0, 2, 3, 7}) {
            EXPECT_EQ(FailureOf<Load>(MakeFormat(LayoutInterleaved, bits, 4), level), noFailure);
            EXPECT_EQ(FailureOf<Save>(MakeFormat(LayoutInterleaved, bits, 4), level), noFailure);
        }
    }
}

#ifdef PELKRAFT_VECTOR_ROAD

// The selection by the numbers of the table, not by the way the library works them out.
std::string InterleavedPolicy(std::int32_t pixelBytes)
{
    const std::int32_t limits[] = {16, 32, 48, 64, 80};
    for (int leading = 0; leading < 5; ++leading)
        if (pixelBytes <= limits[leading])
            return "<FixedSize<" + std::to_string(leading) + ">>";
    return "<VariableSize>";
}

TEST(ChunkFacility, TakesTheVectorClassesByPixelSizeFromLevelThreeOn)
{
    for (const std::int32_t level : {3, 4, 7, 100}) {
        for (std::int32_t channels = 0; channels <= 130; ++channels) {
            for (const std::int32_t bits : {8, 10, 16, 24, 32}) {
                SCOPED_TRACE(testing::Message() << bits << " bits, " << channels << " channels");
                const auto format = MakeFormat(LayoutInterleaved, bits, channels);
                const std::string policy = InterleavedPolicy((bits + 7) / 8 * channels);
                ExpectClasses("ChunkMultixI" + policy, format, level);
            }
        }
    }
}

TEST(ChunkFacility, TakesTheVectorClassesByPlanesFromLevelThreeOn)
{
    for (const std::int32_t level : {3, 7}) {
        for (std::int32_t channels = 0; channels <= 40; ++channels) {
            SCOPED_TRACE(testing::Message() << level << ", " << channels << " channels");
            const std::string bytes = channels <= 16 ? "P8<FixedSize<1>>" : "P8<VariableSize>";
            const std::string words = channels <= 8 ? "P16<FixedSize<1>>" : "P16<VariableSize>";
            for (const std::int32_t bits : {1, 2, 8}) {
                const std::int32_t layout = bits == 8 ? LayoutPlanar : LayoutPlanarPacked;
                const auto format = MakeFormat(layout, bits, channels);
                ExpectClasses("ChunkMultix" + bytes, format, level);
            }
            for (const std::int32_t bits : {10, 16}) {
                const auto format = MakeFormat(LayoutPlanar, bits, channels);
                ExpectClasses("ChunkMultix" + words, format, level);
            }
        }
    }
}

template <typename Facility>
std::string MethodFailure(Facility facility, std::int64_t channels, std::int64_t bytesPerSample)
{
    facility.channels = channels;
    facility.bytesPerSample = bytesPerSample;
    return TextOf([&] { facility.descriptor->GetLoadMethod(facility); });
}

TEST(ChunkFacility, RefusesADamagedRecordWhereHalfASampleRemains)
{
    for (const std::int32_t channels : {4, 12}) {
        const auto load = Load::Create(MakeFormat(LayoutPlanar, 16, channels), 3);
        const auto save = Save::Create(MakeFormat(LayoutPlanar, 16, channels), 3);
        for (const std::int64_t damaged : {1, 17, 33}) {
            EXPECT_EQ(MethodFailure(load, damaged, 1),
                      "ChunkMultiLoaderP16::GetLoadMethod Invalid trail");
            EXPECT_EQ(MethodFailure(save, damaged, 1),
                      "ChunkMultiSaverP16::GetLoadMethod Invalid trail");
        }
        // None of these leaves less than a sample in the last unit.
        for (const std::int64_t channelsNow : {0, 1, 8, 9, 16, 40}) {
            EXPECT_EQ(MethodFailure(load, channelsNow, 2), noFailure);
            EXPECT_EQ(MethodFailure(save, channelsNow, 2), noFailure);
        }
    }
}

TEST(ChunkFacility, FindsAMethodForAnyRecordOfWholeBytes)
{
    for (const std::int32_t channels : {1, 4, 16, 17, 81}) {
        for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar}) {
            const auto format = MakeFormat(layout, 8, channels);
            const auto load = Load::Create(format, 3);
            const auto save = Save::Create(format, 3);
            for (const std::int64_t damaged : {0, 1, 15, 16, 17, 1000, -1, -17}) {
                EXPECT_EQ(MethodFailure(load, damaged, 1), noFailure);
                EXPECT_EQ(MethodFailure(save, damaged, 1), noFailure);
            }
        }
    }
}

template <typename Facility>
void ExpectMethods(const ImageRowFormat& format, std::size_t entries)
{
    auto facility = Facility::Create(format, 3);
    std::vector<ChunkMethod> methods;
    for (facility.channels = 0; facility.channels < 64; ++facility.channels)
        methods.push_back(facility.descriptor->GetLoadMethod(facility));
    EXPECT_EQ(std::set<ChunkMethod>(methods.begin(), methods.end()).size(), entries);
    for (std::size_t channels = entries; channels < 64; ++channels)
        EXPECT_EQ(methods[channels], methods[channels - entries]);
}

// A row of no channels takes the last entry, as does any pixel that fills its units.
TEST(ChunkFacility, GivesEachTrailAMethodOfItsOwn)
{
    struct Family
    {
        std::int32_t layout;
        std::int32_t bits;
        std::size_t entries;
    };
    for (const Family& family : {Family{LayoutInterleaved, 8, 16}, Family{LayoutPlanar, 8, 16},
                                 Family{LayoutPlanar, 16, 8}}) {
        for (const std::int32_t channels : {1, 17, 33, 49, 65, 81}) {
            const auto format = MakeFormat(family.layout, family.bits, channels);
            ExpectMethods<Load>(format, family.entries);
            ExpectMethods<Save>(format, family.entries);
        }
    }
}

#endif

} // namespace
} // namespace zvk::Pelkraft::TestSupport
