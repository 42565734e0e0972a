#include "pattern/jump_table.h"

#include "pattern/linear_random.h"

#include <algorithm>

namespace zvk::Pelkraft {
namespace {

constexpr std::uint32_t jumpSeed = 4711;

JumpTable BuildJumpTable()
{
    LinearRandom random(jumpSeed);
    JumpTable table;
    std::generate(table.begin(), table.end(),
                  [&random] { return static_cast<std::uint16_t>(random.Next() * 2); });
    return table;
}

} // namespace

const JumpTable& GetJumpTable()
{
    static const JumpTable table = BuildJumpTable();
    return table;
}

} // namespace zvk::Pelkraft
