#include "tests/tools/naive_print.h"
#include "tests/tools/png_image.h"
#include "tests/tools/simulate_fixture.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* inkFile = "A #0090D0 0\nB #E0007A 0.25\nC #FFED00 0\n\"D e\" #FFFFFF 0.9\n";
const NaiveInk looks[] = {{{0, 0x90, 0xD0}, 0, 0},
                          {{0xE0, 0, 0x7A}, 0, 0.25},
                          {{0xFF, 0xED, 0}, 0, 0},
                          {{0xFF, 0xFF, 0xFF}, 0, 0.9}};

class PreviewOfInks : public SimulateFixture
{
protected:
    PreviewOfInks() { WriteBytes(Path("inks.txt"), inkFile); }

    [[nodiscard]] Outcome Preview(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> arguments = {"preview", Path("in.tif"), Path("seen.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    // Inks A, B, C and "D e".
    static FileForm FourInks()
    {
        FileForm form;
        form.photometric = PHOTOMETRIC_SEPARATED;
        form.setTags = [](TIFF* tiff) {
            const char names[] = "A\0B\0C\0D e";
            TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
            TIFFSetField(tiff, TIFFTAG_NUMBEROFINKS, 4);
            TIFFSetField(tiff, TIFFTAG_INKNAMES, static_cast<int>(sizeof names), names);
        };
        return form;
    }

    static FileForm TurnedInks(int orientation)
    {
        FileForm form = FourInks();
        const auto names = form.setTags;
        form.setTags = [names, orientation](TIFF* tiff) {
            names(tiff);
            TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
            TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
            TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 600.0);
            TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        };
        return form;
    }

    // The column and the row in which a person sees a pixel of a page of this size.
    static std::pair<int, int> SeenAt(int orientation, int width, int height, int x, int y)
    {
        const int right = width - 1 - x;
        const int bottom = height - 1 - y;
        const std::pair<int, int> places[] = {{x, y}, {right, y},  {right, bottom}, {x, bottom},
                                              {y, x}, {bottom, x}, {bottom, right}, {y, right}};
        return places[orientation - 1];
    }

    // Printed in this order of channels.
    static std::array<int, 3> Expected(const TiffImage& image, int x, int y,
                                       const std::vector<int>& order, int none, int full,
                                       double gain)
    {
        std::vector<NaiveInk> inks;
        for (const int channel : order) {
            NaiveInk ink = looks[channel];
            ink.sample = image.At(x, y, channel);
            inks.push_back(ink);
        }
        const auto light = NaivePrint(inks, none, full, gain);
        return {NaiveScreen(light[0]), NaiveScreen(light[1]), NaiveScreen(light[2])};
    }
};

TEST_F(PreviewOfInks, ShowsEachPixelOfACropByTheFormula)
{
    const struct
    {
        int bits;
        bool separate;
        int tile;
    } forms[] = {{8, false, 0}, {8, true, 0},  {16, false, 0}, {16, true, 16},
                 {1, false, 0}, {2, false, 0}, {2, true, 0},   {8, false, 16}};
    for (const auto& [bits, separate, tile] : forms) {
        SCOPED_TRACE(bits);
        const TiffImage image = RandomImage(61, 37, 4, bits, 5);
        FileForm form = FourInks();
        form.separate = separate;
        form.tile = tile;
        WriteTiff(Path("in.tif"), image, form);
        ASSERT_TRUE(EndedSilently(Preview({"--crop", "3,5,50,30", "--inks", Path("inks.txt"),
                                           "--print-order", "d-e,C", "--gain", "20"})));
        const PngImage seen = ReadPng(Path("seen.png"));
        ASSERT_EQ(50, seen.width);
        ASSERT_EQ(30, seen.height);
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 50; ++x)
                ASSERT_EQ(Expected(image, x + 3, y + 5, {3, 2, 0, 1}, 0, (1 << bits) - 1, 0.2),
                          seen.At(x, y))
                    << x << " " << y;
        }
    }
}

