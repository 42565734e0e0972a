#include "tests/tools/png_image.h"
#include "tests/tools/simulate_fixture.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace zvk::Pelkraft::TestSupport {
namespace {

// One ink and two steps: step 1 is a full layer.
std::string OneInk(const std::string& name)
{
    return "DotWeavePattern VERSION 2 BEGIN_OUT_INKS \"" + name +
           "\" END_OUT_INKS BEGIN_IN_COLORS X END_IN_COLORS BEGIN_IN_COLOR X BEGIN_INKS \"" + name +
           "\" END_INKS BEGIN_VALUES 1 1 0-255 END_VALUES END_IN_COLOR";
}

class SimulatePreview : public SimulateFixture
{
protected:
    PngImage Show(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> all = {"--preview", Path("seen.png")};
        all.insert(all.end(), options.begin(), options.end());
        const Outcome outcome = Simulate(all);
        EXPECT_EQ(0, outcome.exitCode) << outcome.errors;
        said = outcome.errors;
        return ReadPng(Path("seen.png"));
    }

    std::string said;
};

TEST_F(SimulatePreview, ShowsFullInksInTheirColours)
{
    TiffImage image = BlankImage(2, 1, 1, 8);
    image.At(0, 0, 0) = 255;
    WriteInput(image, "X");
    const std::array<int, 3> white = {255, 255, 255};
    WritePattern(OneInk("Gold Leaf"));
    const PngImage given = Show({"--ink", "gold leaf=#80C0FF"});
    EXPECT_EQ((std::array<int, 3>{0x80, 0xC0, 0xFF}), given.At(0, 0));
    EXPECT_EQ(white, given.At(1, 0));
    EXPECT_EQ("", said);

    // A name that no table holds keeps its colour, and has another than its neighbour.
    const auto unknown = Show().At(0, 0);
    EXPECT_EQ(unknown, Show().At(0, 0));
    EXPECT_NE(white, unknown);
    char words[160];
    std::snprintf(words, sizeof words,
                  "the look of ink \"Gold Leaf\" isn't known; it is shown as #%02x%02x%02x; "
                  "--ink \"Gold Leaf=#RRGGBB\" gives it its own\n",
                  static_cast<unsigned>(unknown[0]), static_cast<unsigned>(unknown[1]),
                  static_cast<unsigned>(unknown[2]));
    EXPECT_NE(std::string::npos, said.find(words)) << said;
    WritePattern(OneInk("Gold Leaf 2"));
    EXPECT_NE(unknown, Show().At(0, 0));

    const struct
    {
        const char* name;
        int lowest;
    } usual[] = {
        {"Cyan", 0}, {"MAGENTA", 1}, {"yellow", 2}, {"Light Cyan", 0}, {"light-magenta", 1}};
    for (const auto& [name, lowest] : usual) {
        WritePattern(OneInk(name));
        const auto colour = Show().At(0, 0);
        EXPECT_EQ(lowest, std::min_element(colour.begin(), colour.end()) - colour.begin()) << name;
    }
    WritePattern(OneInk("Black"));
    const auto black = Show().At(0, 0);
    EXPECT_LT(*std::max_element(black.begin(), black.end()), 40);
    WritePattern(OneInk("White"));
    EXPECT_EQ(white, Show().At(0, 0));
}

TEST_F(SimulatePreview, LaysInksOverEachOther)
{
    WritePattern("DotWeavePattern VERSION 2 BEGIN_OUT_INKS A B END_OUT_INKS BEGIN_IN_COLORS A B "
                 "END_IN_COLORS BEGIN_IN_COLOR A BEGIN_INKS A END_INKS BEGIN_VALUES 1 1 0-255 "
                 "END_VALUES END_IN_COLOR BEGIN_IN_COLOR B BEGIN_INKS B END_INKS BEGIN_VALUES "
                 "1 1 0-255 END_VALUES END_IN_COLOR");
    TiffImage image = BlankImage(1, 1, 2, 8);
    image.samples = {255, 255};
    WriteInput(image);
    // The rest of red and of green passes the other ink; half the light of 188 is 138.
    EXPECT_EQ((std::array<int, 3>{0, 188, 138}),
              Show({"--ink", "A=#00FFBC", "--ink", "B=#FFBCBC"}).At(0, 0));
}

// 3 is full ink there, and 1 a third of it.
TEST_F(SimulatePreview, TakesTheHighestInkValueForFullInk)
{
    std::string text = OneInk("Ink");
    text.replace(text.find("1 1 0-255"), 9, "1 1 0-1 2 1 0-3");
    WritePattern(text);
    TiffImage image = BlankImage(2, 1, 1, 8);
    image.samples = {255, 128};
    WriteInput(image);
    const PngImage seen = Show({"--ink", "Ink=#000000", "--levels", "quantize"});
    EXPECT_EQ((std::array<int, 3>{0, 0, 0}), seen.At(0, 0));
    // Two thirds of the light.
    EXPECT_EQ((std::array<int, 3>{213, 213, 213}), seen.At(1, 0));
}

TEST_F(SimulatePreview, AveragesLightNotNumbers)
{
    // Ink in every second pixel, 4 x 4 pixels for one that is shown.
    WritePattern(OneInk("Ink"));
    TiffImage image = BlankImage(6400, 40, 1, 8);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 6400; ++x)
            image.At(x, y, 0) = static_cast<std::uint16_t>((x + y) % 2 == 0 ? 255 : 0);
    }
    WriteInput(image);
    const PngImage seen = Show({"--ink", "Ink=#000000"});
    EXPECT_EQ(1600, seen.width);
    EXPECT_EQ(10, seen.height);
    // Half the light is 188 of 255 on a screen.
    const long half = std::lround(255 * (1.055 * std::pow(0.5, 1 / 2.4) - 0.055));
    ASSERT_EQ(188, half);
    for (const unsigned char value : seen.pixels)
        ASSERT_EQ(half, value);
}

