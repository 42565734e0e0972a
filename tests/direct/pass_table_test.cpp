#include "direct/direct_plan.h"
#include "plan/conversion_checks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A fill takes its passes from a table where it can, a plan of many rows lists them one after the
// other: both are the same.
namespace zvk::Pelkraft::TestSupport {
namespace {

struct Form
{
    int bits;
    bool planar;
};
constexpr Form forms[] = {{1, true}, {2, true}, {8, true}, {8, false}, {16, true}, {16, false}};

std::string TextOf(const DirectPlan& plan)
{
    std::string text = plan.sourcePlanar ? "planes" : "pixels";
    const auto add = [&](std::uint64_t number) { text.append(" ").append(std::to_string(number)); };
    for (const std::uint64_t number :
         {std::uint64_t{plan.sourceBits}, std::uint64_t{plan.sourceChannels},
          std::uint64_t{plan.channels}, std::uint64_t{plan.repeat}, std::uint64_t{plan.mirrored},
          std::uint64_t{plan.mapped}, std::uint64_t{plan.splitMaps}, std::uint64_t{plan.staged},
          std::uint64_t{plan.patchesRows}, std::uint64_t{plan.firstPixel},
          std::uint64_t{plan.sourcePlaneBytes}, std::uint64_t{plan.planeBytes},
          std::uint64_t{plan.tilePixels}})
        add(number);
    for (std::size_t i = 0; i != plan.passCount; ++i) {
        const PassOutput& pass = plan.passes[i];
        text += pass.planar ? ", planes" : ", pixels";
        add(static_cast<std::uint64_t>(pass.kind));
        add(pass.bits);
        if (pass.kind != PassKind::Step)
            continue;
        for (const std::uint8_t number :
             {plan.step.sourceBytes, plan.step.destinationBytes, plan.step.repeat,
              static_cast<std::uint8_t>(plan.step.mirrored)})
            add(number);
        for (std::size_t b = 0; b != plan.step.destinationBytes; ++b)
            add(plan.step.places[b]);
    }
    return text;
}

void ExpectSame(const ConversionRequest& request)
{
    FormatPair formats;
    BuildFormats(formats, request);
    const DirectExtras extras;
    DirectPlan listed{};
    ASSERT_TRUE(MakeDirectPlan(listed, request, formats, extras));
    DirectPlan fill{};
    ASSERT_TRUE(MakeDirectPlan(fill, request));
    EXPECT_EQ(TextOf(listed), TextOf(fill))
        << request.source.channels << " x " << request.source.bits << " to "
        << request.destination.channels << " x " << request.destination.bits << ", factor "
        << request.factor << ", level " << request.sseVersion;
}

// Calls body(source, destination) for each pair of forms.
template <typename Body>
void ForEachPair(int channels, int newChannels, Body body)
{
    for (const Form& from : forms)
        for (const Form& to : forms)
            body({70, channels, from.bits, from.planar},
                 RowGeometry{61, newChannels, to.bits, to.planar});
}

constexpr int levels[] = {0, 3, 6, 7};

TEST(PassTable, HasThePassesThatAreListedOtherwise)
{
    for (const int level : levels)
        for (int channels = 1; channels <= 140; ++channels)
            ForEachPair(channels, channels, [&](const RowGeometry& from, const RowGeometry& to) {
                for (const int factor : {1, -1, 2, -2, 4, -4})
                    ExpectSame({from, to, level, factor});
            });
}

TEST(PassTable, HasThePassesOfMaps)
{
    for (const int level : levels)
        for (const int channels : {1, 2, 3, 4, 5, 8, 9, 16, 17, 32, 33})
            for (const int newChannels : {1, 2, 4, 5, 8, 9, 32, 33, 64}) {
                std::vector<std::int32_t> map(static_cast<std::size_t>(newChannels));
                for (std::size_t c = 0; c != map.size(); ++c)
                    map[c] = c % 3 == 2 ? -1 - static_cast<std::int32_t>(c)
                                        : channels - 1 - static_cast<std::int32_t>(c) % channels;
                ForEachPair(channels, newChannels,
                            [&](const RowGeometry& from, const RowGeometry& to) {
                                for (const int factor : {1, -1, 2}) {
                                    ConversionRequest request{from, to, level, factor};
                                    request.maps = true;
                                    request.map = {map.size(), map.data()};
                                    ExpectSame(request);
                                }
                            });
            }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
