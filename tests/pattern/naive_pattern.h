#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;

// Alternative j of a step has weights[j] and puts values[j] on the ink position positions[j].
struct NaiveLine
{
    std::vector<std::uint64_t> weights;
    std::vector<int> positions;
    std::vector<int> values;
};

struct NaiveInColor
{
    // The out-inks stand by position. No ink is fed twice.
    std::vector<int> inks;
    // The lines stand by step; a gap is only allowed at 0.
    std::map<int, NaiveLine> lines;
};

struct NaivePattern
{
    int version = 2;
    int seed = 42;
    int outInks = 0;
    std::vector<NaiveInColor> inColors;

    std::string Text() const;
};

// Simulates pixel by pixel from the definition, in exact arithmetic and with no table of rows.
class NaiveSimulation
{
public:
    explicit NaiveSimulation(const NaivePattern& newPattern);

    static std::uint64_t CountCombinations(const NaivePattern& pattern);
    // The walk meets these numbers of combinations.
    const std::vector<std::uint32_t>& Field() const { return field; }

    Bytes Row(const Bytes& source);
    // The next row is the one that follows so many others after construction.
    void SkipTo(std::uint64_t newRow);
    // The first row after it may start one place later.
    void Reset(bool oneLater);

private:
    // The steps of an in-colour that have one distribution share a variable.
    struct Variable
    {
        std::vector<std::uint64_t> weights;
        std::uint64_t sum = 0;
    };
    struct Share
    {
        std::uint64_t numerator = 1;
        std::uint64_t denominator = 1;
    };

    static std::vector<Variable> VariablesOf(const NaiveInColor& inColor);
    Share ShareOf(std::uint64_t combination) const;
    void DrawFirstGeneration();
    void DrawSecondGeneration();
    unsigned char InkValue(std::uint64_t combination, const unsigned char* pixel, int ink) const;
    std::size_t Alternative(std::uint64_t combination, std::size_t inColor,
                            const NaiveLine& line) const;

    const NaivePattern pattern;
    const std::uint64_t combinations;
    // Each in-colour has its own variables.
    std::vector<std::vector<Variable>> variables;
    std::vector<std::uint32_t> field;
    std::uint64_t position = 0;
    std::uint32_t row = 0;
};

// The vector engine may still refuse such a pattern for its number of values.
NaivePattern RandomPattern(std::mt19937& random, int version);

} // namespace zvk::Pelkraft::TestSupport
