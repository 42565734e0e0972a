#pragma once

#include <cstring>

// Samples and words at any address. Not for files of the vector road: inline code with external
// linkage must not be built there.
namespace zvk::Pelkraft::PortableRoad {

template <typename Word>
inline Word LoadWord(const unsigned char* from)
{
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <typename Word>
inline void StoreWord(unsigned char* to, Word word)
{
    std::memcpy(to, &word, sizeof word);
}

} // namespace zvk::Pelkraft::PortableRoad
