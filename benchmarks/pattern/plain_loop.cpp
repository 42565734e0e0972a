#include "benchmarks/pattern/bare_loops.h"

namespace zvk::Pelkraft::Benchmarks {

void ApplyPlain(const Row& row, const std::vector<unsigned char>& values, std::size_t combinations,
                std::mt19937& random)
{
    const unsigned char* source = row.source;
    unsigned char* destination = row.destination;
    for (std::size_t i = 0; i < row.pixels; ++i) {
        const std::size_t combination = random() % combinations;
        const unsigned char* ofCombination = values.data() + combination * row.outInks * 8;
        for (std::size_t ink = 0; ink < row.outInks; ++ink)
            destination[ink] = ofCombination[ink * 8 + source[ink % row.inColors]];
        source += row.inColors;
        destination += row.outInks;
    }
}

} // namespace zvk::Pelkraft::Benchmarks
