#include "tests/support/conversion_choices.h"

#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Form forms[] = {{8, false}, {8, true},  {16, false}, {16, true}, {10, false},
                          {1, false}, {2, false}, {1, true},   {2, true},  {10, true}};
constexpr int factors[] = {1, 2, 4, -1, -2, -4};

enum class MapKind
{
    Identity,
    Permutation,
    Growing,
    Shrinking,
    Negative,
    Repeated,
};
constexpr MapKind mapKinds[] = {MapKind::Identity,  MapKind::Permutation, MapKind::Growing,
                                MapKind::Shrinking, MapKind::Negative,    MapKind::Repeated};

NaiveOperation MapOf(MapKind kind, int channels)
{
    NaiveOperation operation;
    operation.isFill = false;
    operation.hasMap = true;
    const int entries = kind == MapKind::Growing     ? channels + 5
                        : kind == MapKind::Shrinking ? (channels + 1) / 2
                                                     : channels;
    for (int i = 0; i != entries; ++i) {
        int entry = i % channels;
        if (kind == MapKind::Permutation || kind == MapKind::Shrinking)
            entry = channels - 1 - i;
        if (kind == MapKind::Negative && i % 3 == 1)
            entry = -1 - i;
        if (kind == MapKind::Repeated)
            entry = i / 2;
        operation.map.push_back(entry);
    }
    return operation;
}

} // namespace

std::vector<std::pair<Form, Form>> ServedForms(const NaiveOperation& operation)
{
    std::vector<std::pair<Form, Form>> pairs;
    for (const Form& from : forms)
        for (const Form& to : forms)
            if (IsServed({1, 1, from.bits, from.planar}, {1, 1, to.bits, to.planar}, operation))
                pairs.emplace_back(from, to);
    return pairs;
}

std::vector<NaiveOperation> Operations(int channels)
{
    std::vector<NaiveOperation> operations(1);
    for (const int factor : factors)
        operations.push_back(RepeatBy(factor));
    for (const MapKind kind : mapKinds)
        operations.push_back(MapOf(kind, channels));
    return operations;
}

std::vector<int> ChannelCounts()
{
    std::vector<int> counts;
    for (int count = 1; count <= 20; ++count)
        counts.push_back(count);
    for (const int count : {24, 31, 32, 33, 40, 48, 64, 65, 80, 81, 96, 97, 130})
        counts.push_back(count);
    return counts;
}

std::vector<int> Widths()
{
    std::vector<int> widths;
    for (int width = 0; width <= 40; ++width)
        widths.push_back(width);
    for (const int width : {61, 62, 63, 64, 65, 127, 128, 129, 255, 256, 257, 1000})
        widths.push_back(width);
    return widths;
}

int DestinationWidth(int sourceWidth, int factor, unsigned choice)
{
    const int natural = sourceWidth * std::abs(factor);
    if (choice == 1)
        return natural * 2 / 3;
    return choice == 2 ? natural + 7 : natural;
}

} // namespace zvk::Pelkraft::TestSupport
