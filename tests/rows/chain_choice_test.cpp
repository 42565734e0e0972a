#include "converters/convert_classes.h"
#include "rows/chain_choice.h"
#include "tests/rows/refusal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Stand in for the options: only their places matter.
const IChunkConvertDescriptor* SelectReverse(const ChunkConvertFacility&, const ImageRowFormat&)
{
    return nullptr;
}

const IChunkConvertDescriptor* SelectRepeat(const ChunkConvertFacility&, const ImageRowFormat&)
{
    return nullptr;
}

const IChunkConvertDescriptor* SelectRemap(const ChunkConvertFacility&, const ImageRowFormat&)
{
    return nullptr;
}

constexpr std::int32_t map[] = {1, 0};

ChainOptions MarkedOptions()
{
    ChainOptions options;
    options.reverse.sseVersion = 11;
    options.reverse.select = SelectReverse;
    options.repeat.sseVersion = 12;
    options.repeat.repeat = -4;
    options.repeat.select = SelectRepeat;
    options.remap.sseVersion = 13;
    options.remap.remapChannels = 2;
    options.remap.remap = map;
    options.remap.select = SelectRemap;
    return options;
}

bool IsSame(const ChunkConvertFacility& one, const ChunkConvertFacility& other)
{
    return one.sseVersion == other.sseVersion && one.repeat == other.repeat &&
           one.remapChannels == other.remapChannels && one.remap == other.remap &&
           one.select == other.select;
}

struct KnownStep
{
    const char* name;
    const IChunkConvertDescriptor* descriptor;
};

std::vector<KnownStep> KnownSteps(std::int32_t level)
{
#ifdef PELKRAFT_VECTOR_ROAD
    if (level >= 3) {
        namespace Road = VectorRoad;
        return {{"widen", Road::GetConvert8to16bit()}, {"narrow", Road::GetConvert16to8bit()},
                {"pack1", Road::GetPacker(1)},         {"pack2", Road::GetPacker(2)},
                {"unpack1", Road::GetUnpacker(1)},     {"unpack2", Road::GetUnpacker(2)}};
    }
#endif
    (void)level;
    namespace Road = PortableRoad;
    return {{"widen", Road::GetConvert8to16bit()}, {"narrow", Road::GetConvert16to8bit()},
            {"pack1", Road::GetPacker(1)},         {"pack2", Road::GetPacker(2)},
            {"unpack1", Road::GetUnpacker(1)},     {"unpack2", Road::GetUnpacker(2)}};
}

std::string NameOf(const ChunkConvertFacility& facility, std::int32_t level)
{
    if (IsSame(facility, {}))
        return "-";
    const ChainOptions options = MarkedOptions();
    if (IsSame(facility, options.reverse))
        return "reverse";
    if (IsSame(facility, options.repeat))
        return "repeat";
    if (IsSame(facility, options.remap))
        return "remap";
    ImageRowFormat input;
    input.bits = 8;
    input.layout = LayoutInterleaved;
    input.channels = 3;
    const bool isPlain = facility.sseVersion == level && facility.repeat == 1 &&
                         facility.remapChannels == 0 && facility.remap == nullptr;
    for (const KnownStep& step : KnownSteps(level))
        if (isPlain && facility.select(facility, input) == step.descriptor)
            return step.name;
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

std::string ChainText(const Form& from, const Form& to, const ChainOptions& options,
                      std::int32_t level)
{
    Chain chain;
    std::string end = EndOf([&] { chain = ChooseChain(FormatsOf(from, to), options, level); });
    if (end != returned)
        return end;
    std::string text = std::to_string(chain.length) + ":";
    for (std::size_t i = 0; i != chain.length; ++i)
        text.append(" ").append(NameOf(chain.facilities[i], level));
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
    "=uBuU=XBkU", // 1 planar
    "u=BuUX=BkU", // 2
    "uu=uApp=kA", // 8
    "uun=nnnn=n", // 10
    "ffNf=qqNk=", // 16
};

std::string Number(int number)
{
    return std::to_string(number);
}

std::string ExpectedChain(char choice, const Form& from, const Form& to)
{
    const std::string unpack = " unpack" + Number(from.bits);
    const std::string pack = " pack" + Number(to.bits);
    switch (choice) {
    case '=':
        return "2: reverse repeat";
    case 'A':
        return "4: reverse remap widen repeat";
    case 'U':
        return "5: reverse remap" + unpack + " widen repeat";
    case 'p':
        return "4: reverse repeat" + pack + " remap";
    case 'N':
        return "3: narrow reverse repeat";
    case 'q':
        return "5: narrow reverse repeat" + pack + " remap";
    case 'B':
        return "4: reverse remap" + unpack + " repeat";
    case 'X':
        return "5: reverse" + unpack + " repeat" + pack + " remap";
    case 't':
        return "zvk::Pelkraft::Convert unsupported conversion to 16 bit";
    case 'f':
        return "zvk::Pelkraft::Convert unsupported conversion from 16 bit";
    case 'k':
        return "zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported format";
    case 'n':
        return "zvk::Pelkraft::ChunkConvertFacility::Create_Unpacker unsupported format";
    default:
        return "zvk::Pelkraft::Convert unsupported conversion";
    }
}

std::vector<std::int32_t> Levels()
{
    return {0, 2, 3, 7};
}

TEST(ChainChoice, GivesEachPairOfFormsItsStepsInOrder)
{
    for (const std::int32_t level : Levels())
        for (std::size_t from = 0; from != std::size(forms); ++from)
            for (std::size_t to = 0; to != std::size(forms); ++to)
                EXPECT_EQ(ExpectedChain(choices[from][to], forms[from], forms[to]),
                          ChainText(forms[from], forms[to], MarkedOptions(), level))
                    << forms[from].bits << (forms[from].planar ? " planar to " : " to ")
                    << forms[to].bits << (forms[to].planar ? " planar, level " : ", level ")
                    << level;
}

TEST(ChainChoice, TakesTheMapWhereThereIsNoRepeat)
{
    ChainOptions options = MarkedOptions();
    options.repeat = {};
    constexpr Form byte{8, false};
    constexpr Form word{16, true};
    constexpr Form bit{1, true};
    EXPECT_EQ("2: reverse remap", ChainText(byte, byte, options, 0));
    EXPECT_EQ("3: narrow reverse remap", ChainText(word, byte, options, 3));
    EXPECT_EQ("4: reverse remap widen -", ChainText(byte, word, options, 3));
    EXPECT_EQ("5: reverse remap unpack1 widen -", ChainText(bit, word, options, 0));
    EXPECT_EQ("4: reverse - pack1 remap", ChainText(byte, bit, options, 0));
}

TEST(ChainChoice, LeavesThePlacesOfMissingOptionsEmpty)
{
    constexpr Form byte{8, false};
    constexpr Form bit{1, true};
    constexpr Form pair{2, true};
    EXPECT_EQ("2: - -", ChainText(byte, byte, {}, 3));
    EXPECT_EQ("5: - unpack1 - pack2 -", ChainText(bit, pair, {}, 3));
}

TEST(ChainChoice, MirrorsForANegativeFactorAlone)
{
    ConversionRequest request{};
    request.sseVersion = 5;
    for (const std::int32_t factor : {1, 2, 4}) {
        request.factor = factor;
        EXPECT_TRUE(IsSame({}, ReverseFor(request)));
    }
    for (const std::int32_t factor : {-1, -2, -4}) {
        request.factor = factor;
        EXPECT_TRUE(IsSame(ChunkConvertFacility::Create_Reverse(5), ReverseFor(request)));
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
