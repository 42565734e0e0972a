#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The generators and the walk follow their definitions here, with nothing of the library.
class NaiveRand
{
public:
    explicit NaiveRand(std::uint32_t seed) : state(seed) {}
    std::uint32_t operator()();

private:
    std::uint64_t state;
};

class NaiveTwister
{
public:
    explicit NaiveTwister(std::uint32_t seed);
    std::uint32_t operator()();

private:
    void Renew();

    std::array<std::uint32_t, 624> words;
    std::size_t next = 624;
};

// Shuffles from front to back, each entry with one of those up to itself.
void NaiveShuffle(std::vector<std::uint32_t>& field, std::uint32_t seed);

// Gives the place at which a row starts.
std::uint32_t NaiveJump(std::uint32_t row);

} // namespace zvk::Pelkraft::TestSupport
