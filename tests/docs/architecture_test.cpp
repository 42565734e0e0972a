// Holds the page's way of some jobs through the direct road against the plans that are made.
#include "plan/plan.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zvk::Pelkraft {
namespace {

const char* NameOf(PassKind kind)
{
    switch (kind) {
    case PassKind::Copy:
        return "Copy";
    case PassKind::Widen:
        return "Widen";
    case PassKind::Narrow:
        return "Narrow";
    case PassKind::Pack:
        return "Pack";
    case PassKind::NarrowPack:
        return "NarrowPack";
    case PassKind::Unpack:
        return "Unpack";
    case PassKind::UnpackWiden:
        return "UnpackWiden";
    case PassKind::MirrorBits:
        return "MirrorBits";
    case PassKind::Step:
        return "Step";
    case PassKind::Move:
        return "Move";
    case PassKind::Split:
        return "Split";
    case PassKind::PackSplit:
        return "PackSplit";
    case PassKind::SplitWiden:
        return "SplitWiden";
    case PassKind::NarrowSplit:
        return "NarrowSplit";
    case PassKind::Merge:
        return "Merge";
    case PassKind::Quantize:
        return "Quantize";
    case PassKind::Stretch:
        return "Stretch";
    case PassKind::Cut:
        return "Cut";
    case PassKind::Extend:
        return "Extend";
    case PassKind::Clear:
        return "Clear";
    }
    return "no pass";
}

std::string PassesOf(const ConversionRequest& request)
{
    Plan plan;
    plan.request = request;
    MakePlan(plan);
    if (plan.road != PlanRoad::Direct)
        return "not direct";
    std::string names;
    for (std::size_t i = 0; i != plan.direct.passCount; ++i)
        names.append(names.empty() ? "`" : ", `").append(NameOf(plan.direct.passes[i].kind)) += "`";
    return names;
}

ConversionRequest RequestOf(const RowGeometry& from, const RowGeometry& to, int level)
{
    return {from, to, level};
}

class PageOfArchitecture : public ::testing::Test
{
public:
    void ExpectRow(const std::string& job, const ConversionRequest& request) const
    {
        const std::string row = "\n| " + job + " | " + PassesOf(request) + " |";
        EXPECT_NE(std::string::npos, page.find(row)) << row;
    }

private:
    std::ifstream file{PELKRAFT_SOURCE "/docs/architecture.md"};
    const std::string page{std::istreambuf_iterator<char>(file), {}};
};

TEST_F(PageOfArchitecture, HasThePassesOfItsJobs)
{
    constexpr int level = 6;
    ExpectRow("split 4 x 8 bit", RequestOf({1000, 4, 8, false}, {1000, 4, 8, true}, level));
    ExpectRow("4 x 16 bit interleaved to 8 bit planar",
              RequestOf({1000, 4, 16, false}, {1000, 4, 8, true}, level));
    ExpectRow("8 x 16 bit interleaved to 8 bit planar",
              RequestOf({1000, 8, 16, false}, {1000, 8, 8, true}, level));

    ConversionRequest mirror = RequestOf({1000, 4, 1, true}, {1000, 4, 1, true}, level);
    mirror.repeats = true;
    mirror.factor = -1;
    ExpectRow("mirror 1 bit", mirror);

    const std::vector<int> map = {19, 18, 17, 16, 15, 14, 13, 12, 11, 10,
                                  9,  8,  7,  6,  5,  4,  3,  2,  1,  0};
    ConversionRequest remap = RequestOf({1000, 20, 8, false}, {1000, 20, 8, false}, level);
    remap.maps = true;
    remap.map = {map.size(), map.data()};
    if constexpr (hasVectorRoad)
        ExpectRow("remap 20 x 8 bit, interleaved", remap);
    for (const int otherLevel : {0, 7}) {
        remap.sseVersion = otherLevel;
        if (hasWideRoads || otherLevel == 0) {
            EXPECT_EQ("`Step`", PassesOf(remap)) << otherLevel;
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft
