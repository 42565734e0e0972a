#include "common/road.h"

namespace zvk::Pelkraft {

Road RoadOf(std::int32_t sseVersion)
{
    if (!hasVectorRoad || sseVersion < 3)
        return Road::Portable;
    if (sseVersion < 6)
        return Road::Vector;
    return sseVersion < 7 ? Road::Avx2 : Road::Avx512;
}

} // namespace zvk::Pelkraft
