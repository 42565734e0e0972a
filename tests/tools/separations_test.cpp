#include "tests/tools/tool_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

// Another program rasters a page of five inks, and takes it apart itself.
class Separations : public ToolFixture
{
protected:
    void Raster(const std::string& device, const std::string& target)
    {
        const Outcome outcome =
            Subprocess({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=" + device, "-r72",
                        "-o", Path(target), PELKRAFT_TEST_PAGE},
                       folder + "/streams")
                .Wait();
        ASSERT_EQ(0, outcome.exitCode) << outcome.errors;
    }

    // Turns a one-channel picture in which 0 is full ink.
    static TiffImage InkIsHigh(TiffImage image)
    {
        const int highest = (1 << image.bits) - 1;
        for (std::uint16_t& sample : image.samples)
            sample = static_cast<std::uint16_t>(highest - sample);
        return image;
    }

    [[nodiscard]] TiffImage Read(const std::string& name) const
    {
        FileForm form;
        TiffImage image = ReadTiff(Path(name), form);
        return form.photometric == PHOTOMETRIC_MINISBLACK ? InkIsHigh(image) : image;
    }
};

// The rasterizer mixes the spot ink into the page's process inks, not into their separations.
TEST_F(Separations, OfEachInkEqualTheRasterizersOwnWhereNoSpotInkLies)
{
    Raster("tiffsep", "page.tif");
    const TiffImage spot = Read("page(Harbour Orange).tif");
    for (const std::string ink : {"Cyan", "Magenta", "Yellow", "Black"}) {
        ASSERT_TRUE(
            EndedSilently(Run({"convert", Path("page.tif"), Path("ink.tif"), "--channels", ink})));
        const TiffImage mine = Read("ink.tif");
        const TiffImage theirs = Read("page(" + ink + ").tif");
        ASSERT_EQ(1, mine.channels);
        ASSERT_EQ(theirs.samples.size(), mine.samples.size());
        int inked = 0;
        for (std::size_t i = 0; i < mine.samples.size(); ++i) {
            if (spot.samples[i] != 0)
                continue;
            ASSERT_EQ(theirs.samples[i], mine.samples[i]) << ink << " at sample " << i;
            inked += mine.samples[i] != 0 ? 1 : 0;
        }
        // A page without this ink would prove nothing.
        EXPECT_GT(inked, 1000) << ink;
    }
}

TEST_F(Separations, InPlanesEqualTheRasterizersOwnOnBothRoads)
{
    Raster("tiffsep", "page.tif");
    for (const char* road : {"--threads=2", "--portable"}) {
        ASSERT_TRUE(EndedSilently(
            Run({"convert", Path("page.tif"), Path("planes.tif"), "--layout", "planar", road})));
        const TiffImage planes = Read("planes.tif");
        // The recipe of the spot ink has neither cyan nor black.
        for (const auto& [channel, ink] : {std::pair{0, "Cyan"}, {3, "Black"}}) {
            const TiffImage theirs = Read(std::string("page(") + ink + ").tif");
            for (int y = 0; y < planes.height; ++y) {
                for (int x = 0; x < planes.width; ++x)
                    ASSERT_EQ(theirs.At(x, y, 0), planes.At(x, y, channel))
                        << ink << " at " << x << ", " << y;
            }
        }
    }
}

// The rasterizer writes them as grey pages, whose lowest samples are full ink.
TEST_F(Separations, AreSimulatedAsInk)
{
    Raster("tiffsep", "page.tif");
    WriteBytes(Path("pattern.txt"), R"(DotWeavePattern
VERSION 2
BEGIN_OUT_INKS Cyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan END_INKS
BEGIN_VALUES 1 1 0-100
2 1 0-250
END_VALUES
END_IN_COLOR
)");
    // The tags of a plate don't say which ink it is.
    ASSERT_TRUE(Refused(Run({"simulate", Path("pattern.txt"), Path("page(Cyan).tif"),
                             Path("dots.tif"), "--levels", "quantize"}),
                        0, {"Cyan from channel 0 (Black)"}));
    FileForm form;
    const TiffImage plate = ReadTiff(Path("page(Cyan).tif"), form);
    ASSERT_EQ(form.photometric, PHOTOMETRIC_MINISBLACK);
    const TiffImage dots = Read("dots.tif");
    ASSERT_EQ(dots.samples.size(), plate.samples.size());
    int inked = 0;
    for (std::size_t i = 0; i < dots.samples.size(); ++i) {
        const int ink = 255 - plate.samples[i];
        ASSERT_EQ(dots.samples[i], ink < 86 ? 0 : ink < 171 ? 100 : 250) << "at sample " << i;
        inked += dots.samples[i] != 0 ? 1 : 0;
    }
    EXPECT_GT(inked, 1000);
}

// Halftoned by the rasterizer: the client hands its bits on, through other depths as well.
TEST_F(Separations, OfOneBitAreRelayedUnchanged)
{
    Raster("tiffsep1", "page%d.tif");
    for (const std::string ink : {"Cyan", "Magenta", "Yellow", "Black", "Harbour Orange"}) {
        const std::string theirs = Path("page1(" + ink + ").tif");
        ASSERT_TRUE(EndedSilently(Run({"convert", theirs, Path("same.tif"), "--mirror"})));
        // A scheme for single bits can't hold the new samples.
        ASSERT_TRUE(Refused(
            Run({"convert", Path("same.tif"), Path("wide.tif"), "--mirror", "--bits", "16"}), 0,
            {"warning: CCITT Group 4 compression is not kept"}));
        ASSERT_TRUE(
            EndedSilently(Run({"convert", Path("wide.tif"), Path("back.tif"), "--bits", "1"})));
        FileForm form;
        const TiffImage first = ReadTiff(theirs, form);
        ASSERT_EQ(1, first.bits);
        EXPECT_EQ(first.samples, ReadTiff(Path("back.tif"), form).samples) << ink;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