TEST_F(SimulatePreview, KeepsItsSizeInBoundsAndThePixelsShape)
{
    const struct
    {
        int width;
        int height;
        double x;
        double y;
        int seenWidth;
        int seenHeight;
    } cases[] = {
        {100, 50, 0, 0, 100, 50}, {3200, 100, 0, 0, 1600, 50},    {20, 4000, 0, 0, 8, 1600},
        {1, 5000, 0, 0, 1, 1600}, {200, 100, 600, 300, 100, 100}, {100, 200, 300, 600, 100, 100},
        {1601, 3, 0, 0, 1600, 2},
    };
    WritePattern(OneInk("Cyan"));
    for (const auto& size : cases) {
        FileForm form = InkForm();
        form.setTags = [&](TIFF* tiff) {
            if (size.x > 0) {
                TIFFSetField(tiff, TIFFTAG_XRESOLUTION, size.x);
                TIFFSetField(tiff, TIFFTAG_YRESOLUTION, size.y);
            }
        };
        WriteTiff(Path("in.tif"), BlankImage(size.width, size.height, 1, 8), form);
        const PngImage seen = Show();
        EXPECT_EQ(size.seenWidth, seen.width) << size.width;
        EXPECT_EQ(size.seenHeight, seen.height) << size.width;
        for (const unsigned char value : seen.pixels)
            ASSERT_EQ(255, value);
    }
}

TEST_F(SimulatePreview, IsMissedWhereColoursAreGiven)
{
    WriteInput(RandomImage(8, 3, 2, 8, 8), "Cyan Black");
    const Outcome outcome = Simulate({"--ink", "Cyan=#123456"});
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_EQ("pelkraft: warning: --ink is about the preview, and there is none without "
              "--preview\n",
              outcome.errors);
}

TEST_F(SimulatePreview, IsTheSameForAnyThreads)
{
    WriteInput(RandomImage(500, 600, 2, 8, 4));
    Show({"--threads", "1"});
    const std::string first = Bytes(Path("seen.png"));
    Show({"--threads", "7"});
    EXPECT_TRUE(first == Bytes(Path("seen.png")));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
