#include "chunks/chunk_facility.h"

#include "common/road.h"
#include "tests/support/virtual_slots.h"

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <typeinfo>
#include <vector>

namespace zvk::Pelkraft {
namespace {

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

// "ChunkMultiLoaderI<FixedSize<2>>" and the like.
template <typename Descriptor>
std::string ClassOf(const Descriptor* descriptor)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(typeid(*descriptor).name(), nullptr, nullptr, &status), &std::free);
    std::string name = text.get();
    for (const std::string& scope :
         {std::string("zvk::Pelkraft::"), std::string("(anonymous namespace)::")}) {
        for (auto at = name.find(scope); at != std::string::npos; at = name.find(scope))
            name.erase(at, scope.size());
    }
    for (auto at = name.find("> >"); at != std::string::npos; at = name.find("> >"))
        name.replace(at, 3, ">>");
    return name;
}

std::string LoaderClass(const ImageRowFormat& format, std::int32_t sseVersion)
{
    return ClassOf(ChunkLoadFacilityInternal::Create(format, sseVersion).descriptor);
}

std::string SaverClass(const ImageRowFormat& format, std::int32_t sseVersion)
{
    return ClassOf(ChunkSaveFacilityInternal::Create(format, sseVersion).descriptor);
}

std::string LoadFailure(const ImageRowFormat& format, std::int32_t sseVersion)
{
    try {
        ChunkLoadFacilityInternal::Create(format, sseVersion);
    } catch (const char* text) {
        return text;
    }
    return "no failure";
}

std::string SaveFailure(const ImageRowFormat& format, std::int32_t sseVersion)
{
    try {
        ChunkSaveFacilityInternal::Create(format, sseVersion);
    } catch (const char* text) {
        return text;
    }
    return "no failure";
}

TEST(ChunkDescriptors, HaveTheirOperationsInTheirOrder)
{
    using TestSupport::SlotOf;
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
        const auto load = ChunkLoadFacilityInternal::Create(format, 0);
        EXPECT_EQ(load.channels, 3);
        EXPECT_EQ(load.bytesPerSample, 2);
        EXPECT_EQ(load.columns, 40U);
        EXPECT_EQ(load.reversed, reversed);
    }
    const auto save = ChunkSaveFacilityInternal::Create(MakeFormat(LayoutPlanar, 16, 5), 0);
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
        EXPECT_EQ(ChunkLoadFacilityInternal::Create(format, 0).columns, c.columns);
        EXPECT_EQ(ChunkSaveFacilityInternal::Create(format, 0).columns, c.columns);
    }
}

TEST(ChunkFacility, TakesThePortableClassesBelowLevelThree)
{
    for (std::int32_t level = -1; level < 3; ++level) {
        for (std::int32_t channels : {1, 8, 9, 16, 17, 80, 81, 130}) {
            SCOPED_TRACE(testing::Message() << level << " " << channels);
            const auto interleaved = MakeFormat(LayoutInterleaved, 8, channels);
            EXPECT_EQ(LoaderClass(interleaved, level), "ChunkMultiLoaderX86I");
            EXPECT_EQ(SaverClass(interleaved, level), "ChunkMultiSaverX86I");
            const auto bytes = MakeFormat(LayoutPlanar, 8, channels);
            EXPECT_EQ(LoaderClass(bytes, level), "ChunkMultiLoaderX86<unsigned char>");
            EXPECT_EQ(SaverClass(bytes, level), "ChunkMultiSaverX86<unsigned char>");
            const auto packed = MakeFormat(LayoutPlanarPacked, 1, channels);
            EXPECT_EQ(LoaderClass(packed, level), "ChunkMultiLoaderX86<unsigned char>");
            EXPECT_EQ(SaverClass(packed, level), "ChunkMultiSaverX86<unsigned char>");
            const auto words = MakeFormat(LayoutPlanar, 16, channels);
            EXPECT_EQ(LoaderClass(words, level), "ChunkMultiLoaderX86<unsigned short>");
            EXPECT_EQ(SaverClass(words, level), "ChunkMultiSaverX86<unsigned short>");
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
                EXPECT_EQ(LoadFailure(format, level), "ChunkLoadFacilityInternal" + words);
                EXPECT_EQ(SaveFailure(format, level), "ChunkSaveFacilityInternal" + words);
            }
        }
    }
}

TEST(ChunkFacility, ServesInterleavedRowsOfAnySample)
{
    for (const std::int32_t bits : {17, 24, 32, 64}) {
        for (const std::int32_t level : {0, 2, 3, 7}) {
            EXPECT_EQ(LoadFailure(MakeFormat(LayoutInterleaved, bits, 4), level), "no failure");
            EXPECT_EQ(SaveFailure(MakeFormat(LayoutInterleaved, bits, 4), level), "no failure");
        }
    }
}

