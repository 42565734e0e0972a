#include "dither/mask.h"

#include <cstdio>

// Writes the ranks of the built-in mask to a file, two bytes each, the low one first.
int main(int count, char** words)
{
    std::FILE* const file = count == 2 ? std::fopen(words[1], "wb") : nullptr;
    if (file == nullptr)
        return 2;
    for (std::size_t place = 0; place < zvk::Pelkraft::maskPlaces; ++place) {
        const std::uint16_t rank = zvk::Pelkraft::BuiltInMask()[place];
        std::fputc(rank & 0xFF, file);
        std::fputc(rank >> 8, file);
    }
    return std::fclose(file) == 0 ? 0 : 1;
}
