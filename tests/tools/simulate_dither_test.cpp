#include "pelkraft/dither.h"
#include "pelkraft/dot_weave_pattern.h"
#include "tests/dither/naive_dither.h"
#include "tests/tools/simulate_fixture.h"

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {
namespace {

// The inks of the fixed pattern's steps are known: Cyan 0, 10, 20 and 30, Black 0 and 200.
class DitheredSimulation : public SimulateFixture
{
protected:
    DitheredSimulation() { WritePattern(fixedPattern); }

    // Cyan and Black of the dither, from the library's mask.
    static NaiveDither Naive(int bits, std::int64_t noInk, std::int64_t fullInk)
    {
        const std::uint16_t* const mask = plk_dither_mask();
        return {{{{0, 10, 20, 30}, noInk, fullInk}, {{0, 200}, noInk, fullInk}},
                bits,
                {mask, mask + 65536}};
    }

    // The bytes of the fixed pattern for a pixel's steps: Black, Cyan, Spot.
    static std::vector<std::uint16_t> Inks(int cyanStep, int blackStep)
    {
        return {static_cast<std::uint16_t>(blackStep == 0 ? 0 : 200),
                static_cast<std::uint16_t>(cyanStep == 3 ? 0 : 10 * cyanStep),
                static_cast<std::uint16_t>(cyanStep == 3 ? 30 : 0)};
    }

    // Compares a picture of two channels with what became of it.
    static void ExpectDithered(const TiffImage& in, const TiffImage& out, const NaiveDither& naive,
                               int originX = 0, int originY = 0)
    {
        ASSERT_EQ(3, out.channels);
        for (int y = 0; y < in.height; ++y)
            for (int x = 0; x < in.width; ++x) {
                const auto inks = Inks(naive.StepOf(in.At(x, y, 0), 0, x + originX, y + originY),
                                       naive.StepOf(in.At(x, y, 1), 1, x + originX, y + originY));
                for (int ink = 0; ink < 3; ++ink)
                    ASSERT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, y, ink))
                        << x << ", " << y << ", ink " << ink;
            }
    }

    void WriteTones(const std::string& csv) { WriteBytes(Path("tones.csv"), csv); }
};

TEST_F(DitheredSimulation, IsTheDefaultForTones)
{
    const TiffImage image = RandomImage(300, 270, 2, 8, 4);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate()));
    ExpectDithered(image, Output(), Naive(8, 0, 255));
    const std::string first = Bytes(Path("out.tif"));
    for (const char* threads : {"1", "2", "7"}) {
        ASSERT_TRUE(EndedSilently(Simulate({"--levels", "dither", "--threads", threads})));
        EXPECT_TRUE(first == Bytes(Path("out.tif"))) << threads;
    }
}

TEST_F(DitheredSimulation, TakesTonesOf16BitsWhole)
{
    const TiffImage image = RandomImage(300, 40, 2, 16, 4);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate()));
    ExpectDithered(image, Output(), Naive(16, 0, 65535));
}

// 2 bits have as many tones as Cyan has steps, and more than Black has.
TEST_F(DitheredSimulation, QuantizesWhereThereAreEnoughSteps)
{
    const TiffImage levels = RandomImage(101, 9, 2, 2, 3);
    WriteInput(levels, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate()));
    const TiffImage out = Output();
    const NaiveDither naive = Naive(8, 0, 255);
    int mixed = 0;
    for (int x = 0; x < 101; ++x) {
        const int black = naive.StepOf(levels.At(x, 4, 1) * 85, 1, x, 4);
        mixed += black != levels.At(x, 4, 1) / 2 ? 1 : 0;
        const auto inks = Inks(levels.At(x, 4, 0), black);
        for (int ink = 0; ink < 3; ++ink)
            ASSERT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, 4, ink)) << x;
    }
    EXPECT_GT(mixed, 10);
    const Outcome told = Simulate({"--explain", "--dry-run"});
    EXPECT_NE(std::string::npos, told.output.find(" pixels, by the automatic engine\n"));
    EXPECT_NE(std::string::npos, Simulate({"--engine", "x86", "--explain", "--dry-run"})
                                     .output.find(" pixels, by the x86 engine\n"));
    EXPECT_NE(std::string::npos, told.output.find("steps 0 to 3, quantized"));
    EXPECT_NE(std::string::npos, told.output.find("steps 0 to 1, dithered"));
    // A choice of it holds for all of them.
    EXPECT_NE(std::string::npos, Simulate({"--levels", "dither", "--explain", "--dry-run"})
                                     .output.find("steps 0 to 3, dithered"));
}

