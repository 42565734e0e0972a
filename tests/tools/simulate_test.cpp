#include "pelkraft/dot_weave_pattern.h"
#include "tests/support/random_bytes.h"
#include "tests/tools/simulate_fixture.h"
#include "zvk/system_tools.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

class Simulation : public SimulateFixture
{
protected:
    static std::vector<std::string> Engines()
    {
        std::vector<std::string> engines = {"x86"};
        if (SystemTools::GetSseVersion() >= 3)
            engines.push_back("sse");
        return engines;
    }

    // A picture of which the program holds several bands at once.
    void WriteLargeInput()
    {
        FileForm form = InkForm("Cyan Black");
        form.rowsPerStrip = 50;
        WriteTiff(Path("in.tif"), RandomImage(3000, 1300, 2, 8, 77), form);
    }

    // The small pattern, called for row after row of the input's tones as steps, gives the output.
    void ExpectRowsOf(DotWeavePattern::Engine engine)
    {
        FileForm form;
        const TiffImage in = ReadTiff(Path("in.tif"), form);
        const TiffImage out = Output();
        std::string text = smallPattern;
        DotWeavePattern pattern(text.data(), engine);
        for (int y = 0; y < in.height; ++y) {
            std::vector<unsigned char> steps;
            for (int x = 0; x < in.width; ++x) {
                steps.push_back(static_cast<unsigned char>(in.At(x, y, 0) / 64));
                steps.push_back(static_cast<unsigned char>(in.At(x, y, 1) / 128));
            }
            std::vector<unsigned char> inks(static_cast<std::size_t>(in.width) * 3);
            pattern.ApplyPattern(steps.data(), inks.data(), static_cast<std::uint32_t>(in.width));
            for (std::size_t i = 0; i < inks.size(); ++i)
                ASSERT_EQ(inks[i], out.samples[static_cast<std::size_t>(y) * inks.size() + i])
                    << "row " << y << " byte " << i;
        }
    }
};

// The bytes of the fixed pattern for a pixel's steps: Black, Cyan, Spot.
std::vector<std::uint16_t> FixedInks(int cyanStep, int blackStep)
{
    const std::uint16_t cyan[] = {0, 10, 20, 0};
    return {static_cast<std::uint16_t>(blackStep == 0 ? 0 : 200), cyan[cyanStep],
            static_cast<std::uint16_t>(cyanStep == 3 ? 30 : 0)};
}

TEST_F(Simulation, DividesTonesEvenlyOverTheSteps)
{
    WritePattern(fixedPattern);
    WriteInput(Ramps(), "Cyan Black");
    for (const char* engine : {"auto", "reference", "x86"}) {
        ASSERT_TRUE(EndedSilently(Simulate({"--levels", "quantize", "--engine", engine})));
        const TiffImage out = Output();
        ASSERT_EQ(3, out.channels);
        for (int x = 0; x < 256; ++x) {
            // Four steps of Cyan take 64 tones each, two of Black 128.
            const auto inks = FixedInks(x / 64, (255 - x) / 128);
            for (int ink = 0; ink < 3; ++ink)
                ASSERT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, 1, ink))
                    << engine << " " << x << " " << ink;
        }
    }
}

TEST_F(Simulation, TakesRawSamplesAsSteps)
{
    WritePattern(fixedPattern);
    TiffImage image = BlankImage(8, 1, 2, 8);
    for (int x = 0; x < 8; ++x) {
        image.At(x, 0, 0) = static_cast<std::uint16_t>(x % 4);
        image.At(x, 0, 1) = static_cast<std::uint16_t>(x / 4);
    }
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate({"--levels", "raw"})));
    const TiffImage out = Output();
    for (int x = 0; x < 8; ++x) {
        const auto inks = FixedInks(x % 4, x / 4);
        for (int ink = 0; ink < 3; ++ink)
            EXPECT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, 0, ink)) << x;
    }
}

TEST_F(Simulation, WarnsOfRawSamplesAboveTheTopStep)
{
    WritePattern(fixedPattern);
    TiffImage image = BlankImage(3, 1, 2, 8);
    image.At(1, 0, 0) = 4;
    image.At(2, 0, 1) = 255;
    WriteInput(image, "Cyan Black");
    EXPECT_TRUE(Refused(Simulate({"--levels", "raw"}), 1, {"in.tif", "above the top step"}));
    const TiffImage out = Output();
    EXPECT_EQ(30, out.At(1, 0, 2));
    EXPECT_EQ(200, out.At(2, 0, 0));
}

