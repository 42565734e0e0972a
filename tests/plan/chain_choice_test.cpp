#include "plan/chain_choice.h"
#include "tests/rows/refusal.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Asks for every option that a chain can have at once, but for a map beside a repeat.
ConversionRequest RepeatAndMirror()
{
    ConversionRequest request{};
    request.factor = -4;
    request.repeats = true;
    return request;
}

constexpr std::int32_t map[] = {1, 0, 2};

ConversionRequest MapAndMirror()
{
    ConversionRequest request{};
    request.factor = -1;
    request.maps = true;
    request.map = {3, map};
    return request;
}

const char* NameOf(ChainStep step)
{
    switch (step) {
    case ChainStep::None:
        return "-";
    case ChainStep::Reverse:
        return "reverse";
    case ChainStep::Repeat:
        return "repeat";
    case ChainStep::Remap:
        return "remap";
    case ChainStep::Unpack:
        return "unpack";
    case ChainStep::Pack:
        return "pack";
    case ChainStep::Widen:
        return "widen";
    case ChainStep::Narrow:
        return "narrow";
    }
    return "unknown";
}

struct Form
{
    int bits;
    bool planar;
};

// Interleaved ones, then planar ones; the planes of 1, 2 and 10 bits are packed.
constexpr Form forms[] = {{1, false}, {2, false}, {8, false}, {10, false}, {16, false},
                          {1, true},  {2, true},  {8, true},  {10, true},  {16, true}};

FormatPair FormatsOf(const Form& from, const Form& to)
{
    FormatPair formats;
    formats.source.bits = from.bits;
    formats.source.layout = LayoutOf(from.bits, from.planar);
    formats.source.channels = 3;
    formats.destination.bits = to.bits;
    formats.destination.layout = LayoutOf(to.bits, to.planar);
    formats.destination.channels = 3;
    return formats;
}

std::string ChainText(const Form& from, const Form& to, const ConversionRequest& request)
{
    ChainSteps chain;
    std::string end = EndOf([&] { chain = ChooseChain(FormatsOf(from, to), request); });
    if (end != returned)
        return end;
    std::string text = std::to_string(chain.GetLength()) + ":";
    for (std::uint32_t i = 0; i != chain.GetLength(); ++i)
        text.append(" ").append(NameOf(chain.GetStep(i)));
    return text;
}

// One letter for each pair of forms, source by line. What the letters say stands below.
constexpr const char* choices[] = {
    // 1 2 8 10 16 interleaved, then planar
    "=uuut=uuut", // 1 interleaved
    "u=uutu=uut", // 2
    "uu=uApp=kA", // 8
    "uuu=tuuu=t", // 10
    "ffNf=qqNk=", // 16
    "ruBuUrXBkU", // 1 planar
    "urBuUXrBkU", // 2
    "uu=uApp=kA", // 8
    "uunRnnnnRn", // 10
    "ffNf=qqNk=", // 16
};

std::string ExpectedChain(char choice, bool repeats)
{
    const std::string repeat = repeats ? " repeat" : " -";
    const std::string remap = repeats ? " -" : " remap";
    const std::string one = repeats ? " repeat" : " remap";
    switch (choice) {
    case 'r':
        return repeats ? "4: reverse unpack repeat pack" : "2: reverse remap";
    case 'R':
        return repeats ? ExpectedChain('n', repeats) : "2: reverse remap";
    case '=':
        return "2: reverse" + one;
    case 'A':
        return "4: reverse" + remap + " widen" + repeat;
    case 'U':
        return "5: reverse" + remap + " unpack widen" + repeat;
    case 'p':
        return "4: reverse" + repeat + " pack" + remap;
    case 'N':
        return "3: narrow reverse" + one;
    case 'q':
        return "5: narrow reverse" + repeat + " pack" + remap;
    case 'B':
        return "4: reverse" + remap + " unpack" + repeat;
    case 'X':
        return "5: reverse unpack" + repeat + " pack" + remap;
    case 't':
        return Words::to16;
    case 'f':
        return Words::from16;
    case 'k':
        return Words::packer;
    case 'n':
        return Words::unpacker;
    default:
        return Words::unsupported;
    }
}

