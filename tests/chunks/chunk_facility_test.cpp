#include "chunks/chunk_facility.h"

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
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
            for (const std::int32_t level : {0, 1, 2}) {
                EXPECT_EQ(LoadFailure(format, level),
                          "ChunkLoadFacilityInternal::SelectDescriptorX86 Unsupported format");
                EXPECT_EQ(SaveFailure(format, level),
                          "ChunkSaveFacilityInternal::SelectDescriptorX86 Unsupported format");
            }
            for (const std::int32_t level : {3, 4, 7}) {
                EXPECT_EQ(LoadFailure(format, level),
                          "ChunkLoadFacilityInternal::SelectDescriptor Unsupported format");
                EXPECT_EQ(SaveFailure(format, level),
                          "ChunkSaveFacilityInternal::SelectDescriptor Unsupported format");
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

} // namespace
} // namespace zvk::Pelkraft