TEST_F(Simulation, GivesAColourWithoutABlockItsOnlyStep)
{
    WritePattern("DotWeavePattern VERSION 2 BEGIN_OUT_INKS A END_OUT_INKS BEGIN_IN_COLORS A B "
                 "END_IN_COLORS BEGIN_IN_COLOR A BEGIN_INKS A END_INKS BEGIN_VALUES 1 1 0-7 "
                 "END_VALUES END_IN_COLOR");
    WriteInput(Ramps(), "A B");
    ASSERT_TRUE(Refused(Simulate(), 1, {"\"B\" is listed, but no block describes it"}));
    EXPECT_EQ(0, Output().At(127, 0, 0));
    EXPECT_EQ(7, Output().At(128, 0, 0));
    // All 256 tones are that step, so that none exceeds it but as a raw number.
    EXPECT_EQ(1, Simulate({"--levels", "raw"}).exitCode);
}

TEST_F(Simulation, CallsThePatternOnceForEachRow)
{
    WriteInput(RandomImage(700, 40, 2, 8, 5), "Cyan Black");
    const struct
    {
        const char* name;
        DotWeavePattern::Engine engine;
    } engines[] = {{"x86", DotWeavePattern::X86}, {"reference", DotWeavePattern::Reference}};
    for (const auto& [name, engine] : engines) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(
            EndedSilently(Simulate({"--levels", "quantize", "--engine", name, "--threads", "3"})));
        ExpectRowsOf(engine);
    }
    WriteLargeInput();
    ASSERT_TRUE(
        EndedSilently(Simulate({"--levels", "quantize", "--engine", "x86", "--threads", "2"})));
    ExpectRowsOf(DotWeavePattern::X86);
}

TEST_F(Simulation, DrawsInThePatternsProportions)
{
    TiffImage image = BlankImage(1000, 100, 2, 8);
    std::fill(image.samples.begin(), image.samples.end(), std::uint16_t{2});
    WriteInput(image, "Cyan Black");
    EXPECT_EQ(1, Simulate({"--levels", "raw"}).exitCode);
    const TiffImage out = Output();
    int light = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 1000; ++x) {
            const bool first = out.At(x, y, 1) == 128;
            ASSERT_EQ(first ? 0 : 40, out.At(x, y, 0));
            ASSERT_EQ(first ? 128 : 0, out.At(x, y, 1));
            ASSERT_EQ(255, out.At(x, y, 2));
            light += first ? 1 : 0;
        }
    }
    // A quarter of 100000, within 4 sigma of independent draws.
    EXPECT_NEAR(25000, light, 4 * 137);
}

TEST_F(Simulation, GivesTheSameFileForAnyThreadsAndEngine)
{
    WriteLargeInput();
    for (const char* version : {"VERSION 2", "VERSION 3"}) {
        std::string text = smallPattern;
        WritePattern(text.replace(text.find("VERSION 2"), 9, version));
        ASSERT_TRUE(EndedSilently(Simulate({"--engine", "x86", "--threads", "1"})));
        const std::string first = Bytes(Path("out.tif"));
        ASSERT_GT(first.size(), 3000U * 1300U * 3U);
        for (const std::string& engine : Engines()) {
            for (const char* threads : {"1", "2", "7"}) {
                ASSERT_TRUE(EndedSilently(Simulate({"--engine", engine, "--threads", threads})));
                EXPECT_TRUE(first == Bytes(Path("out.tif"))) << engine << " " << threads;
            }
        }
    }
}