TEST_F(PreviewOfInks, AveragesTheLightOfAllPixels)
{
    const TiffImage image = RandomImage(3201, 7, 4, 8, 6);
    WriteTiff(Path("in.tif"), image, FourInks());
    ASSERT_TRUE(EndedSilently(Preview({"--inks", Path("inks.txt")})));
    const PngImage seen = ReadPng(Path("seen.png"));
    ASSERT_EQ(1600, seen.width);
    ASSERT_EQ(3, seen.height);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 1600; ++x) {
            std::array<double, 3> sum = {};
            double count = 0;
            for (int v = y * 7 / 3; v < (y + 1) * 7 / 3; ++v) {
                for (int u = x * 3201 / 1600; u < (x + 1) * 3201 / 1600; ++u, ++count) {
                    std::vector<NaiveInk> inks(std::begin(looks), std::end(looks));
                    for (int i = 0; i < 4; ++i)
                        inks[static_cast<std::size_t>(i)].sample = image.At(u, v, i);
                    const auto light = NaivePrint(inks, 0, 255, 0);
                    for (std::size_t c = 0; c < 3; ++c)
                        sum[c] += light[c];
                }
            }
            for (std::size_t c = 0; c < 3; ++c)
                ASSERT_EQ(NaiveScreen(sum[c] / count), seen.At(x, y)[c]) << x << " " << y;
        }
    }
}

TEST_F(PreviewOfInks, ReadsPolarityAndRangeOfThePage)
{
    TiffImage image = BlankImage(3, 1, 1, 8);
    image.samples = {0, 255, 102};
    FileForm form;
    const std::string black = "Black #000000 0\n";
    WriteBytes(Path("inks.txt"), black);
    const auto seen = [&](const std::vector<std::string>& options) {
        std::vector<std::string> all = {"--inks", Path("inks.txt")};
        all.insert(all.end(), options.begin(), options.end());
        WriteTiff(Path("in.tif"), image, form);
        const Outcome outcome = Preview(all);
        EXPECT_TRUE(EndedSilently(outcome));
        const PngImage png = ReadPng(Path("seen.png"));
        return std::array<int, 3>{png.At(0, 0)[0], png.At(1, 0)[0], png.At(2, 0)[0]};
    };
    const int low = NaiveScreen(102 / 255.0);
    const int high = NaiveScreen(153 / 255.0);
    EXPECT_EQ((std::array<int, 3>{0, 255, low}), seen({}));
    EXPECT_EQ((std::array<int, 3>{255, 0, high}), seen({"--polarity", "ink-high"}));
    form.photometric = PHOTOMETRIC_MINISWHITE;
    EXPECT_EQ((std::array<int, 3>{255, 0, high}), seen({}));
    form = InkForm("Black");
    const auto names = form.setTags;
    form.setTags = [names](TIFF* tiff) {
        names(tiff);
        TIFFSetField(tiff, TIFFTAG_DOTRANGE, 0, 204);
    };
    EXPECT_EQ((std::array<int, 3>{255, 0, NaiveScreen(0.5)}), seen({}));
}

TEST_F(PreviewOfInks, ShowsWhatSimulateWritesAsItsOwnPreview)
{
    std::string text = smallPattern;
    for (const char* from : {"1-64", "1-128", "0-40", "0-255", "0-255"}) {
        // Drops of a head that counts them.
        const std::size_t at = text.find(from);
        text.replace(at, std::string(from).size(),
                     std::string(from, 2) + (from[2] == '2' ? "3" : "1"));
    }
    WritePattern(text);
    for (const int orientation : {1, 3, 6}) {
        FileForm form = InkForm("Cyan Black");
        const auto names = form.setTags;
        form.setTags = [names, orientation](TIFF* tiff) {
            names(tiff);
            TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
        };
        WriteTiff(Path("in.tif"), RandomImage(300, 200, 2, 8, 9), form);
        // It warns of the tag, which is no failure.
        ASSERT_EQ(0, Simulate({"--preview", Path("own.png")}).exitCode);
        ASSERT_TRUE(
            EndedSilently(Run({"preview", Path("out.tif"), Path("seen.png"), "--gain", "0"})));
        EXPECT_TRUE(Bytes(Path("own.png")) == Bytes(Path("seen.png")));
        EXPECT_EQ(orientation > 4 ? 200 : 300, ReadPng(Path("seen.png")).width);
    }
}

