#include "pelkraft/copy_primitives.h"
#include "tests/copy/copy_check.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <limits>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

struct Simulation
{
    const char* name;
    void (*run)(unsigned char* source, unsigned char* destination, int size, int pixelBytes);
};

class CopySimulationAligned : public testing::TestWithParam<Simulation>
{
protected:
    static CopyCall Copy(int size, int pixelBytes)
    {
        return [=](unsigned char* source, unsigned char* destination) {
            GetParam().run(source, destination, size, pixelBytes);
        };
    }
};

INSTANTIATE_TEST_SUITE_P(BothForms, CopySimulationAligned,
                         testing::Values(Simulation{"Fixed", copySimulationAlignedFixed},
                                         Simulation{"Variable", copySimulationAlignedVariable}),
                         [](const auto& form) { return form.param.name; });

// Pixel by pixel, as long as there are 16 to make a group.
long long NaiveRange(int size, int pixelBytes)
{
    long long groups = 0;
    while ((groups + 1) * 16 * pixelBytes <= size)
        ++groups;
    return groups * 16 * pixelBytes;
}

TEST_P(CopySimulationAligned, CopiesWholeGroupsOfPixels)
{
    for (int pixelBytes = 1; pixelBytes <= 32; ++pixelBytes)
        for (const int count : {0, 1, 15, 16, 17, 31, 32, 33, 47, 48, 128, 129, 143, 144, 160})
            for (const int spare : {0, pixelBytes - 1}) {
                const int size = count * pixelBytes + spare;
                SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
                ExpectCopies(NaiveRange(size, pixelBytes), Copy(size, pixelBytes));
            }
}

TEST_P(CopySimulationAligned, LeavesPixelsThatMakeNoGroup)
{
    ExpectCopies(0, Copy(45, 3));
    ExpectCopies(48, Copy(48, 3));
    ExpectCopies(48, Copy(51, 3));
}

TEST_P(CopySimulationAligned, CopiesInPlace)
{
    for (int pixelBytes = 1; pixelBytes <= 32; ++pixelBytes) {
        const int size = 64 * pixelBytes;
        const Bytes content = RandomBytes(static_cast<std::size_t>(size), 31);
        const GuardedBuffer row(content);
        GetParam().run(row.data(), row.data(), size, pixelBytes);
        EXPECT_EQ(content, row.bytes()) << pixelBytes;
    }
}

TEST_P(CopySimulationAligned, DoesNothingWithANegativePixel)
{
    for (const int size : {0, 1, 48, 1000, highest, -1, -48, -1000, lowest + 1})
        for (const int pixelBytes : {-1, -3, -16, -33, lowest}) {
            SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
            ExpectCopies(0, Copy(size, pixelBytes));
            GetParam().run(nullptr, nullptr, size, pixelBytes);
        }
}

TEST_P(CopySimulationAligned, DoesNothingWithANegativeSize)
{
    for (const int size : {-1, -16, -48, -1000, lowest})
        for (const int pixelBytes : {1, 2, 3, 16, 17, 32, 33, highest}) {
            SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
            ExpectCopies(0, Copy(size, pixelBytes));
            GetParam().run(nullptr, nullptr, size, pixelBytes);
        }
}

TEST_P(CopySimulationAligned, UsesNoPointerWithoutAGroup)
{
    for (const int pixelBytes : {1, 3, 16, 17, 32})
        GetParam().run(nullptr, nullptr, 16 * pixelBytes - 1, pixelBytes);
    // Nor an address that would fault.
    unsigned char bytes[64] = {};
    GetParam().run(bytes + 1, bytes + 35, 15, 1);
}

// The fault is the processor's: where it has no aligned moves, any address is served.
#if defined(__SSE2__)

TEST_P(CopySimulationAligned, FaultsOnAnUnalignedBuffer)
{
    const GuardedBuffer source(1024, Flush::AtStart);
    const GuardedBuffer destination(1024, Flush::AtStart);
    for (const int pixelBytes : {1, 3, 4, 16, 17, 32})
        for (const int gap : {1, 8, 15}) {
            SCOPED_TRACE(testing::Message() << pixelBytes << " bytes, off by " << gap);
            ExpectRefusedAddress([&] {
                GetParam().run(source.data() + gap, destination.data(), 16 * pixelBytes,
                               pixelBytes);
            });
            ExpectRefusedAddress([&] {
                GetParam().run(source.data(), destination.data() + gap, 16 * pixelBytes,
                               pixelBytes);
            });
        }
}

#endif

TEST(CopySimulationAlignedFixed, DoesNothingWithAPixelAbove32)
{
    for (const int pixelBytes : {33, 34, 48, 64, 128, 1000, highest}) {
        SCOPED_TRACE(pixelBytes);
        ExpectCopies(0, [=](unsigned char* source, unsigned char* destination) {
            copySimulationAlignedFixed(source, destination, highest, pixelBytes);
        });
        copySimulationAlignedFixed(nullptr, nullptr, highest, pixelBytes);
    }
}

TEST(CopySimulationAlignedVariable, CopiesPixelsOfAnySize)
{
    const auto copy = [](int size, int pixelBytes) {
        return [=](unsigned char* source, unsigned char* destination) {
            copySimulationAlignedVariable(source, destination, size, pixelBytes);
        };
    };
    ExpectCopies(528, copy(1000, 33));
    for (int pixelBytes = 33; pixelBytes <= 130; ++pixelBytes)
        for (const int count : {15, 16, 31, 33}) {
            const int size = count * pixelBytes + pixelBytes - 1;
            SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
            ExpectCopies(NaiveRange(size, pixelBytes), copy(size, pixelBytes));
        }
    for (const int pixelBytes : {255, 256, 257, 1000, 4095, 65536})
        ExpectCopies(16LL * pixelBytes, copy(16 * pixelBytes, pixelBytes));
    ExpectCopies(0, copy(highest, highest / 15));
    ExpectCopies(0, copy(highest, highest));
}

} // namespace
} // namespace zvk::Pelkraft