TEST_F(DitheredSimulation, TakesTheFirstSampleOfALightPictureForFullInk)
{
    const TiffImage image = RandomImage(200, 30, 2, 8, 9);
    WriteTiff(Path("in.tif"), image, {});
    ASSERT_TRUE(Refused(Simulate(), 0, {"Cyan from channel 0 (Gray)"}));
    ExpectDithered(image, Output(), Naive(8, 255, 0));
    ASSERT_EQ(0, Simulate({"--levels", "quantize"}).exitCode);
    const TiffImage out = Output();
    for (int x = 0; x < 200; ++x) {
        const auto inks = Inks((255 - image.At(x, 3, 0)) / 64, (255 - image.At(x, 3, 1)) / 128);
        for (int ink = 0; ink < 3; ++ink)
            ASSERT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, 3, ink)) << x;
    }
}

TEST_F(DitheredSimulation, CountsInksFromTheRangeOfDots)
{
    for (const int bits : {8, 16}) {
        const TiffImage image = RandomImage(200, 30, 2, bits, 9);
        FileForm form = InkForm("Cyan Black");
        const auto setNames = form.setTags;
        form.setTags = [setNames](TIFF* tiff) {
            setNames(tiff);
            TIFFSetField(tiff, TIFFTAG_DOTRANGE, 26, 217);
        };
        WriteTiff(Path("in.tif"), image, form);
        ASSERT_TRUE(EndedSilently(Simulate()));
        ExpectDithered(image, Output(), Naive(bits, 26, 217));
    }
}

// 10 of 190 samples a step, rounded to the nearest tone before they are divided.
TEST_F(DitheredSimulation, QuantizesTheRangeOfDots)
{
    const TiffImage image = Ramps();
    FileForm form = InkForm("Cyan Black");
    const auto setNames = form.setTags;
    form.setTags = [setNames](TIFF* tiff) {
        setNames(tiff);
        TIFFSetField(tiff, TIFFTAG_DOTRANGE, 30, 220);
    };
    WriteTiff(Path("in.tif"), image, form);
    ASSERT_TRUE(EndedSilently(Simulate({"--levels", "quantize"})));
    const TiffImage out = Output();
    const auto tone = [](int sample) {
        return (2 * 255 * (std::clamp(sample, 30, 220) - 30) + 190) / 380;
    };
    for (int x = 0; x < 256; ++x) {
        const auto inks = Inks(tone(x) / 64, tone(255 - x) / 128);
        for (int ink = 0; ink < 3; ++ink)
            ASSERT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, 1, ink)) << x;
    }
}

TEST_F(DitheredSimulation, SpacesStepsEquallyOrByATable)
{
    const TiffImage image = RandomImage(300, 70, 2, 8, 4);
    WriteInput(image, "Cyan Black");
    NaiveDither naive = Naive(8, 0, 255);
    naive.channels[0].inks = {0, 125, 500, 90000};
    WriteTones("# a comment\r\n\r\n\"cyan\", 2, 0.5\r\nBlack,0,0\r\nCYAN,3,90\r\n Cyan ,0,0.0\r\n"
               "Cyan,1,0.125\r\nBlack,1,7");
    ASSERT_TRUE(EndedSilently(Simulate({"--tone", Path("tones.csv")})));
    ExpectDithered(image, Output(), naive);
    // The three steps of this pattern's Cyan are equal already.
    ASSERT_TRUE(EndedSilently(Simulate({"--tone", "equal"})));
    ExpectDithered(image, Output(), Naive(8, 0, 255));
    std::string text = fixedPattern;
    WritePattern(text.replace(text.find("2 1 0-20"), 8, "2 1 0-21"));
    naive.channels[0].inks = {0, 1, 2, 3};
    ASSERT_TRUE(EndedSilently(Simulate({"--tone", "equal"})));
    const TiffImage out = Output();
    for (int x = 0; x < 300; ++x)
        ASSERT_EQ(naive.StepOf(image.At(x, 5, 0), 0, x, 5) == 2 ? 21 : 0,
                  out.At(x, 5, 1) / 21 * 21);
}

