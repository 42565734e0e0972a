#include "tests/tools/simulate_fixture.h"

#include <cmath>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Cyan has four steps in the small pattern, and black two.
constexpr int steps[] = {4, 2};

// Pictures whose samples stand for other amounts of ink than their numbers.
class SimulatePolarity : public SimulateFixture
{
protected:
    // The steps that samples are divided over, sample by sample from the words: the range is
    // stretched over a byte, to the nearest and half up.
    static TiffImage Steps(const TiffImage& image, int none, int full)
    {
        TiffImage result = image;
        result.bits = 8;
        for (std::size_t i = 0; i < image.samples.size(); ++i) {
            const double share = (image.samples[i] - none) / static_cast<double>(full - none);
            const double byte = std::floor(std::clamp(share, 0.0, 1.0) * 255 + 0.5);
            result.samples[i] = static_cast<std::uint16_t>(std::floor(byte * steps[i % 2] / 256));
        }
        return result;
    }

    // The new page of these steps as they are.
    [[nodiscard]] std::vector<std::uint16_t> FromSteps(const TiffImage& image)
    {
        WriteInput(image, "Cyan Black");
        EXPECT_TRUE(EndedSilently(Simulate({"--levels", "raw"})));
        return Output().samples;
    }

    // Channels of gray have no names of inks.
    static bool IsNamed(const FileForm& form) { return form.photometric == PHOTOMETRIC_SEPARATED; }

    [[nodiscard]] std::vector<std::uint16_t> Quantized(const TiffImage& image, const FileForm& form,
                                                       std::vector<std::string> options = {})
    {
        WriteTiff(Path("in.tif"), image, form);
        options.insert(options.end(), {"--levels", "quantize"});
        EXPECT_TRUE(IsNamed(form) ? EndedSilently(Simulate(options))
                                  : Refused(Simulate(options), 0, {"Cyan from channel 0"}));
        return Output().samples;
    }

    static FileForm Ranged(int none, int full)
    {
        FileForm form = InkForm("Cyan Black");
        form.setTags = [setInks = form.setTags, none, full](TIFF* tiff) {
            setInks(tiff);
            TIFFSetField(tiff, TIFFTAG_DOTRANGE, none, full);
        };
        return form;
    }
};

TEST_F(SimulatePolarity, OfALightPageIsThatOfItsNegative)
{
    for (const int bits : {1, 2, 8, 16}) {
        SCOPED_TRACE(bits);
        const TiffImage ink = RandomImage(70, 40, 2, bits, 5);
        TiffImage light = ink;
        for (std::uint16_t& sample : light.samples)
            sample = static_cast<std::uint16_t>((1 << bits) - 1 - sample);
        const auto asInk = Quantized(ink, InkForm("Cyan Black"));
        // Words become bytes in the library by a rule of its own.
        const auto expected = bits < 16 ? asInk : FromSteps(Steps(light, 65535, 0));
        FileForm form;
        form.photometric = PHOTOMETRIC_MINISBLACK;
        EXPECT_EQ(Quantized(light, form), expected);
        EXPECT_EQ(Quantized(light, InkForm("Cyan Black"), {"--polarity", "ink-low"}), expected);
        EXPECT_EQ(Quantized(ink, form, {"--polarity", "ink-high"}), asInk);
        form.photometric = PHOTOMETRIC_MINISWHITE;
        EXPECT_EQ(Quantized(ink, form), asInk);
    }
}

TEST_F(SimulatePolarity, FollowsTheDotRange)
{
    for (const int bits : {8, 16}) {
        const int unit = bits == 8 ? 1 : 257;
        const TiffImage image = RandomImage(70, 40, 2, bits, 7);
        for (const auto& [none, full] : {std::pair{5 * unit, 250 * unit},
                                         {7 * unit + (bits == 16 ? 100 : 0), 90 * unit},
                                         {255 * unit, 30 * unit}}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(none));
            const auto expected = FromSteps(Steps(image, none, full));
            EXPECT_EQ(Quantized(image, Ranged(none, full)), expected);
            const std::string words = std::to_string(none) + "," + std::to_string(full);
            EXPECT_EQ(Quantized(image, Ranged(1, 2), {"--dot-range", words}), expected);
            // Counted from the highest sample down where ink is low.
            const int highest = (1 << bits) - 1;
            const std::string mirrored =
                std::to_string(highest - none) + "," + std::to_string(highest - full);
            EXPECT_EQ(Quantized(image, InkForm("Cyan Black"),
                                {"--polarity", "ink-low", "--dot-range", mirrored}),
                      expected);
        }
    }
}

TEST_F(SimulatePolarity, LeavesRawSamplesAlone)
{
    TiffImage image = RandomImage(70, 40, 2, 8, 9);
    for (std::size_t i = 0; i < image.samples.size(); ++i)
        image.samples[i] = static_cast<std::uint16_t>(image.samples[i] % steps[i % 2]);
    const auto expected = FromSteps(image);
    FileForm form;
    form.photometric = PHOTOMETRIC_MINISBLACK;
    WriteTiff(Path("in.tif"), image, form);
    ASSERT_TRUE(Refused(Simulate({"--levels", "raw"}), 0, {"Cyan from channel 0"}));
    EXPECT_EQ(Output().samples, expected);
}

TEST_F(SimulatePolarity, IsRefusedWhereTheRangeHasNoSense)
{
    WriteTiff(Path("in.tif"), RandomImage(7, 4, 2, 8, 9), Ranged(9, 9));
    EXPECT_TRUE(Refused(Simulate({"--levels", "quantize"}), 3, {"in.tif", "dot range 9,9"}));
    EXPECT_TRUE(Refused(Simulate({"--levels", "quantize", "--dot-range", "5,256"}), 2,
                        {"dot range 5,256"}));
    EXPECT_TRUE(Refused(Simulate({"--dot-range", "full"}), 2, {"--dot-range full is no range"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
