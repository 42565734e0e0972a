#include "tests/tools/simulate_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* byOrder = "no channel bears the names of these in-colours, which take "
                                "channels in their order: ";

// Black and cyan of the fixed pattern, which has four steps of cyan and two of black.
class SimulationChannels : public SimulateFixture
{
protected:
    SimulationChannels() { WritePattern(fixedPattern); }

    static FileForm PageOf(int photometric, const std::vector<std::uint16_t>& extras,
                           const std::string& names = {})
    {
        FileForm form = InkForm(names);
        form.photometric = photometric;
        form.setTags = [setNames = form.setTags, extras](TIFF* tiff) {
            setNames(tiff);
            if (!extras.empty())
                TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(extras.size()),
                             extras.data());
        };
        return form;
    }

    [[nodiscard]] Outcome Quantize() { return Simulate({"--levels", "quantize"}); }

    // Each pixel's black and cyan are those of these channels, by the words of the pattern.
    void ExpectInksOf(const TiffImage& image, int cyanChannel, int blackChannel,
                      bool inkIsLow = false)
    {
        constexpr int cyanOfStep[] = {0, 10, 20, 0};
        const TiffImage out = Output();
        const int turn = inkIsLow ? 255 : 0;
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                const int cyan = image.At(x, y, cyanChannel) ^ turn;
                const int black = image.At(x, y, blackChannel) ^ turn;
                ASSERT_EQ(black / 128 * 200, out.At(x, y, 0)) << x << ", " << y;
                ASSERT_EQ(cyanOfStep[cyan / 64], out.At(x, y, 1)) << x << ", " << y;
            }
        }
    }
};

TEST_F(SimulationChannels, AreFoundByNameInAnyCase)
{
    const TiffImage image = RandomImage(30, 5, 2, 8, 1);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Quantize()));
    ExpectInksOf(image, 0, 1);
    WriteInput(image, "black CYAN");
    ASSERT_TRUE(EndedSilently(Quantize()));
    ExpectInksOf(image, 1, 0);
}

TEST_F(SimulationChannels, GoByTheirOrderOnlyWithAWord)
{
    const TiffImage image = RandomImage(30, 5, 2, 8, 2);
    WriteInput(image);
    // The first two of the four process inks, on a page that isn't of four.
    ASSERT_TRUE(
        Refused(Quantize(), 0, {byOrder + std::string("Black from channel 1 (Magenta)\n")}));
    ExpectInksOf(image, 0, 1);
    WriteTiff(Path("in.tif"), image, PageOf(PHOTOMETRIC_MINISBLACK, {}));
    ASSERT_TRUE(Refused(Quantize(), 0,
                        {byOrder + std::string("Cyan from channel 0 (Gray), Black "
                                               "from channel 1\n")}));
    ExpectInksOf(image, 0, 1, true);
    // So do inks of other names.
    WriteInput(image, "Orange Green");
    ASSERT_TRUE(Refused(Quantize(), 0,
                        {byOrder + std::string("Cyan from channel 0 (Orange), Black from channel 1 "
                                               "(Green)\n")}));
    ExpectInksOf(image, 0, 1);
    WriteInput(image, "Green Cyan");
    ASSERT_TRUE(Refused(Quantize(), 0, {byOrder + std::string("Black from channel 0 (Green)\n")}));
    ExpectInksOf(image, 1, 0);
}

TEST_F(SimulationChannels, AreNoAlpha)
{
    for (const std::uint16_t alpha :
         std::vector<std::uint16_t>{EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNASSALPHA}) {
        const TiffImage image = RandomImage(30, 5, 3, 8, 6);
        // Between the two inks of the page.
        WriteTiff(Path("in.tif"), image,
                  PageOf(PHOTOMETRIC_MINISWHITE, {alpha, EXTRASAMPLE_UNSPECIFIED}));
        const Outcome outcome = Quantize();
        EXPECT_EQ(0, outcome.exitCode);
        EXPECT_NE(std::string::npos, outcome.errors.find("Black from channel 2\n"));
        EXPECT_NE(std::string::npos, outcome.errors.find("channel 1 is alpha, which is no ink, "
                                                         "and is left out\n"));
        ExpectInksOf(image, 0, 2);
        // No name makes an ink of it.
        WriteTiff(Path("in.tif"), RandomImage(30, 5, 2, 8, 7),
                  PageOf(PHOTOMETRIC_SEPARATED, {alpha}, "Cyan Black"));
        EXPECT_TRUE(Refused(Quantize(), 3,
                            {"has 2 channels, of which alpha is no ink: 1 (Black); supported are "
                             "pictures with a channel for each of the pattern's 2 in-colours"}));
    }
}

TEST_F(SimulationChannels, OfNoToldKindAreInks)
{
    const TiffImage image = RandomImage(20, 5, 3, 8, 8);
    WriteTiff(Path("in.tif"), image,
              PageOf(PHOTOMETRIC_MINISWHITE, {EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNSPECIFIED}));
    const Outcome outcome = Quantize();
    EXPECT_EQ(1, outcome.exitCode);
    EXPECT_NE(std::string::npos,
              outcome.errors.find("channel 2 is not used: no in-colour of the pattern takes it"));
    ExpectInksOf(image, 0, 1);
}

TEST_F(SimulationChannels, AreInksAndNoOtherColours)
{
    for (const char* levels : {"raw", "quantize", "dither"}) {
        WriteTiff(Path("in.tif"), RandomImage(20, 5, 3, 8, 9), PageOf(PHOTOMETRIC_RGB, {}));
        EXPECT_TRUE(Refused(Simulate({"--levels", levels}), 5,
                            {"in.tif: holds RGB; supported are pages of inks: separated, "
                             "MinIsWhite and MinIsBlack; a program that knows colour profiles "
                             "makes inks of it\n"}));
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