TEST_F(Simulation, RunsTheReferenceEngineOnOneThread)
{
    WriteInput(RandomImage(300, 200, 2, 8, 5), "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate({"--engine", "reference", "--threads", "1"})));
    const std::string first = Bytes(Path("out.tif"));
    ASSERT_TRUE(EndedSilently(Simulate({"--engine", "reference", "--threads", "7"})));
    EXPECT_TRUE(first == Bytes(Path("out.tif")));
    EXPECT_NE(std::string::npos, Run({"simulate", "--help"}).output.find("on one thread"));
}

TEST_F(Simulation, ReadsEveryFormOfAPicture)
{
    const TiffImage image = RandomImage(150, 70, 2, 8, 6);
    WriteInput(image, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate({"--levels", "quantize"})));
    const auto samples = Output().samples;
    for (const bool separate : {false, true}) {
        for (const int tile : {0, 32}) {
            for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW}) {
                FileForm form = InkForm("Cyan Black");
                form.separate = separate;
                form.tile = tile;
                form.compression = compression;
                WriteTiff(Path("in.tif"), image, form);
                ASSERT_TRUE(EndedSilently(Simulate({"--levels", "quantize", "--threads", "2"})));
                EXPECT_EQ(samples, Output().samples);
            }
        }
    }
    // Tones of 16 bits are those of 8 times 257.
    TiffImage wide = image;
    wide.bits = 16;
    for (std::uint16_t& sample : wide.samples)
        sample = static_cast<std::uint16_t>(sample * 257);
    WriteInput(wide, "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate({"--levels", "quantize"})));
    EXPECT_EQ(samples, Output().samples);
    EXPECT_TRUE(Refused(Simulate({"--levels", "raw"}), 5, {"16 bits", "1, 2 and 8"}));
}

TEST_F(Simulation, ReadsPackedLevels)
{
    WritePattern(fixedPattern);
    for (const bool separate : {false, true}) {
        FileForm form = InkForm("Cyan Black");
        form.separate = separate;
        const TiffImage levels = RandomImage(101, 9, 2, 2, 3);
        WriteTiff(Path("in.tif"), levels, form);
        for (const char* mode : {"raw", "quantize"}) {
            const bool raw = mode == std::string("raw");
            EXPECT_EQ(raw ? 1 : 0, Simulate({"--levels", mode}).exitCode);
            const TiffImage out = Output();
            for (int x = 0; x < 101; ++x) {
                // Levels 0 to 3 are tones 0, 85, 170 and 255, and the steps 0 to 3 of Cyan.
                const int black = levels.At(x, 4, 1);
                const auto inks = FixedInks(levels.At(x, 4, 0), raw ? black > 0 : black > 1);
                for (int ink = 0; ink < 3; ++ink)
                    ASSERT_EQ(inks[static_cast<std::size_t>(ink)], out.At(x, 4, ink)) << mode << x;
            }
        }
    }
}

TEST_F(Simulation, WarnsOfChannelsThatGoNowhere)
{
    WritePattern(fixedPattern);
    WriteInput(RandomImage(20, 5, 4, 8, 3));
    const Outcome outcome = Simulate();
    EXPECT_EQ(1, outcome.exitCode);
    EXPECT_NE(std::string::npos,
              outcome.errors.find("channel 1 (Magenta) is not used: no in-colour"));
    EXPECT_NE(std::string::npos,
              outcome.errors.find("channel 2 (Yellow) is not used: no in-colour"));
    EXPECT_EQ(3, Output().channels);
}

TEST_F(Simulation, StartsEachPageThatItTakesAtThePatternsFirstRow)
{
    const std::vector<TiffImage> pages = {RandomImage(90, 30, 2, 8, 1),
                                          RandomImage(70, 40, 2, 8, 2)};
    WriteTiffPages(Path("in.tif"), pages, InkForm("Cyan Black"));
    ASSERT_TRUE(EndedSilently(Simulate({"--preview", Path("seen.png")})));
    FileForm form;
    const TiffImage second = ReadTiff(Path("out.tif"), form, 1);
    ASSERT_TRUE(EndedSilently(Simulate({"--page", "2", "--preview", Path("seen.png")})));
    EXPECT_EQ(Output().samples, second.samples);
    EXPECT_TRUE(Refused(Simulate({"--page", "3"}), 2, {"no page 3"}));
    WriteInput(pages[1], "Cyan Black");
    ASSERT_TRUE(EndedSilently(Simulate()));
    EXPECT_EQ(Output().samples, second.samples);
}

// The tags of a small file's first page, without libtiff's opinion of them.
std::vector<unsigned> RawTags(const std::string& file)
{
    const auto at = [&](std::size_t place, int bytes) {
        std::uint32_t value = 0;
        std::memcpy(&value, file.data() + place, static_cast<std::size_t>(bytes));
        return value;
    };
    std::vector<unsigned> tags;
    const std::size_t directory = at(4, 4);
    for (std::size_t i = 0; i < at(directory, 2); ++i)
        tags.push_back(at(directory + 2 + 12 * i, 2));
    return tags;
}