TEST_F(DitheredSimulation, RefusesTablesThatDoNotFit)
{
    WriteInput(Ramps(), "Cyan Black");
    const std::string whole = "Black,0,0\nBlack,1,1\nCyan,0,0\nCyan,1,1\nCyan,2,2\n";
    const std::pair<std::string, std::string> cases[] = {
        {"", "has no line for step 3 of Cyan"},
        {"Cyan 3 3", "line 6 has no two commas"},
        {",3", "line 6 has no two commas"},
        {"Cyan,4,3", "line 6 has the step \"4\"; Cyan has the steps 0 to 3"},
        {"Cyan,-1,3", "line 6 has the step \"-1\""},
        {"Cyan,3,1.2345", "line 6 has the ink \"1.2345\""},
        {"Cyan,3,-1", "line 6 has the ink \"-1\""},
        {"Cyan,3,1000000", "line 6 has the ink \"1000000\""},
        {"Cyan,2,3", "line 6 is the second one for step 2 of Cyan"},
        {"Pink,1,3", "line 6 names the in-colour \"Pink\""},
    };
    for (const auto& [line, words] : cases) {
        WriteTones(whole + line);
        EXPECT_TRUE(Refused(Simulate({"--tone", Path("tones.csv")}), 3, {"tones.csv", words}))
            << line;
    }
    EXPECT_TRUE(Refused(Simulate({"--tone", Path("none.csv")}), 6, {"none.csv"}));
    EXPECT_TRUE(Refused(Simulate({"--tone", "equla"}), 2, {"--tone equla", "Did you mean equal?"}));
    EXPECT_TRUE(Refused(Simulate({"--tone", "Coverage"}), 2, {"Did you mean coverage?"}));
    EXPECT_TRUE(
        Refused(Simulate({"--tone", "equal", "--levels", "raw"}), 2, {"--tone", "--levels raw"}));
}

TEST_F(DitheredSimulation, QuantizesInksThatDoNotRise)
{
    std::string text = fixedPattern;
    WritePattern(text.replace(text.find("2 1 0-20"), 8, "2 1 0-10"));
    const TiffImage image = Ramps();
    WriteInput(image, "Cyan Black");
    EXPECT_TRUE(Refused(Simulate(), 1,
                        {"pattern.txt: warning: in-colour Cyan: step 2 has no more ink than step "
                         "1, 10.000 after 10.000, so that its tones are quantized: a dither wants "
                         "more ink at each step, which --tone equal or a CSV file may give\n"}));
    const TiffImage out = Output();
    const NaiveDither naive = Naive(8, 0, 255);
    const int cyan[] = {0, 10, 10, 0};
    for (int x = 0; x < 256; ++x) {
        ASSERT_EQ(cyan[x / 64], out.At(x, 1, 1));
        ASSERT_EQ(200 * naive.StepOf(255 - x, 1, x, 1), out.At(x, 1, 0));
    }
    EXPECT_TRUE(
        Refused(Simulate({"--levels", "dither"}), 4,
                {"pattern.txt: in-colour Cyan: step 2 has no more ink than step 1, 10.000 "
                 "after 10.000; a dither wants more ink at each step, which --tone equal or "
                 "a CSV file may give\n"}));
    EXPECT_TRUE(EndedSilently(Simulate({"--levels", "dither", "--tone", "equal"})));
    EXPECT_TRUE(EndedSilently(Simulate({"--levels", "quantize"})));
}

// An ink counts with its strength: 0.4 of 64 and 128, and all of 40 and 255.
TEST_F(DitheredSimulation, WeighsLightInks)
{
    WritePattern(smallPattern);
    // Step 1 has 25.6 in three quarters of the field and all of it; step 2 has
    // (51.2 + 3 * 40) / 4; step 3 has 255.
    NaiveDither naive = Naive(8, 0, 255);
    naive.channels[0].inks = {0, 25600, 42800, 255000};
    const TiffImage image = RandomImage(300, 60, 2, 8, 7);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate({"--engine", "x86"})));
    const TiffImage out = Output();
    std::string text = smallPattern;
    DotWeavePattern pattern(text.data(), DotWeavePattern::X86);
    for (int y = 0; y < 60; ++y) {
        std::vector<unsigned char> steps;
        for (int x = 0; x < 300; ++x)
            for (const int channel : {0, 1})
                steps.push_back(static_cast<unsigned char>(naive.StepOf(
                    image.At(x, y, channel), static_cast<std::size_t>(channel), x, y)));
        std::vector<unsigned char> inks(std::size_t{300} * 3);
        pattern.ApplyPattern(steps.data(), inks.data(), 300);
        for (std::size_t i = 0; i < inks.size(); ++i)
            ASSERT_EQ(inks[i], out.samples[static_cast<std::size_t>(y) * inks.size() + i]) << y;
    }
}

