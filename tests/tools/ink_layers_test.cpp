#include "tools/pelkraft/ink_layers.h"

#include "tests/support/random_bytes.h"
#include "tests/tools/naive_print.h"
#include "tools/pelkraft/ink_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Client;

// Codes as pages have them: whole ranges, narrow ones, ink that is low.
const LayerCodes someCodes[] = {
    {8, 5, 0, 255, 0},    {8, 5, 255, 0, 0.2},    {8, 5, 0, 3, 0.05},   {8, 5, 30, 200, 0.15},
    {8, 5, 200, 30, 0.5}, {16, 5, 0, 65535, 0.1}, {16, 5, 65535, 0, 0}, {16, 5, 1000, 60000, 0.2}};

TEST(InkLayers, MixLightByTheFormula)
{
    const std::vector<unsigned char> dice = RandomBytes(100000, 77);
    std::size_t at = 0;
    const auto next = [&] { return dice[at++ % dice.size()]; };
    for (const LayerCodes& codes : someCodes) {
        for (int trial = 0; trial < 300; ++trial) {
            std::vector<NaiveInk> naive;
            std::vector<InkLayer> layers;
            // Each pixel has five samples, which are printed from the last to the first.
            std::vector<unsigned char> pixel(10);
            for (std::size_t ink = 5; ink-- > 0;) {
                InkLook look;
                for (std::uint8_t& value : look.colour)
                    value = next();
                const int kind = next() % 3;
                look.opacity = kind == 0 ? 0 : kind == 1 ? 1 : next() / 255.0;
                int sample = next();
                if (codes.bits == 16) {
                    sample = sample * 256 + next();
                    const auto word = static_cast<std::uint16_t>(sample);
                    std::memcpy(pixel.data() + 2 * ink, &word, 2);
                } else {
                    pixel[ink] = static_cast<unsigned char>(sample);
                }
                layers.push_back({ink, look});
                naive.push_back(
                    {{look.colour[0], look.colour[1], look.colour[2]}, sample, look.opacity});
            }
            const Light light = InkLayers(codes, layers).LightOfPixel(pixel.data());
            const auto expected = NaivePrint(naive, codes.none, codes.full, codes.gain);
            for (std::size_t c = 0; c < 3; ++c)
                ASSERT_NEAR(expected[c], light[c], 1e-12) << codes.none << " " << codes.full;
        }
    }
}

TEST(InkLayers, LeaveWhitePaperWithoutInk)
{
    const unsigned char pixel[] = {0, 0};
    EXPECT_EQ((Light{1, 1, 1}),
              InkLayers({8, 2, 0, 255, 0.2}, {{0, {{0, 0, 0}, 1, 1}}, {1, {{9, 9, 9}, 0, 1}}})
                  .LightOfPixel(pixel));
    EXPECT_EQ((Light{1, 1, 1}), InkLayers({8, 2, 0, 255, 0}, {}).LightOfPixel(pixel));
}

TEST(ScreenValues, AreTheNearestForEveryLight)
{
    for (int value = 0; value < 256; ++value) {
        const auto byte = static_cast<std::uint8_t>(value);
        EXPECT_EQ(byte, ScreenValueOf(LightOf(ScreenColour{byte, byte, byte})[1]));
    }
    for (int i = 0; i <= 1000000; ++i) {
        const double light = i / 1e6;
        ASSERT_EQ(NaiveScreen(light), ScreenValueOf(light)) << light;
    }
    EXPECT_EQ(0, ScreenValueOf(-1));
    EXPECT_EQ(255, ScreenValueOf(2));
    EXPECT_EQ(0, ScreenValueOf(std::nan("")));
}

TEST(InkFile, GivesLooksByPlainNames)
{
    InkTable inks;
    EXPECT_EQ("", AddInks("# name colour opacity strength\n"
                          "\n"
                          "  Cyan #0090D0 0\r\n"
                          "\"Pantone 485 C\"\t#da291c 0.25 1\n"
                          "  # a remark\n"
                          "White #FFFFFF 1.0\n"
                          "light-cyan #8bcff0 0.000000001 0.4",
                          inks));
    ASSERT_EQ(4U, inks.size());
    const InkLook spot = LookOfInk("pantone-485_c", inks);
    EXPECT_EQ((ScreenColour{0xDA, 0x29, 0x1C}), spot.colour);
    EXPECT_EQ(0.25, spot.opacity);
    EXPECT_EQ(1, spot.strength);
    EXPECT_EQ((ScreenColour{0, 0x90, 0xD0}), LookOfInk("CYAN", inks).colour);
    EXPECT_EQ(1, LookOfInk("white", inks).opacity);
    EXPECT_EQ(0.4, LookOfInk("LightCyan", inks).strength);
    EXPECT_EQ(1e-9, LookOfInk("LightCyan", inks).opacity);
    EXPECT_TRUE(IsKnownInk("PANTONE 485 C", inks));
    EXPECT_FALSE(IsKnownInk("PANTONE 485 C", {}));
    // Others keep their usual looks.
    EXPECT_TRUE(IsKnownInk("Magenta", inks));
    EXPECT_EQ(LookOfInk("Magenta", {}).colour, LookOfInk("Magenta", inks).colour);
}

