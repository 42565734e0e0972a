#include "system_tools/processor_level.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::SystemTools {
namespace {

constexpr std::uint32_t allOnes = 0xFFFFFFFF;

// Answers from its fields. Junk stands wherever a processor's answer has no meaning.
class FakeProcessor final : public IProcessorAnswers
{
public:
    CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) const override
    {
        if (leaf == 0)
            return {highestLeaf, allOnes, allOnes, allOnes};
        if (leaf > highestLeaf || subleaf != 0)
            return {allOnes, allOnes, allOnes, allOnes};
        return leaf == 1 ? leaf1 : leaf == 7 ? leaf7 : CpuidRegisters{};
    }

    std::uint64_t ReadXcr0() const override
    {
        EXPECT_NE(0u, leaf1.ecx & 1u << 27) << "xgetbv faults on this processor";
        return xcr0;
    }

    std::uint32_t highestLeaf = 7;
    CpuidRegisters leaf1;
    CpuidRegisters leaf7;
    std::uint64_t xcr0 = 0;
};

// A feature, and the lowest level that can't be had without it.
struct Feature
{
    const char* name;
    int level;
    void (*add)(FakeProcessor&);
    void (*remove)(FakeProcessor&);
};

#define LEAF_FEATURE(name, level, field, bit)                                                      \
    Feature                                                                                        \
    {                                                                                              \
        name, level, [](FakeProcessor& p) { p.field |= 1u << (bit); },                             \
            [](FakeProcessor& p) { p.field &= ~(1u << (bit)); }                                    \
    }
#define STATE_FEATURE(name, level, bit)                                                            \
    Feature                                                                                        \
    {                                                                                              \
        name, level, [](FakeProcessor& p) { p.xcr0 |= 1u << (bit); },                              \
            [](FakeProcessor& p) { p.xcr0 &= ~std::uint64_t{1u << (bit)}; }                        \
    }

const std::vector<Feature>& Features()
{
    static const std::vector<Feature> features = {
        LEAF_FEATURE("SSE", 1, leaf1.edx, 25),
        LEAF_FEATURE("SSE2", 2, leaf1.edx, 26),
        LEAF_FEATURE("SSE3", 3, leaf1.ecx, 0),
        LEAF_FEATURE("SSSE3", 3, leaf1.ecx, 9),
        LEAF_FEATURE("SSE4.1", 4, leaf1.ecx, 19),
        LEAF_FEATURE("SSE4.2", 5, leaf1.ecx, 20),
        LEAF_FEATURE("OSXSAVE", 6, leaf1.ecx, 27),
        LEAF_FEATURE("AVX", 6, leaf1.ecx, 28),
        LEAF_FEATURE("AVX2", 6, leaf7.ebx, 5),
        STATE_FEATURE("XMM state", 6, 1),
        STATE_FEATURE("YMM state", 6, 2),
        LEAF_FEATURE("AVX-512 F", 7, leaf7.ebx, 16),
        LEAF_FEATURE("AVX-512 BW", 7, leaf7.ebx, 30),
        LEAF_FEATURE("AVX-512 VL", 7, leaf7.ebx, 31),
        LEAF_FEATURE("AVX-512 VBMI", 7, leaf7.ecx, 1),
        STATE_FEATURE("mask state", 7, 5),
        STATE_FEATURE("ZMM upper halves", 7, 6),
        STATE_FEATURE("ZMM 16 to 31", 7, 7),
    };
    return features;
}

FakeProcessor ProcessorOfLevel(int level)
{
    FakeProcessor processor;
    for (const Feature& feature : Features()) {
        if (feature.level <= level)
            feature.add(processor);
    }
    return processor;
}

// All that exists and more: every bit of every answer.
FakeProcessor ProcessorWithEverything()
{
    FakeProcessor processor;
    processor.leaf1 = {allOnes, allOnes, allOnes, allOnes};
    processor.leaf7 = {allOnes, allOnes, allOnes, allOnes};
    processor.xcr0 = ~std::uint64_t{0};
    return processor;
}

TEST(ProcessorLevel, IsReachedByExactlyItsFeatures)
{
    for (int level = 0; level <= 7; ++level)
        EXPECT_EQ(level, WorkOutLevel(ProcessorOfLevel(level))) << "level " << level;
}

TEST(ProcessorLevel, NeedsEachOfItsFeaturesWhateverElseThereIs)
{
    EXPECT_EQ(7, WorkOutLevel(ProcessorWithEverything()));
    for (const Feature& feature : Features()) {
        FakeProcessor processor = ProcessorWithEverything();
        feature.remove(processor);
        EXPECT_EQ(feature.level - 1, WorkOutLevel(processor)) << "without " << feature.name;
    }
}

TEST(ProcessorLevel, HeedsNoBitButThoseOfItsFeatures)
{
    FakeProcessor processor = ProcessorWithEverything();
    for (const Feature& feature : Features())
        feature.remove(processor);
    EXPECT_EQ(0, WorkOutLevel(processor));
}

TEST(ProcessorLevel, StaysAtSse42WhenTheSystemSavesNoWideRegisters)
{
    FakeProcessor processor = ProcessorOfLevel(7);
    processor.xcr0 = 1;
    EXPECT_EQ(5, WorkOutLevel(processor));
}

TEST(ProcessorLevel, AsksNoLeafAboveTheHighest)
{
    FakeProcessor processor = ProcessorWithEverything();
    for (std::uint32_t highestLeaf = 1; highestLeaf < 7; ++highestLeaf) {
        processor.highestLeaf = highestLeaf;
        EXPECT_EQ(5, WorkOutLevel(processor)) << "highest leaf " << highestLeaf;
    }
    processor.highestLeaf = 0;
    EXPECT_EQ(0, WorkOutLevel(processor));
    processor.highestLeaf = 0x20;
    EXPECT_EQ(7, WorkOutLevel(processor));
}

} // namespace
} // namespace zvk::SystemTools