TEST_F(Simulation, DescribesTheInksThatItWrites)
{
    FileForm form = InkForm();
    form.setTags = [](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 600.0);
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, 4, "prof");
    };
    WriteTiff(Path("in.tif"), RandomImage(40, 6, 4, 8, 9), form);
    ASSERT_TRUE(EndedSilently(Run(
        {"simulate", PELKRAFT_EXAMPLES "/patterns/six_ink.txt", Path("in.tif"), Path("out.tif")})));
    EXPECT_EQ(6, Output().channels);
    EXPECT_EQ(8, Output().bits);

    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(Path("out.tif").c_str(), "r"),
                                                           TIFFClose);
    std::uint16_t value = 0;
    EXPECT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_PHOTOMETRIC, &value));
    EXPECT_EQ(PHOTOMETRIC_SEPARATED, value);
    EXPECT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_INKSET, &value));
    EXPECT_EQ(INKSET_MULTIINK, value);
    EXPECT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_NUMBEROFINKS, &value));
    EXPECT_EQ(6, value);
    const char* names = nullptr;
    ASSERT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_INKNAMES, &names));
    const char expected[] = "Cyan\0Magenta\0Yellow\0Black\0LightCyan\0LightMagenta";
    EXPECT_EQ(0, std::memcmp(expected, names, sizeof expected));
    float resolution = 0;
    EXPECT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_YRESOLUTION, &resolution));
    EXPECT_EQ(600, resolution);
    // Readers expect four inks and want the two further ones announced.
    std::uint16_t extraCount = 0;
    std::uint16_t* extraKinds = nullptr;
    ASSERT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_EXTRASAMPLES, &extraCount, &extraKinds));
    ASSERT_EQ(2, extraCount);
    EXPECT_EQ(EXTRASAMPLE_UNSPECIFIED, extraKinds[0]);
    EXPECT_EQ(EXTRASAMPLE_UNSPECIFIED, extraKinds[1]);
    // In the file itself, not only in what the reader makes up; and the profile was of other inks.
    const auto tags = RawTags(Bytes(Path("out.tif")));
    EXPECT_EQ(1, std::count(tags.begin(), tags.end(), TIFFTAG_INKSET));
    EXPECT_EQ(1, std::count(tags.begin(), tags.end(), TIFFTAG_EXTRASAMPLES));
    EXPECT_EQ(0, std::count(tags.begin(), tags.end(), TIFFTAG_ICCPROFILE));
}

// Other programs take it from there what a full drop is.
TEST_F(Simulation, WritesTheHighestInkValueAsFullInk)
{
    WriteInput(Ramps(), "Cyan Black");
    const struct
    {
        const char* from;
        const char* to;
        int full;
    } patterns[] = {{"0-200", "0-200", 200},
                    {"0-200", "0-3", 30},
                    // The low 8 bits.
                    {"0-200", "0-384", 128},
                    // At a position without an ink.
                    {"0-200", "3-255", 30}};
    for (const auto& [from, to, full] : patterns) {
        std::string text = fixedPattern;
        WritePattern(text.replace(text.find(from), 5, to));
        ASSERT_LE(Simulate().exitCode, 1);
        const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
            TIFFOpen(Path("out.tif").c_str(), "r"), TIFFClose);
        std::uint16_t none = 9;
        std::uint16_t highest = 0;
        ASSERT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_DOTRANGE, &none, &highest));
        EXPECT_EQ(0, none);
        EXPECT_EQ(full, highest) << to;
    }
    WritePattern("DotWeavePattern VERSION 2 BEGIN_OUT_INKS A END_OUT_INKS BEGIN_IN_COLORS A "
                 "END_IN_COLORS BEGIN_IN_COLOR A BEGIN_INKS A END_INKS BEGIN_VALUES 1 1 0-0 "
                 "END_VALUES END_IN_COLOR");
    WriteInput(Ramps());
    ASSERT_EQ(1, Simulate().exitCode);
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(Path("out.tif").c_str(), "r"),
                                                           TIFFClose);
    std::uint16_t none = 9;
    std::uint16_t highest = 0;
    ASSERT_EQ(1, TIFFGetField(tiff.get(), TIFFTAG_DOTRANGE, &none, &highest));
    EXPECT_EQ(255, highest);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
