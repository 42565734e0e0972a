#include "tools/pelkraft/stored_places.h"

#include <algorithm>
#include <numeric>

namespace zvk::Pelkraft::Client {
namespace {

// A row without its unset ends.
using Run = std::vector<std::int32_t>;

Run RunOf(const InkRow& row)
{
    const auto isSet = [](std::int32_t value) { return value != unsetInk; };
    const auto first = std::find_if(row.begin(), row.end(), isSet);
    const auto last = std::find_if(row.rbegin(), row.rend(), isSet).base();
    return first < last ? Run(first, last) : Run();
}

bool Contains(const Run& outer, const Run& inner)
{
    return std::search(outer.begin(), outer.end(), inner.begin(), inner.end()) != outer.end();
}

} // namespace

std::size_t CountPlaces(const std::vector<InkRow>& rows)
{
    std::vector<Run> runs;
    for (const InkRow& row : rows) {
        if (Run run = RunOf(row); !run.empty())
            runs.push_back(std::move(run));
    }
    // By lane the run that holds its values. A lane looks through the runs that the lanes hold at
    // that moment, lowest lane first, and takes the first one that contains its own along, with
    // all lanes that hold the same.
    std::vector<std::size_t> held(runs.size());
    for (std::size_t lane = 0; lane < held.size(); ++lane)
        held[lane] = lane;
    for (std::size_t a = 0; a < held.size(); ++a) {
        const std::size_t own = held[a];
        for (std::size_t b = 0; b < held.size(); ++b) {
            if (held[b] == own || !Contains(runs[held[b]], runs[own]))
                continue;
            std::replace(held.begin(), held.end(), own, std::size_t{held[b]});
            break;
        }
    }
    std::sort(held.begin(), held.end());
    held.erase(std::unique(held.begin(), held.end()), held.end());
    return std::accumulate(
        held.begin(), held.end(), std::size_t{0},
        [&runs](std::size_t places, std::size_t run) { return places + runs[run].size(); });
}

} // namespace zvk::Pelkraft::Client