#ifdef PELKRAFT_VECTOR_ROAD

// The selection by the numbers of the table, not by the way the library works them out.
std::string InterleavedPolicy(std::int32_t pixelBytes)
{
    if (pixelBytes <= 16)
        return "<FixedSize<0>>";
    if (pixelBytes <= 32)
        return "<FixedSize<1>>";
    if (pixelBytes <= 48)
        return "<FixedSize<2>>";
    if (pixelBytes <= 64)
        return "<FixedSize<3>>";
    if (pixelBytes <= 80)
        return "<FixedSize<4>>";
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
                ASSERT_EQ(LoaderClass(format, level), "ChunkMultiLoaderI" + policy);
                ASSERT_EQ(SaverClass(format, level), "ChunkMultiSaverI" + policy);
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
                EXPECT_EQ(LoaderClass(format, level), "ChunkMultiLoader" + bytes);
                EXPECT_EQ(SaverClass(format, level), "ChunkMultiSaver" + bytes);
            }
            for (const std::int32_t bits : {10, 16}) {
                const auto format = MakeFormat(LayoutPlanar, bits, channels);
                EXPECT_EQ(LoaderClass(format, level), "ChunkMultiLoader" + words);
                EXPECT_EQ(SaverClass(format, level), "ChunkMultiSaver" + words);
            }
        }
    }
}

template <typename Facility>
std::string MethodFailure(Facility facility, std::int64_t channels, std::int64_t bytesPerSample)
{
    facility.channels = channels;
    facility.bytesPerSample = bytesPerSample;
    try {
        facility.descriptor->GetLoadMethod(facility);
    } catch (const char* text) {
        return text;
    }
    return "no failure";
}

TEST(ChunkFacility, RefusesADamagedRecordWhereHalfASampleRemains)
{
    for (const std::int32_t channels : {4, 12}) {
        const auto load =
            ChunkLoadFacilityInternal::Create(MakeFormat(LayoutPlanar, 16, channels), 3);
        const auto save =
            ChunkSaveFacilityInternal::Create(MakeFormat(LayoutPlanar, 16, channels), 3);
        for (const std::int64_t damaged : {1, 17, 33}) {
            EXPECT_EQ(MethodFailure(load, damaged, 1),
                      "ChunkMultiLoaderP16::GetLoadMethod Invalid trail");
            EXPECT_EQ(MethodFailure(save, damaged, 1),
                      "ChunkMultiSaverP16::GetLoadMethod Invalid trail");
        }
        // None of these leaves less than a sample in the last unit.
        for (const std::int64_t channelsNow : {0, 1, 8, 9, 16, 40}) {
            EXPECT_EQ(MethodFailure(load, channelsNow, 2), "no failure");
            EXPECT_EQ(MethodFailure(save, channelsNow, 2), "no failure");
        }
    }
}

TEST(ChunkFacility, FindsAMethodForAnyRecordOfWholeBytes)
{
    for (const std::int32_t channels : {1, 4, 16, 17, 81}) {
        for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar}) {
            const auto format = MakeFormat(layout, 8, channels);
            const auto load = ChunkLoadFacilityInternal::Create(format, 3);
            const auto save = ChunkSaveFacilityInternal::Create(format, 3);
            for (const std::int64_t damaged : {0, 1, 15, 16, 17, 1000, -1, -17}) {
                EXPECT_EQ(MethodFailure(load, damaged, 1), "no failure");
                EXPECT_EQ(MethodFailure(save, damaged, 1), "no failure");
            }
        }
    }
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
            auto load = ChunkLoadFacilityInternal::Create(format, 3);
            auto save = ChunkSaveFacilityInternal::Create(format, 3);
            std::set<LoadMethod> loads;
            std::set<SaveMethod> saves;
            for (load.channels = 0; load.channels < 64; ++load.channels)
                loads.insert(load.descriptor->GetLoadMethod(load));
            for (save.channels = 0; save.channels < 64; ++save.channels)
                saves.insert(save.descriptor->GetLoadMethod(save));
            EXPECT_EQ(loads.size(), family.entries);
            EXPECT_EQ(saves.size(), family.entries);
            for (load.channels = 0; load.channels < 64; ++load.channels) {
                const LoadMethod method = load.descriptor->GetLoadMethod(load);
                load.channels += static_cast<std::int64_t>(family.entries);
                EXPECT_EQ(load.descriptor->GetLoadMethod(load), method);
                load.channels -= static_cast<std::int64_t>(family.entries);
            }
        }
    }
}

#endif

} // namespace
} // namespace zvk::Pelkraft