TEST_F(PreviewOfInks, NamesThePicturesOfPagesAfterTheirNumbers)
{
    std::vector<TiffImage> pages;
    for (int page = 1; page <= 4; ++page)
        pages.push_back(BlankImage(page, 2, 4, 8));
    WriteTiffPages(Path("in.tif"), pages, FourInks());
    const std::vector<std::string> inks = {"--inks", Path("inks.txt")};
    ASSERT_TRUE(EndedSilently(Preview(inks)));
    EXPECT_EQ((std::vector<std::string>{"in.tif", "inks.txt", "pattern.txt", "seen-2.png",
                                        "seen-3.png", "seen-4.png", "seen.png"}),
              Files());
    EXPECT_EQ(1, ReadPng(Path("seen.png")).width);
    EXPECT_EQ(4, ReadPng(Path("seen-4.png")).width);

    ASSERT_TRUE(EndedSilently(Preview({"--inks", Path("inks.txt"), "--page", "3"})));
    EXPECT_EQ(3, ReadPng(Path("seen.png")).width);
}

TEST_F(PreviewOfInks, WritesOnePageToTheStandardOutput)
{
    WriteTiffPages(Path("in.tif"), {RandomImage(30, 20, 4, 8, 1), RandomImage(30, 20, 4, 8, 2)},
                   FourInks());
    const std::vector<std::string> inks = {"--inks", Path("inks.txt"), "--page", "2", "--explain"};
    EXPECT_EQ(0, Preview(inks).exitCode);
    std::vector<std::string> arguments = {"preview", Path("in.tif"), "-"};
    const Outcome both = Run(arguments);
    EXPECT_EQ(2, both.exitCode);
    EXPECT_NE(std::string::npos, both.errors.find("--page chooses one"));
    EXPECT_EQ("", both.output);
    arguments.insert(arguments.end(), inks.begin(), inks.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_TRUE(Bytes(Path("seen.png")) == outcome.output);
    // Nothing else is mixed into it.
    EXPECT_NE(std::string::npos, outcome.errors.find("page 2: 30 x 20 as 30 x 20"));
}

TEST_F(PreviewOfInks, TellsTheResolution)
{
    FileForm form = FourInks();
    const auto names = form.setTags;
    form.setTags = [names](TIFF* tiff) {
        names(tiff);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 600.0);
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    };
    WriteTiff(Path("in.tif"), BlankImage(20, 20, 4, 8), form);
    ASSERT_TRUE(EndedSilently(Preview({"--inks", Path("inks.txt"), "--crop", "0,0,20,20"})));
    const std::string png = Bytes(Path("seen.png"));
    // 11811 and 23622 pixels per metre, in the order of the network.
    EXPECT_NE(std::string::npos, png.find(std::string("pHYs\0\0\x2E\x23\0\0\x5C\x46\1", 13)));
}

TEST_F(PreviewOfInks, TurnsPagesAsAPersonSeesThem)
{
    const TiffImage image = RandomImage(23, 31, 4, 8, 12);
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        WriteTiff(Path("in.tif"), image, TurnedInks(orientation));
        ASSERT_TRUE(EndedSilently(
            Preview({"--inks", Path("inks.txt"), "--crop", "3,5,17,24", "--threads", "3"})));
        const PngImage seen = ReadPng(Path("seen.png"));
        ASSERT_EQ(orientation > 4 ? 24 : 17, seen.width);
        ASSERT_EQ(orientation > 4 ? 17 : 24, seen.height);
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 17; ++x) {
                const auto [column, row] = SeenAt(orientation, 17, 24, x, y);
                ASSERT_EQ(Expected(image, x + 3, y + 5, {0, 1, 2, 3}, 0, 255, 0),
                          seen.At(column, row))
                    << x << " " << y;
            }
        }
        // 11811 and 23622 pixels per metre, across and down.
        const std::string perMetre = orientation > 4
                                         ? std::string("pHYs\0\0\x5C\x46\0\0\x2E\x23\1", 13)
                                         : std::string("pHYs\0\0\x2E\x23\0\0\x5C\x46\1", 13);
        EXPECT_NE(std::string::npos, Bytes(Path("seen.png")).find(perMetre));
    }
}