TEST(InkFile, NamesTheFirstLineThatIsWrong)
{
    const struct
    {
        const char* line;
        const char* found;
    } faults[] = {
        {"Cyan", "found 1 words, expected a name, a colour"},
        {"Cyan #0090D0", "found 2 words"},
        {"Cyan #0090D0 0 1 1", "found 5 words"},
        {"\"\" #0090D0 0", "the name of an ink"},
        {"\"Cyan #0090D0 0", "found a quote that nothing closes"},
        {"Cyan 0090D0 0", "found \"0090D0\", expected a colour as #RRGGBB"},
        {"Cyan #0090D 0", "found \"#0090D\""},
        {"Cyan #0090DG 0", "found \"#0090DG\""},
        {"Cyan #-090D0 0", "found \"#-090D0\""},
        {"Cyan #0090D0 1.1", "found \"1.1\", expected an opacity from 0 to 1"},
        {"Cyan #0090D0 -0", "found \"-0\""},
        {"Cyan #0090D0 .5", "found \".5\""},
        {"Cyan #0090D0 0.", "found \"0.\""},
        {"Cyan #0090D0 0,5", "found \"0,5\""},
        {"Cyan #0090D0 2", "found \"2\""},
        {"Cyan #0090D0 0.0000000001", "found \"0.0000000001\""},
        {"Cyan #0090D0 0 40%", "found \"40%\", expected a strength from 0 to 1"},
        {"Light Cyan #0090D0 0", "expected quotes around a name of several: \"Light Cyan\""},
        {"Warm Light Cyan #0090D0 0 1", "found 3 words ahead of the colour"},
        {"MAGENTA #0090D0 0", "found \"MAGENTA\" a second time"},
    };
    for (const auto& [line, found] : faults) {
        InkTable inks;
        const std::string fault =
            AddInks("Magenta #FF00FF 0\n\n" + std::string(line) + "\nYellow #FFFF00 0\n", inks);
        EXPECT_EQ(0U, fault.find("line 3: ")) << line << fault;
        EXPECT_NE(std::string::npos, fault.find(found)) << line << fault;
    }
}

TEST(UsualInks, CoverWhatTheyShould)
{
    for (const char* transparent :
         {"Cyan", "Magenta", "Yellow", "Black", "Light Cyan", "LightMagenta", "Orange", "Green",
          "Violet", "Varnish", "Clear"}) {
        EXPECT_TRUE(IsKnownInk(transparent, {})) << transparent;
        EXPECT_EQ(0, LookOfInk(transparent, {}).opacity) << transparent;
    }
    for (const char* opaque : {"White", "Gold", "Silver"})
        EXPECT_GT(LookOfInk(opaque, {}).opacity, 0.5) << opaque;
    // Varnish is seen on nothing.
    EXPECT_EQ((ScreenColour{255, 255, 255}), LookOfInk("Varnish", {}).colour);
}

// A ramp from a light ink to the full one would turn back where a layer of the light one took more
// light than the tone that it stands for.
TEST(UsualInks, AreLightByTheirStrength)
{
    for (const auto& [light, full] : {std::pair{"Light Cyan", "Cyan"},
                                      {"LC", "C"},
                                      {"LightMagenta", "Magenta"},
                                      {"LM", "M"},
                                      {"Light Yellow", "Yellow"},
                                      {"LY", "Y"},
                                      {"LightBlack", "Black"},
                                      {"LK", "K"},
                                      {"Gray", "Black"},
                                      {"Grey", "Black"},
                                      {"Light Gray", "Black"},
                                      {"LLK", "K"}}) {
        const double strength = StrengthOfInk(light);
        EXPECT_LT(strength, 1) << light;
        const ScreenColour lightColour = LookOfInk(light, {}).colour;
        const ScreenColour fullColour = LookOfInk(full, {}).colour;
        for (std::size_t c = 0; c < 3; ++c) {
            const double taken = 1 - NaiveLight(lightColour[c] / 255.0);
            const double wanted = strength * (1 - NaiveLight(fullColour[c] / 255.0));
            // Half a step of a screen's colour.
            EXPECT_NEAR(wanted, taken, 0.004) << light;
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
