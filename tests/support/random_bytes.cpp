#include "tests/support/random_bytes.h"

#include <random>

namespace zvk::Pelkraft::TestSupport {

std::vector<unsigned char> RandomBytes(std::size_t size, std::uint32_t seed)
{
    std::mt19937 engine(seed);
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(engine() >> 24);
    return bytes;
}

} // namespace zvk::Pelkraft::TestSupport