// Kept in a file meanwhile, and turned some columns at a time.
TEST_F(PreviewOfInks, TurnsLargeCropsToo)
{
    constexpr int width = 1700;
    constexpr int height = 1900;
    TiffImage image = RandomImage(width, height, 1, 8, 13);
    for (auto& sample : image.samples)
        sample = sample / 128 * 255;
    WriteBytes(Path("inks.txt"), "Black #000000 0\n");
    const std::string crop = "0,0," + std::to_string(width) + ',' + std::to_string(height);
    for (const int orientation : {3, 4, 5, 6, 7, 8}) {
        SCOPED_TRACE(orientation);
        FileForm form;
        form.photometric = PHOTOMETRIC_MINISWHITE;
        form.setTags = [orientation](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
        };
        WriteTiff(Path("in.tif"), image, form);
        // 1700 x 1900 pixels of 3 bytes.
        ASSERT_TRUE(Refused(
            Preview({"--crop", crop, "--spool-limit", "9689999"}), 5,
            {"seen.png: takes 9690000 bytes to be turned", "9689999", "--spool-limit", "--crop"}));
        ASSERT_TRUE(EndedSilently(
            Preview({"--inks", Path("inks.txt"), "--crop", crop, "--spool-limit", "9690000"})));
        EXPECT_EQ((std::vector<std::string>{"in.tif", "inks.txt", "pattern.txt", "seen.png"}),
                  Files());
        const PngImage seen = ReadPng(Path("seen.png"));
        std::filesystem::remove(Path("seen.png"));
        ASSERT_EQ(orientation > 4 ? height : width, seen.width);
        int wrong = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const auto [column, row] = SeenAt(orientation, width, height, x, y);
                wrong += seen.At(column, row)[0] == 255 - image.At(x, y, 0) ? 0 : 1;
            }
        }
        EXPECT_EQ(0, wrong);
    }
}

TEST_F(PreviewOfInks, TellsOfTheTurn)
{
    WriteTiff(Path("in.tif"), BlankImage(20, 10, 4, 8), TurnedInks(6));
    const std::vector<std::string> plan = {"--inks", Path("inks.txt"), "--explain", "--dry-run"};
    const std::string words = Preview(plan).output;
    EXPECT_NE(std::string::npos, words.find("page 1: 20 x 10 as 5 x 20 in ")) << words;
    EXPECT_NE(std::string::npos,
              words.find("turned by its tag Orientation, 6, which puts the "
                         "first row and its first pixel at right, top: a "
                         "person sees the page turned by 90 degrees clockwise\n"))
        << words;
    WriteTiff(Path("in.tif"), BlankImage(20, 10, 4, 8), TurnedInks(1));
    EXPECT_EQ(std::string::npos, Preview(plan).output.find("turned"));
}

TEST_F(PreviewOfInks, IsTheSameForAnyThreads)
{
    WriteTiff(Path("in.tif"), RandomImage(50, 301, 4, 8, 3), FourInks());
    const auto seen = [&](const char* threads, const char* part) {
        std::vector<std::string> options = {"--inks", Path("inks.txt"), "--threads", threads};
        if (part != nullptr)
            options.insert(options.end(), {"--crop", part});
        EXPECT_TRUE(EndedSilently(Preview(options)));
        return Bytes(Path("seen.png"));
    };
    for (const char* part : {static_cast<const char*>(nullptr), "7,100,20,201"}) {
        const std::string first = seen("1", part);
        EXPECT_TRUE(first == seen("3", part));
        EXPECT_TRUE(first == seen("200", part));
    }
}

TEST_F(PreviewOfInks, ExplainsItsPlan)
{
    WriteTiff(Path("in.tif"), BlankImage(20, 10, 4, 8), FourInks());
    const std::vector<std::string> options = {"--inks",    Path("inks.txt"), "--print-order",
                                              "C",         "--dot-range",    "10,200",
                                              "--explain", "--dry-run"};
    const Outcome outcome = Preview(options);
    EXPECT_TRUE(EndedSilently(outcome));
    for (const char* words : {"page 1: 20 x 10 as 20 x 10 in ", "no ink is 10, full ink 200\n",
                              "\n  ink C: channel 2, #ffed00, opacity 0",
                              "\n  ink D e: channel 3, "
                              "#ffffff, opacity 0.9\n"})
        EXPECT_NE(std::string::npos, outcome.output.find(words)) << words << outcome.output;
    EXPECT_LT(outcome.output.find("ink C"), outcome.output.find("ink A"));
    EXPECT_FALSE(std::filesystem::exists(Path("seen.png")));
    EXPECT_TRUE(Refused(Run({"preview", Path("in.tif"), Path("missing/seen.png"), "--dry-run",
                             "--inks", Path("inks.txt")}),
                        6, {"seen.png: cannot be written"}));
}

