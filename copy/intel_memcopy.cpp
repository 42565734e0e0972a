#include "pelkraft/copy_primitives.h"

#include <cstddef>
#include <cstring>

namespace zvk::Pelkraft {

void intelMemcopy(unsigned char* source, unsigned char* destination, int size)
{
    if (size <= 0)
        return;
    // Not memcpy: as fast where it counts, and defined for buffers that overlap.
    std::memmove(destination, source, static_cast<std::size_t>(size));
}

} // namespace zvk::Pelkraft
