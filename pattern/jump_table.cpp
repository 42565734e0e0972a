#include "pattern/jump_table.h"

#include "pattern/linear_random.h"

namespace zvk::Pelkraft {
namespace {

constexpr std::uint32_t jumpSeed = 4711;

JumpTable BuildJumpTable()
{
    LinearRandom random(jumpSeed);
    JumpTable table;
    for (std::uint16_t& entry : table)
        entry = static_cast<std::uint16_t>(random.Next() * 2);
    return table;
}

} // namespace

const JumpTable& GetJumpTable()
{
    static const JumpTable table = BuildJumpTable();
    return table;
}

} // namespace zvk::Pelkraft