TEST_F(PreviewOfInks, NamesInksThatItDoesntKnow)
{
    const TiffImage image = BlankImage(4, 4, 4, 8);
    WriteTiffPages(Path("in.tif"), {image, image}, FourInks());
    const Outcome outcome = Preview();
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_NE(std::string::npos,
              outcome.errors.find("the look of ink \"D e\" isn't known; it is shown as #"));
    EXPECT_NE(std::string::npos,
              outcome.errors.find("; --inks FILE with a line \"D e\" #RRGGBB 0 (name, colour, "
                                  "opacity) gives it its own\n"))
        << outcome.errors;
    WriteBytes(Path("looks.txt"), "\"D e\" #123456 0\nA #123456 0\n");
    EXPECT_TRUE(EndedSilently(Preview({"--inks", Path("looks.txt")})));
    // A and "D e", once and not for each page; B and C are blue and cyan.
    EXPECT_EQ(2, std::count(outcome.errors.begin(), outcome.errors.end(), '\n'));
}

TEST_F(PreviewOfInks, RefusesWhatItCantShow)
{
    WriteTiff(Path("in.tif"), BlankImage(10, 10, 4, 8), FourInks());
    for (const char* crop : {"", "1", "1,2,3", "1,2,3,4,", "1,2,0,4", "1,2,3,0", "-1,2,3,4",
                             "1,2,3,4,5", "a,b,c,d", "1 ,2,3,4", "99999999999,1,1,1"})
        EXPECT_EQ(2, Preview({"--crop", crop}).exitCode) << crop;
    for (const char* crop : {"10,0,1,1", "0,10,1,1", "5,5,6,1", "5,5,1,6", "4294967295,0,2,2"})
        EXPECT_TRUE(Refused(Preview({"--crop", crop}), 2, {"in.tif", "10 x 10 pixels"})) << crop;
    EXPECT_TRUE(Refused(
        Preview({"--print-order", "A,Gold"}), 2,
        {"in.tif: has no ink \"Gold\", which --print-order names; its inks are A, B, C, D e"}));
    EXPECT_TRUE(Refused(Preview({"--print-order", "A,B,A"}), 2,
                        {"--print-order names the ink \"A\" again"}));
    for (const char* gain : {"-1", "51", "half"})
        EXPECT_EQ(2, Preview({"--gain", gain}).exitCode) << gain;
    EXPECT_TRUE(Refused(Preview({"--page", "2"}), 2, {"in.tif", "has no page 2"}));
    WriteBytes(Path("inks.txt"), "Cyan blue 0\n");
    EXPECT_TRUE(Refused(Preview({"--inks", Path("inks.txt")}), 3,
                        {"inks.txt: line 1: found \"blue\", expected a colour as #RRGGBB"}));
    EXPECT_TRUE(Refused(Preview({"--inks", Path("no.txt")}), 6, {"no.txt: cannot be read"}));
    FileForm colours;
    colours.photometric = PHOTOMETRIC_RGB;
    WriteTiff(Path("in.tif"), BlankImage(10, 10, 3, 8), colours);
    EXPECT_TRUE(Refused(Preview(), 5, {"in.tif", "RGB", "supported are pages of inks"}));
    EXPECT_EQ((std::vector<std::string>{"in.tif", "inks.txt", "pattern.txt"}), Files());
}

TEST_F(PreviewOfInks, KeepsFilesThatItShouldNotOverwrite)
{
    WriteTiffPages(Path("in.tif"), {BlankImage(4, 4, 4, 8), BlankImage(4, 4, 4, 8)}, FourInks());
    WriteBytes(Path("seen-2.png"), "old");
    EXPECT_EQ(6, Preview({"--no-clobber"}).exitCode);
    EXPECT_EQ("old", Bytes(Path("seen-2.png")));
    EXPECT_FALSE(std::filesystem::exists(Path("seen.png")));
    EXPECT_EQ(2, Run({"preview", Path("in.tif"), Path("seen.tif")}).exitCode);
    EXPECT_EQ(0, Preview().exitCode);
    EXPECT_NE("old", Bytes(Path("seen-2.png")));
}

TEST_F(PreviewOfInks, LeavesNothingOfAnyPageWhereOneIsCutOff)
{
    WriteTiffPages(Path("in.tif"), {RandomImage(30, 30, 4, 8, 1), RandomImage(30, 30, 4, 8, 2)},
                   FourInks());
    const std::string whole = Bytes(Path("in.tif"));
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 16 + 1) {
        WriteBytes(Path("in.tif"), whole.substr(0, size));
        EXPECT_EQ(3, Preview({"--inks", Path("inks.txt")}).exitCode) << size;
        EXPECT_EQ((std::vector<std::string>{"in.tif", "inks.txt", "pattern.txt"}), Files());
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
