#include "tests/pattern/engine_support.h"

#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

namespace zvk::Pelkraft::TestSupport {

DotWeavePattern Load(const std::string& text, Engine engine)
{
    std::string own = text;
    return DotWeavePattern(own.data(), engine);
}

std::string Refusal(const std::string& text, Engine engine)
{
    return WhatIsThrown([&] { Load(text, engine); });
}

Bytes Apply(DotWeavePattern& pattern, const Bytes& source)
{
    const std::size_t pixels = source.size() / static_cast<std::size_t>(pattern.GetInColorCount());
    const GuardedBuffer from(source);
    const GuardedBuffer to(pixels * static_cast<std::size_t>(pattern.GetOutColorCount()),
                           Flush::AtEnd, 0xA5);
    pattern.ApplyPattern(from.data(), to.data(), static_cast<unsigned long>(pixels));
    return to.bytes();
}

Bytes RandomSteps(std::size_t size, std::uint32_t seed)
{
    Bytes steps = RandomBytes(size, seed);
    for (unsigned char& step : steps)
        // One in sixteen keeps all its bits.
        step = (step & 0xF0U) == 0xF0U ? step : static_cast<unsigned char>(step & 7U);
    return steps;
}

} // namespace zvk::Pelkraft::TestSupport
