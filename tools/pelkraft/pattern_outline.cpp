#include "tools/pelkraft/pattern_outline.h"

namespace zvk::Pelkraft::Client {
namespace {

std::vector<std::string> ListOf(const std::map<std::string, NamedIndex>& names,
                                const std::string& kind)
{
    std::vector<std::string> list(names.size());
    for (const auto& [upper, entry] : names) {
        const auto index = static_cast<std::size_t>(entry.index);
        if (index < list.size())
            list[index] = entry.spelling;
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].empty())
            list[i] = kind + " " + std::to_string(i + 1);
    }
    return list;
}

} // namespace

std::vector<std::string> PatternOutline::InColourList() const
{
    return ListOf(inColourNames, "Colour");
}

std::vector<std::string> PatternOutline::OutInkList() const
{
    return ListOf(outInkNames, "Ink");
}

bool SameDistribution(const Step& left, const Step& right)
{
    if (left.count != right.count || (left.count > 0 && left.weightSum != right.weightSum))
        return false;
    for (std::size_t i = 0; i < left.count; ++i) {
        if (left.alternatives[i].weight != right.alternatives[i].weight)
            return false;
    }
    return true;
}

} // namespace zvk::Pelkraft::Client
