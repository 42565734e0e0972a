#include "dither/mask.h"

namespace zvk::Pelkraft {

const std::uint16_t* BuiltInMask()
{
    return nullptr;
}

} // namespace zvk::Pelkraft
