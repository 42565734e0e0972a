#include "system_tools/processor_level.h"

#if defined(_MSC_VER) && !defined(__clang__) && (defined(_M_X64) || defined(_M_IX86))
#include <intrin.h>
#define ZVK_PROCESSOR_MICROSOFT
#elif defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#define ZVK_PROCESSOR_GNU
#endif

namespace zvk::SystemTools {
namespace {

constexpr std::uint32_t Bit(int number)
{
    return std::uint32_t{1} << number;
}

constexpr bool HasAll(std::uint64_t answer, std::uint64_t wanted)
{
    return (answer & wanted) == wanted;
}

// Leaf 1, edx.
constexpr std::uint32_t sse = Bit(25);
constexpr std::uint32_t sse2 = Bit(26);

// Leaf 1, ecx. Code built for SSSE3 may use SSE3 as well, and code built for AVX2 uses AVX.
constexpr std::uint32_t ssse3 = Bit(0) | Bit(9);
constexpr std::uint32_t sse41 = Bit(19);
constexpr std::uint32_t sse42 = Bit(20);
constexpr std::uint32_t osXsave = Bit(27);
constexpr std::uint32_t avx = Bit(28);

// Leaf 7: AVX-512 is F, BW and VL in ebx, and VBMI in ecx.
constexpr std::uint32_t avx2 = Bit(5);
constexpr std::uint32_t avx512 = Bit(16) | Bit(30) | Bit(31);
constexpr std::uint32_t avx512Vbmi = Bit(1);

// States in XCR0: XMM and the upper half of YMM; then mask registers and both parts of ZMM.
constexpr std::uint32_t ymmState = Bit(1) | Bit(2);
constexpr std::uint32_t zmmState = ymmState | Bit(5) | Bit(6) | Bit(7);

// Past the highest leaf some processors repeat an unrelated answer, so it isn't asked.
CpuidRegisters AskLeaf(const IProcessorAnswers& processor, std::uint32_t leaf)
{
    const std::uint32_t highestLeaf = processor.Cpuid(0, 0).eax;
    return leaf <= highestLeaf ? processor.Cpuid(leaf, 0) : CpuidRegisters{};
}

#if defined(ZVK_PROCESSOR_MICROSOFT)

class ThisProcessor final : public IProcessorAnswers
{
public:
    CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) const override
    {
        int answer[4];
        __cpuidex(answer, static_cast<int>(leaf), static_cast<int>(subleaf));
        return {static_cast<std::uint32_t>(answer[0]), static_cast<std::uint32_t>(answer[1]),
                static_cast<std::uint32_t>(answer[2]), static_cast<std::uint32_t>(answer[3])};
    }

    std::uint64_t ReadXcr0() const override { return _xgetbv(0); }
};

#elif defined(ZVK_PROCESSOR_GNU)

class ThisProcessor final : public IProcessorAnswers
{
public:
    CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) const override
    {
        CpuidRegisters answer;
        __get_cpuid_count(leaf, subleaf, &answer.eax, &answer.ebx, &answer.ecx, &answer.edx);
        return answer;
    }

    // Written out, since the intrinsic would need a compiler flag that this file must not have.
    std::uint64_t ReadXcr0() const override
    {
        std::uint32_t low = 0;
        std::uint32_t high = 0;
        __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
        return std::uint64_t{high} << 32 | low;
    }
};

#endif

} // namespace

int WorkOutLevel(const IProcessorAnswers& processor)
{
    const CpuidRegisters leaf1 = AskLeaf(processor, 1);
    const CpuidRegisters leaf7 = AskLeaf(processor, 7);
    const std::uint64_t states = HasAll(leaf1.ecx, osXsave) ? processor.ReadXcr0() : 0;
    const bool meetsLevel[] = {
        HasAll(leaf1.edx, sse),
        HasAll(leaf1.edx, sse2),
        HasAll(leaf1.ecx, ssse3),
        HasAll(leaf1.ecx, sse41),
        HasAll(leaf1.ecx, sse42),
        HasAll(leaf1.ecx, avx) && HasAll(leaf7.ebx, avx2) && HasAll(states, ymmState),
        HasAll(leaf7.ebx, avx512) && HasAll(leaf7.ecx, avx512Vbmi) && HasAll(states, zmmState),
    };

    // The first level that isn't met ends the climb: each includes those below.
    int level = 0;
    for (const bool meets : meetsLevel) {
        if (!meets)
            break;
        ++level;
    }
    return level;
}

int GetProcessorLevel()
{
#if defined(ZVK_PROCESSOR_MICROSOFT) || defined(ZVK_PROCESSOR_GNU)
    return WorkOutLevel(ThisProcessor{});
#elif defined(PELKRAFT_VECTOR_ROAD)
    // No other processor has levels to ask for. It counts as one of SSSE3, so that rows and
    // patterns get the bytes that they get on x86.
    return 3;
#else
    return 0;
#endif
}

} // namespace zvk::SystemTools
