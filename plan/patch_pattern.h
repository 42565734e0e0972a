#pragma once

#include "direct/row_patch.h"
#include "plan/rows_plan.h"

#include <optional>
#include <vector>

namespace zvk::Pelkraft {

// The bits that a plan turns over at last, in memory of its own, to which its patch points.
class PatchPattern
{
public:
    // Throws std::bad_alloc.
    explicit PatchPattern(const RowsRequest& request);
    PatchPattern(const PatchPattern&) = delete;
    PatchPattern& operator=(const PatchPattern&) = delete;

    // Null if no bit is turned over.
    const RowPatch* GetPatch() const { return patch ? &*patch : nullptr; }

private:
    std::vector<std::uint16_t> planes;
    std::vector<unsigned char> pixels;
    std::optional<RowPatch> patch;
};

} // namespace zvk::Pelkraft
