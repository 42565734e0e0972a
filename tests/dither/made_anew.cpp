#include "dither/mask_generator.h"
#include "pelkraft/dither.h"

#include <algorithm>
#include <iostream>

// Makes the mask anew and compares it with the one of the library.
int main()
{
    const auto ranks = zvk::Pelkraft::MakeMask();
    if (std::equal(ranks.begin(), ranks.end(), plk_dither_mask()))
        return 0;
    std::cerr << "the library's mask is not the one that the generator makes\n";
    return 1;
}
