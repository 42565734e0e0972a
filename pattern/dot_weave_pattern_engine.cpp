#include "pattern/dot_weave_pattern_engine.h"

namespace zvk::Pelkraft {

void DotWeavePatternEngine::RemoveHolder()
{
    if (holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

} // namespace zvk::Pelkraft
