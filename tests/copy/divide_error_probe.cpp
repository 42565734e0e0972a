// Runs one simulation, given by its name, a size and a pixelBytes, and prints how much it copied.
#include "pelkraft/copy_primitives.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

alignas(16) unsigned char source[256];
alignas(16) unsigned char destination[256];

void Run(const char* name, int size, int pixelBytes)
{
    if (std::strcmp(name, "unaligned") == 0)
        zvk::Pelkraft::copySimulationUnaligned(source, destination, size, pixelBytes);
    else if (std::strcmp(name, "fixed") == 0)
        zvk::Pelkraft::copySimulationAlignedFixed(source, destination, size, pixelBytes);
    else if (std::strcmp(name, "variable") == 0)
        zvk::Pelkraft::copySimulationAlignedVariable(source, destination, size, pixelBytes);
    else
        std::exit(2);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 4)
        return 2;
    std::memset(source, 1, sizeof(source));
    Run(arguments[1], std::atoi(arguments[2]), std::atoi(arguments[3]));
    int copied = 0;
    for (const unsigned char byte : destination)
        copied += byte;
    std::printf("%d\n", copied);
    return 0;
}
