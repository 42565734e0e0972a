#include "tests/tools/tool_fixture.h"

#include <cstring>
#include <memory>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::uint32_t privateTag = 65000;
constexpr std::uint32_t privateWords = 65001;
constexpr std::uint32_t privateFraction = 65002;

// Lets libtiff write tags that nobody knows.
void AddPrivateTags(TIFF* tiff)
{
    static char name[] = "Private";
    static const TIFFFieldInfo fields[] = {
        {privateTag, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_UNDEFINED, FIELD_CUSTOM, 1, 1, name},
        {privateWords, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_SHORT, FIELD_CUSTOM, 1, 1, name},
        {privateFraction, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_RATIONAL, FIELD_CUSTOM, 1, 1, name}};
    TIFFMergeFieldInfo(tiff, fields, 3);
}

// Converts files with tags that a new page may not be able to have.
class ConvertLosses : public ToolFixture
{
protected:
    void WriteInput(int pages, const std::function<void(TIFF*)>& setTags, int bits = 8,
                    int photometric = PHOTOMETRIC_MINISBLACK) const
    {
        FileForm form;
        form.photometric = photometric;
        form.setTags = setTags;
        const int channels = photometric == PHOTOMETRIC_SEPARATED ? 4 : 1;
        const std::vector<TiffImage> images(static_cast<std::size_t>(pages),
                                            RandomImage(11, 4, channels, bits, 3));
        WriteTiffPages(Path("in.tif"), images, form);
    }

    // The warnings about the file, one a line, in any order.
    [[nodiscard]] std::vector<std::string> Losses(const std::vector<std::string>& options = {})
    {
        const Outcome outcome = Convert(options);
        EXPECT_EQ(0, outcome.exitCode);
        const std::string start = "pelkraft: " + Path("in.tif") + ": warning: ";
        std::vector<std::string> losses;
        std::size_t place = 0;
        while (outcome.errors.compare(place, start.size(), start) == 0) {
            const std::size_t end = outcome.errors.find('\n', place);
            losses.push_back(
                outcome.errors.substr(place + start.size(), end - place - start.size()));
            place = end + 1;
        }
        EXPECT_EQ(place, outcome.errors.size()) << outcome.errors;
        std::sort(losses.begin(), losses.end());
        return losses;
    }

    template <typename Look>
    void LookAtOutput(Look look) const
    {
        TIFFSetWarningHandler(nullptr);
        TIFF* const tiff = TIFFOpen(Path("out.tif").c_str(), "r");
        ASSERT_NE(nullptr, tiff);
        look(tiff);
        TIFFClose(tiff);
    }
};

using Lines = std::vector<std::string>;

TEST_F(ConvertLosses, OfTagsInSampleValuesAreNamedOnceForAllPages)
{
    WriteInput(3, [](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_HALFTONEHINTS, 20, 200);
        TIFFSetField(tiff, TIFFTAG_THRESHHOLDING, THRESHHOLD_HALFTONE);
    });
    EXPECT_EQ(Losses({"--layout", "planar"}), Lines{});
    EXPECT_EQ(Losses({"--bits", "16"}),
              (Lines{"HalftoneHints is not kept: the depth changes (3 pages)",
                     "Threshholding is not kept: the depth changes (3 pages)"}));
    EXPECT_EQ(Losses({"--channels", "0,0", "--page", "2"}),
              (Lines{"HalftoneHints is not kept: the channels change (1 page)",
                     "Threshholding is not kept: the channels change (1 page)"}));
    EXPECT_EQ(Losses({"--invert"}),
              (Lines{"HalftoneHints is not kept: the samples change (3 pages)",
                     "Threshholding is not kept: the samples change (3 pages)"}));
}

TEST_F(ConvertLosses, OfADotRangeThereAreNone)
{
    WriteInput(
        2, [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_DOTRANGE, 10, 240); }, 8,
        PHOTOMETRIC_SEPARATED);
    for (const auto& [options, none, full] :
         {std::tuple<Lines, int, int>{{"--bits", "16"}, 2570, 61680},
          {{"--bits", "2"}, 0, 3},
          {{"--channels", "3,1"}, 10, 240},
          {{"--invert"}, 245, 15}}) {
        EXPECT_EQ(Losses(options), Lines{});
        LookAtOutput([none = none, full = full](TIFF* tiff) {
            std::uint16_t low = 0;
            std::uint16_t high = 0;
            EXPECT_EQ(1, TIFFGetField(tiff, TIFFTAG_DOTRANGE, &low, &high));
            EXPECT_EQ(none, low);
            EXPECT_EQ(full, high);
        });
    }
}