TEST(ChainChoice, GivesEachPairOfFormsItsStepsInOrder)
{
    for (const ConversionRequest& request : {RepeatAndMirror(), MapAndMirror()})
        for (std::size_t from = 0; from != std::size(forms); ++from)
            for (std::size_t to = 0; to != std::size(forms); ++to)
                EXPECT_EQ(ExpectedChain(choices[from][to], request.repeats),
                          ChainText(forms[from], forms[to], request))
                    << forms[from].bits << (forms[from].planar ? " planar to " : " to ")
                    << forms[to].bits << (forms[to].planar ? " planar" : "");
}

TEST(ChainChoice, LeavesThePlacesOfMissingOptionsEmpty)
{
    constexpr Form byte{8, false};
    constexpr Form bit{1, true};
    constexpr Form pair{2, true};
    EXPECT_EQ("2: - -", ChainText(byte, byte, {}));
    EXPECT_EQ("5: - unpack - pack -", ChainText(bit, pair, {}));
    EXPECT_EQ("2: - -", ChainText(bit, bit, {}));
}

TEST(ChainChoice, RefusesTwoOptionsAheadOfAnyFormat)
{
    ConversionRequest request = RepeatAndMirror();
    request.maps = true;
    EXPECT_EQ(Words::oneOption, ChainText({1, false}, {16, false}, request));
}

TEST(ChainSteps, AreFoundAtEveryPlace)
{
    const ChainSteps chain = ChainSteps::Of(ChainStep::Narrow, ChainStep::None, ChainStep::Remap,
                                            ChainStep::Repeat, ChainStep::Pack);
    for (const ChainStep step :
         {ChainStep::Narrow, ChainStep::None, ChainStep::Remap, ChainStep::Repeat, ChainStep::Pack})
        EXPECT_TRUE(HasStep(chain, step)) << NameOf(step);
    for (const ChainStep step : {ChainStep::Reverse, ChainStep::Unpack, ChainStep::Widen})
        EXPECT_FALSE(HasStep(chain, step)) << NameOf(step);
    EXPECT_FALSE(HasStep(ChainSteps::Of(), ChainStep::None));
}

struct KnownStep
{
    ChainStep step;
    ChunkConvertFacility facility;
};

// The steps from 2 to 1 bit and back to 16, at one level.
std::vector<KnownStep> KnownSteps(std::int32_t level)
{
    using Facility = ChunkConvertFacility;
    return {{ChainStep::Widen, Facility::Create_Convert8to16(level)},
            {ChainStep::Narrow, Facility::Create_Convert16to8(level)},
            {ChainStep::Pack, Facility::Create_Packer(level, 1)},
            {ChainStep::Unpack, Facility::Create_Unpacker(level, 2)},
            {ChainStep::Reverse, Facility::Create_Reverse(level)}};
}

TEST(ChainFacilities, AreThoseOfTheStepsAtTheirLevel)
{
    const FormatPair formats = FormatsOf({2, true}, {1, true});
    for (const std::int32_t level : {0, 2, 3, 7})
        for (const auto& [step, expected] : KnownSteps(level)) {
            const ChainSteps chain = ChainSteps::Of(ChainStep::None, step);
            const ChainFacilities facilities = FacilitiesOf(chain, formats, {level, 1, {}});
            ASSERT_EQ(2U, facilities.length);
            EXPECT_EQ(nullptr, facilities.facilities[0].select);
            const ChunkConvertFacility& facility = facilities.facilities[1];
            EXPECT_EQ(level, facility.sseVersion);
            EXPECT_EQ(expected.select(expected, formats.source),
                      facility.select(facility, formats.source))
                << NameOf(step);
        }
}

TEST(ChainFacilities, CarryTheFactorAndTheMap)
{
    const FormatPair formats = FormatsOf({8, false}, {8, false});
    const ChainFacilities repeat =
        FacilitiesOf(ChainSteps::Of(ChainStep::Repeat), formats, {0, -4, {}});
    EXPECT_EQ(-4, repeat.facilities[0].repeat);
    EXPECT_EQ(0U, repeat.facilities[0].remapChannels);
    const ChainFacilities remap =
        FacilitiesOf(ChainSteps::Of(ChainStep::Remap), formats, {0, -1, {3, map}});
    EXPECT_EQ(1, remap.facilities[0].repeat);
    EXPECT_EQ(3U, remap.facilities[0].remapChannels);
    EXPECT_EQ(map, remap.facilities[0].remap);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