TEST_F(DitheredSimulation, MovesByTheOrigin)
{
    const TiffImage image = RandomImage(120, 40, 2, 8, 4);
    WriteInput(image, "Cyan Black");
    for (const auto& [x, y] : {std::pair{130, 7}, {-3, -500}, {0, 70000}}) {
        ASSERT_TRUE(EndedSilently(
            Simulate({"--origin", std::to_string(x) + "," + std::to_string(y), "--threads", "3"})));
        ExpectDithered(image, Output(), Naive(8, 0, 255), x, y);
    }
    for (const char* words : {"1", "1,", ",2", "1,2,3", "a,b", "1.5,2", "99999999999,0"})
        EXPECT_TRUE(Refused(Simulate({"--origin", words}), 2, {"--origin", "120,-7"})) << words;
}

// The parts of a picture, at the places where they stand in it.
TEST_F(DitheredSimulation, IsSeamlessByOrigins)
{
    WritePattern(smallPattern);
    const TiffImage image = RandomImage(90, 80, 2, 8, 4);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate()));
    const auto whole = Output().samples;
    TiffImage lower = BlankImage(90, 50, 2, 8);
    std::copy(image.samples.begin() + 30 * 180, image.samples.end(), lower.samples.begin());
    WriteInput(lower, "Cyan Black");
    for (const char* engine : {"x86", "auto"}) {
        ASSERT_TRUE(EndedSilently(Simulate({"--origin", "0,30", "--engine", engine})));
        const auto part = Output().samples;
        EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + 30 * 270)) << engine;
    }
}

TEST_F(DitheredSimulation, RunsOnThroughThePagesWhereItIsTold)
{
    WritePattern(smallPattern);
    const TiffImage image = RandomImage(90, 80, 2, 8, 4);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate({"--origin", "4,9"})));
    const auto whole = Output().samples;
    std::vector<TiffImage> pages = {BlankImage(90, 30, 2, 8), BlankImage(90, 50, 2, 8)};
    std::copy_n(image.samples.begin(), 30 * 180, pages[0].samples.begin());
    std::copy(image.samples.begin() + 30 * 180, image.samples.end(), pages[1].samples.begin());
    WriteTiffPages(Path("in.tif"), pages, InkForm("Cyan Black"));
    for (const bool runsOn : {false, true}) {
        std::vector<std::string> options = {"--origin", "4,9"};
        if (runsOn)
            options.emplace_back("--pages");
        ASSERT_TRUE(EndedSilently(Simulate(options)));
        FileForm form;
        const auto second = ReadTiff(Path("out.tif"), form, 1).samples;
        EXPECT_EQ(runsOn, std::equal(second.begin(), second.end(), whole.begin() + 30 * 270));
        const auto first = ReadTiff(Path("out.tif"), form, 0).samples;
        EXPECT_TRUE(std::equal(first.begin(), first.end(), whole.begin()));
    }
    EXPECT_TRUE(Refused(Simulate({"--pages", "--engine", "reference"}), 2, {"reference"}));
    EXPECT_TRUE(Refused(Simulate({"--origin", "0,1", "--engine", "reference"}), 2, {"reference"}));
}

TEST_F(DitheredSimulation, PacksInksInTwoBits)
{
    std::string text = fixedPattern;
    text.replace(text.find("1 1 0-10"), 8, "1 1 0-1");
    text.replace(text.find("2 1 0-20"), 8, "2 1 0-2");
    text.replace(text.find("3 1 1-30"), 8, "3 1 1-3");
    WritePattern(text.replace(text.find("0-200"), 5, "0-3"));
    const TiffImage image = RandomImage(101, 33, 2, 8, 4);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate()));
    const auto bytes = Output().samples;
    ASSERT_TRUE(EndedSilently(
        Simulate({"--bits", "2", "--ink", "Spot=#102030", "--preview", Path("packed.png")})));
    EXPECT_EQ(2, Output().bits);
    EXPECT_EQ(3, Output().channels);
    EXPECT_EQ(bytes, Output().samples);
    ASSERT_TRUE(EndedSilently(
        Simulate({"--bits", "8", "--ink", "Spot=#102030", "--preview", Path("bytes.png")})));
    EXPECT_TRUE(Bytes(Path("packed.png")) == Bytes(Path("bytes.png")));
    WritePattern(fixedPattern);
    EXPECT_TRUE(Refused(Simulate({"--bits", "2"}), 5,
                        {"pattern.txt", "value 10 at step 1 of in-colour Cyan", "--bits 2"}));
    EXPECT_TRUE(Refused(Simulate({"--bits", "4"}), 2, {"--bits"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
