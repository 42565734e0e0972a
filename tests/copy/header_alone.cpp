#include "pelkraft/copy_primitives.h"

// Compiled as C++11, with nothing in front of the header.
using Copy = void (*)(unsigned char*, unsigned char*, int);
using Simulation = void (*)(unsigned char*, unsigned char*, int, int);

extern const Copy copies[];
const Copy copies[] = {zvk::Pelkraft::intelMemcopy, zvk::Pelkraft::copyByDwords};

extern const Simulation simulations[];
const Simulation simulations[] = {zvk::Pelkraft::copySimulationUnaligned,
                                  zvk::Pelkraft::copySimulationAlignedFixed,
                                  zvk::Pelkraft::copySimulationAlignedVariable};
