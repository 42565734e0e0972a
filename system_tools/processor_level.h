#pragma once

#include <cstdint>

namespace zvk::SystemTools {

struct CpuidRegisters
{
    std::uint32_t eax = 0;
    std::uint32_t ebx = 0;
    std::uint32_t ecx = 0;
    std::uint32_t edx = 0;
};

// The questions to the processor; a test puts other answers in their place.
class IProcessorAnswers
{
public:
    virtual CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) const = 0;

    // The register states that the operating system saves. Its instruction faults
    // unless cpuid reports OSXSAVE.
    virtual std::uint64_t ReadXcr0() const = 0;

protected:
    ~IProcessorAnswers() = default;
};

// The level, 0 to 7, that these answers amount to.
int WorkOutLevel(const IProcessorAnswers& processor);

// The level of the processor that this runs on. Off x86 it is 3 where the byte shuffle was built,
// and else 0.
int GetProcessorLevel();

} // namespace zvk::SystemTools
