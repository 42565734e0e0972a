#pragma once

#include "tests/pattern/naive_pattern.h"

#include <cstdint>
#include <map>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// Does as the reference class is defined, for patterns without suffixes: draws one number for each
// in-colour, from a sequence for each sum of weights.
class NaiveReference
{
public:
    explicit NaiveReference(const NaivePattern& newPattern) : pattern(newPattern) { Reset(); }

    Bytes Apply(const Bytes& source);
    void Reset();

private:
    std::uint32_t Draw(std::uint64_t sum);
    void AddInColor(const NaiveInColor& inColor, int step, Bytes& pixel);

    const NaivePattern pattern;
    std::map<std::uint64_t, std::vector<std::uint32_t>> fields;
    std::map<std::uint64_t, std::size_t> positions;
};

} // namespace zvk::Pelkraft::TestSupport
