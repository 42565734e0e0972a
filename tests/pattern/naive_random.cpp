#include "tests/pattern/naive_random.h"

namespace zvk::Pelkraft::TestSupport {

std::uint32_t NaiveRand::operator()()
{
    state = (state * 214013 + 2531011) % (std::uint64_t{1} << 32);
    return static_cast<std::uint32_t>(state / 65536 % 32768);
}

NaiveTwister::NaiveTwister(std::uint32_t seed)
{
    words[0] = seed;
    for (std::uint32_t i = 1; i < 624; ++i)
        words[i] = 1812433253U * (words[i - 1] ^ (words[i - 1] >> 30)) + i;
}

std::uint32_t NaiveTwister::operator()()
{
    if (next == 624)
        Renew();
    std::uint32_t y = words[next++];
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680U;
    y ^= (y << 15) & 0xEFC60000U;
    return y ^ (y >> 18);
}

void NaiveTwister::Renew()
{
    for (std::size_t i = 0; i < 624; ++i) {
        const std::uint32_t joined =
            (words[i] & 0x80000000U) | (words[(i + 1) % 624] & 0x7FFFFFFFU);
        words[i] = words[(i + 397) % 624] ^ (joined >> 1);
        if (joined % 2 == 1)
            words[i] ^= 0x9908B0DFU;
    }
    next = 0;
}

void NaiveShuffle(std::vector<std::uint32_t>& field, std::uint32_t seed)
{
    NaiveTwister twister(seed);
    for (std::uint32_t t = 1; t < field.size(); ++t) {
        const std::uint32_t n = t + 1;
        const std::uint32_t mask = 0xFFFFFFFF;
        std::uint32_t w = 0;
        bool accepted = false;
        while (!accepted) {
            w = twister();
            accepted = w / n < mask / n || mask % n == t;
        }
        const std::uint32_t held = field[t];
        field[t] = field[w % n];
        field[w % n] = held;
    }
}

std::uint32_t NaiveJump(std::uint32_t row)
{
    static const std::vector<std::uint32_t> table = [] {
        NaiveRand rand(4711);
        std::vector<std::uint32_t> entries(65536);
        for (std::uint32_t& entry : entries)
            entry = rand() * 2;
        return entries;
    }();
    return table[row % 65536];
}

} // namespace zvk::Pelkraft::TestSupport