TEST_F(ConvertLosses, OfATransferFunctionAreNamedWhereItsSamplesChange)
{
    std::vector<std::uint16_t> curve(256);
    for (std::size_t i = 0; i < curve.size(); ++i)
        curve[i] = static_cast<std::uint16_t>(i * i);
    WriteInput(1, [&](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_TRANSFERFUNCTION, curve.data(), nullptr, nullptr);
    });
    EXPECT_EQ(Losses({"--mirror"}), Lines{});
    LookAtOutput([&](TIFF* tiff) {
        std::uint16_t* kept[3] = {};
        ASSERT_EQ(1, TIFFGetField(tiff, TIFFTAG_TRANSFERFUNCTION, &kept[0], &kept[1], &kept[2]));
        EXPECT_EQ(0, std::memcmp(kept[0], curve.data(), 512));
    });
    EXPECT_EQ(Losses({"--bits", "16"}),
              Lines{"TransferFunction is not kept: the depth changes (1 page)"});
}

TEST_F(ConvertLosses, OfPrivateTagsAreNamedWhereTheirBytesCannotBeCarried)
{
    const std::vector<unsigned char> bytes = {0, 255, 7, 13, 200};
    const std::vector<std::uint16_t> words = {1, 65535, 300};
    const float fraction = 0.1F;
    WriteInput(2, [&](TIFF* tiff) {
        AddPrivateTags(tiff);
        TIFFSetField(tiff, privateTag, static_cast<std::uint32_t>(bytes.size()), bytes.data());
        TIFFSetField(tiff, privateWords, static_cast<std::uint32_t>(words.size()), words.data());
        TIFFSetField(tiff, privateFraction, std::uint32_t{1}, &fraction);
    });
    EXPECT_EQ(Losses(), Lines{"tag 65002 (Tag 65002) is not kept: its values can't be carried as "
                              "they are (2 pages)"});
    LookAtOutput([&](TIFF* tiff) {
        do {
            std::uint32_t count = 0;
            void* values = nullptr;
            ASSERT_EQ(1, TIFFGetField(tiff, privateTag, &count, &values));
            ASSERT_EQ(bytes.size(), count);
            EXPECT_EQ(0, std::memcmp(values, bytes.data(), count));
            ASSERT_EQ(1, TIFFGetField(tiff, privateWords, &count, &values));
            ASSERT_EQ(words.size(), count);
            EXPECT_EQ(0, std::memcmp(values, words.data(), std::size_t{2} * count));
            EXPECT_EQ(0, TIFFGetField(tiff, privateFraction, &count, &values));
        } while (TIFFReadDirectory(tiff) == 1);
    });
}

TEST_F(ConvertLosses, OfPicturesWithinThePageAreNamed)
{
    FileForm form;
    form.setTags = [](TIFF* tiff) {
        toff_t offset = 0;
        TIFFSetField(tiff, TIFFTAG_SUBIFD, 1, &offset);
    };
    const TiffImage image = RandomImage(11, 4, 1, 8, 3);
    WriteTiff(Path("in.tif"), image, form);
    EXPECT_EQ(Losses(),
              Lines{"SubIFDs are not kept: the pictures in them are not converted (1 page)"});
}

TEST_F(ConvertLosses, OfACompressionAreNamed)
{
    FileForm form;
    form.compression = COMPRESSION_JPEG;
    form.rowsPerStrip = 8;
    WriteTiff(Path("in.tif"), RandomImage(16, 16, 1, 8, 3), form);
    EXPECT_EQ(Losses(), Lines{"JPEG compression is not kept: the new page is compressed by LZW, "
                              "which loses nothing (1 page)"});
    EXPECT_EQ(Losses({"--compress", "zip"}), Lines{});
    form.compression = COMPRESSION_DEFLATE;
    WriteTiff(Path("in.tif"), RandomImage(16, 16, 1, 8, 3), form);
    EXPECT_EQ(Losses(), Lines{});
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
