#include "tests/tools/expected_image.h"
#include "tests/tools/tool_fixture.h"

#include <cstring>
#include <memory>

namespace zvk::Pelkraft::TestSupport {
namespace {

class ConvertTags : public ToolFixture
{
protected:
    // Writes in.tif of this many channels with these tags.
    void MakeInput(int channels, int photometric, const std::function<void(TIFF*)>& setTags,
                   int bits = 8)
    {
        FileForm form;
        form.photometric = photometric;
        form.setTags = setTags;
        WriteTiff(Path("in.tif"), RandomImage(11, 4, channels, bits, 3), form);
    }

    // Closes the last output first: not every system replaces a file that is open.
    [[nodiscard]] Outcome Convert(const std::vector<std::string>& options = {})
    {
        result.reset();
        return ToolFixture::Convert(options);
    }

    void OpenOutput()
    {
        // Closed first: a new file of the same name may lie in the old one's place.
        result.reset();
        // Its remarks are no part of a test's result.
        TIFFSetWarningHandler(nullptr);
        result.reset(TIFFOpen(Path("out.tif").c_str(), "r"));
        ASSERT_NE(nullptr, result);
    }

    template <typename Value>
    Value Tag(std::uint32_t tag, Value otherwise = {})
    {
        Value value = otherwise;
        return TIFFGetField(result.get(), tag, &value) == 1 ? value : otherwise;
    }
    int Short(std::uint32_t tag) { return Tag<std::uint16_t>(tag, 9999); }

    std::string Inks()
    {
        const char* names = Tag<const char*>(TIFFTAG_INKNAMES);
        if (names == nullptr)
            return "none";
        std::string joined;
        for (int i = 0; i < Short(TIFFTAG_NUMBEROFINKS); ++i) {
            joined += std::string(i > 0 ? "," : "") + names;
            names += std::strlen(names) + 1;
        }
        return joined;
    }

    std::vector<int> Extras()
    {
        std::uint16_t count = 0;
        std::uint16_t* kinds = nullptr;
        if (TIFFGetField(result.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1)
            return {};
        return {kinds, kinds + count};
    }

    std::string Profile()
    {
        std::uint32_t size = 0;
        const char* data = nullptr;
        if (TIFFGetField(result.get(), TIFFTAG_ICCPROFILE, &size, &data) != 1)
            return "none";
        return std::string(data, size);
    }

    struct Close
    {
        void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    };
    std::unique_ptr<TIFF, Close> result;
};

void SetProfile(TIFF* tiff)
{
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, 7, "profile");
}

void SetCmykAndSpot(TIFF* tiff)
{
    static const char names[] = "Cyan\0Magenta\0Yellow\0Black\0Harbour Orange";
    TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
    TIFFSetField(tiff, TIFFTAG_INKNAMES, static_cast<int>(sizeof names), names);
    TIFFSetField(tiff, TIFFTAG_NUMBEROFINKS, 5);
}

TEST_F(ConvertTags, StayAsTheyWere)
{
    MakeInput(4, PHOTOMETRIC_SEPARATED, [](TIFF* tiff) {
        SetProfile(tiff);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 600.0);
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_BOTRIGHT);
        TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_CMYK);
        TIFFSetField(tiff, TIFFTAG_DOCUMENTNAME, "a name");
        TIFFSetField(tiff, TIFFTAG_DATETIME, "2001:02:03 04:05:06");
        TIFFSetField(tiff, TIFFTAG_PAGENUMBER, 3, 7);
        TIFFSetField(tiff, TIFFTAG_XPOSITION, 2.5);
        TIFFSetField(tiff, TIFFTAG_XMLPACKET, 4, "<x/>");
        TIFFSetField(tiff, TIFFTAG_DOTRANGE, 10, 240);
    });
    ASSERT_TRUE(EndedSilently(Convert({"--layout", "planar"})));
    OpenOutput();
    EXPECT_EQ("profile", Profile());
    EXPECT_EQ(300, Tag<float>(TIFFTAG_XRESOLUTION));
    EXPECT_EQ(600, Tag<float>(TIFFTAG_YRESOLUTION));
    EXPECT_EQ(RESUNIT_CENTIMETER, Short(TIFFTAG_RESOLUTIONUNIT));
    EXPECT_EQ(ORIENTATION_BOTRIGHT, Short(TIFFTAG_ORIENTATION));
    EXPECT_EQ(INKSET_CMYK, Short(TIFFTAG_INKSET));
    EXPECT_EQ(PHOTOMETRIC_SEPARATED, Short(TIFFTAG_PHOTOMETRIC));
    EXPECT_STREQ("a name", Tag<const char*>(TIFFTAG_DOCUMENTNAME, ""));
    EXPECT_STREQ("2001:02:03 04:05:06", Tag<const char*>(TIFFTAG_DATETIME, ""));
    EXPECT_EQ(2.5, Tag<float>(TIFFTAG_XPOSITION));
    std::uint16_t page = 0;
    std::uint16_t pages = 0;
    EXPECT_EQ(1, TIFFGetField(result.get(), TIFFTAG_PAGENUMBER, &page, &pages));
    EXPECT_EQ(3, page);
    EXPECT_EQ(7, pages);
    std::uint16_t low = 0;
    std::uint16_t high = 0;
    EXPECT_EQ(1, TIFFGetField(result.get(), TIFFTAG_DOTRANGE, &low, &high));
    EXPECT_EQ(10, low);
    EXPECT_EQ(240, high);
    EXPECT_TRUE(Extras().empty());
    EXPECT_EQ("none", Inks());
}

TEST_F(ConvertTags, FollowARepeatInTheirResolution)
{
    MakeInput(1, PHOTOMETRIC_MINISWHITE, [](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    });
    ASSERT_TRUE(EndedSilently(Convert({"--repeat", "4", "--mirror"})));
    OpenOutput();
    EXPECT_EQ(1200, Tag<float>(TIFFTAG_XRESOLUTION));
    EXPECT_EQ(300, Tag<float>(TIFFTAG_YRESOLUTION));
    EXPECT_EQ(PHOTOMETRIC_MINISWHITE, Short(TIFFTAG_PHOTOMETRIC));

    MakeInput(1, PHOTOMETRIC_MINISBLACK, {});
    ASSERT_TRUE(EndedSilently(Convert({"--repeat", "2"})));
    OpenOutput();
    EXPECT_EQ(2, Tag<float>(TIFFTAG_XRESOLUTION));
    EXPECT_EQ(1, Tag<float>(TIFFTAG_YRESOLUTION));
    EXPECT_EQ(RESUNIT_NONE, Short(TIFFTAG_RESOLUTIONUNIT));
}

TEST_F(ConvertTags, NameTheInksThatAreLeft)
{
    MakeInput(4, PHOTOMETRIC_SEPARATED, SetProfile);
    const Outcome outcome = Convert({"--channels", "cyan,BLACK"});
    EXPECT_TRUE(Refused(outcome, 0, {"in.tif", "warning", "profile"}));
    OpenOutput();
    EXPECT_EQ("Cyan,Black", Inks());
    EXPECT_EQ(2, Short(TIFFTAG_NUMBEROFINKS));
    EXPECT_EQ(INKSET_MULTIINK, Short(TIFFTAG_INKSET));
    EXPECT_EQ(PHOTOMETRIC_SEPARATED, Short(TIFFTAG_PHOTOMETRIC));
    EXPECT_EQ("none", Profile());
    const TiffImage image = RandomImage(11, 4, 4, 8, 3);
    EXPECT_EQ(Expected(image, {8, {0, 3}, 1, false, true}).samples, Output().samples);
}

TEST_F(ConvertTags, NameInksThatChangePlaces)
{
    MakeInput(4, PHOTOMETRIC_SEPARATED, nullptr);
    ASSERT_TRUE(EndedSilently(Convert({"--channels", "black,yellow,magenta,cyan"})));
    OpenOutput();
    EXPECT_EQ("Black,Yellow,Magenta,Cyan", Inks());
    EXPECT_EQ(INKSET_MULTIINK, Short(TIFFTAG_INKSET));
}

TEST_F(ConvertTags, NameSpotInksToo)
{
    MakeInput(5, PHOTOMETRIC_SEPARATED, SetCmykAndSpot);
    ASSERT_TRUE(EndedSilently(Convert({"--layout", "planar"})));
    OpenOutput();
    EXPECT_EQ("Cyan,Magenta,Yellow,Black,Harbour Orange", Inks());
    EXPECT_EQ(5, Short(TIFFTAG_NUMBEROFINKS));

    ASSERT_TRUE(EndedSilently(Convert({"--channels", "Harbour Orange, -, 1"})));
    OpenOutput();
    EXPECT_EQ("Harbour Orange,Empty,Magenta", Inks());
    const TiffImage image = RandomImage(11, 4, 5, 8, 3);
    EXPECT_EQ(Expected(image, {8, {4, -1, 1}, 1, false, true}).samples, Output().samples);
}

TEST_F(ConvertTags, KeepTheKindOfExtraSamples)
{
    const auto setExtras = [](TIFF* tiff) {
        const std::uint16_t kinds[] = {EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNASSALPHA};
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 2, kinds);
    };
    MakeInput(5, PHOTOMETRIC_RGB, setExtras);
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "16"})));
    OpenOutput();
    EXPECT_EQ((std::vector<int>{1, 2}), Extras());

    ASSERT_TRUE(EndedSilently(Convert({"--channels", "0,1,2,4,-,3"})));
    OpenOutput();
    EXPECT_EQ((std::vector<int>{2, 0, 1}), Extras());
    EXPECT_EQ(PHOTOMETRIC_RGB, Short(TIFFTAG_PHOTOMETRIC));

    MakeInput(6, PHOTOMETRIC_SEPARATED, setExtras);
    ASSERT_TRUE(EndedSilently(Convert({"--channels", "3,5"})));
    OpenOutput();
    EXPECT_EQ("Black", Inks());
    EXPECT_EQ((std::vector<int>{2}), Extras());
}

TEST_F(ConvertTags, WarnWhereTheColoursClashAndStillEndWell)
{
    MakeInput(3, PHOTOMETRIC_RGB, SetProfile);
    EXPECT_TRUE(Refused(Convert({"--channels", "Green"}), 0, {"warning", "RGB", "MinIsBlack"}));
    OpenOutput();
    EXPECT_EQ(PHOTOMETRIC_MINISBLACK, Short(TIFFTAG_PHOTOMETRIC));
    EXPECT_EQ("none", Profile());

    EXPECT_TRUE(Refused(Convert({"--channels", "2,1,0"}), 0, {"warning", "have changed", "RGB"}));
    OpenOutput();
    EXPECT_EQ(PHOTOMETRIC_RGB, Short(TIFFTAG_PHOTOMETRIC));

    std::uint16_t ramp[256] = {};
    for (std::uint16_t i = 0; i < 256; ++i)
        ramp[i] = static_cast<std::uint16_t>(i * 257);
    MakeInput(1, PHOTOMETRIC_PALETTE,
              [&](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_COLORMAP, ramp, ramp, ramp); });
    EXPECT_TRUE(EndedSilently(Convert({"--mirror"})));
    OpenOutput();
    EXPECT_EQ(PHOTOMETRIC_PALETTE, Short(TIFFTAG_PHOTOMETRIC));
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    ASSERT_EQ(1, TIFFGetField(result.get(), TIFFTAG_COLORMAP, &red, &green, &blue));
    EXPECT_EQ(0, std::memcmp(blue, ramp, sizeof ramp));

    EXPECT_TRUE(Refused(Convert({"--bits", "16"}), 0, {"warning", "palette", "MinIsBlack"}));
    OpenOutput();
    EXPECT_EQ(PHOTOMETRIC_MINISBLACK, Short(TIFFTAG_PHOTOMETRIC));
}

TEST_F(ConvertTags, KeepTheOrderOfBits)
{
    for (const int order : {FILLORDER_LSB2MSB, FILLORDER_MSB2LSB}) {
        MakeInput(
            3, PHOTOMETRIC_MINISBLACK,
            [&](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_FILLORDER, order); }, 1);
        const Outcome outcome = Convert({"--layout", "planar", "--explain"});
        ASSERT_TRUE(EndedSilently(outcome));
        EXPECT_NE(std::string::npos,
                  outcome.output.find(order == FILLORDER_LSB2MSB ? "lowest bit first"
                                                                 : "highest bit first"));
        OpenOutput();
        EXPECT_EQ(order, Short(TIFFTAG_FILLORDER));
        EXPECT_EQ(RandomImage(11, 4, 3, 1, 3).samples, Output().samples);
    }
}

TEST_F(ConvertTags, KeepALosslessCompressionWhereItFits)
{
    const auto compressionAfter = [&](int compression, int bits,
                                      const std::vector<std::string>& options, int channels = 1) {
        FileForm form;
        form.compression = compression;
        form.rowsPerStrip = 8;
        form.separate = channels > 1;
        WriteTiff(Path("in.tif"), RandomImage(64, 16, channels, bits, 3), form);
        EXPECT_EQ(0, Convert(options).exitCode);
        OpenOutput();
        return Short(TIFFTAG_COMPRESSION);
    };
    EXPECT_EQ(COMPRESSION_CCITTFAX4, compressionAfter(COMPRESSION_CCITTFAX4, 1, {"--mirror"}));
    EXPECT_EQ(COMPRESSION_CCITTFAX4, compressionAfter(COMPRESSION_CCITTFAX4, 1, {"--mirror"}, 3));
    EXPECT_EQ(COMPRESSION_LZW,
              compressionAfter(COMPRESSION_CCITTFAX4, 1, {"--layout", "interleaved"}, 3));
    EXPECT_EQ(COMPRESSION_LZW, compressionAfter(COMPRESSION_CCITTFAX4, 1, {"--bits", "8"}));
    EXPECT_EQ(COMPRESSION_LZW, compressionAfter(COMPRESSION_JPEG, 8, {}));
    EXPECT_EQ(COMPRESSION_ADOBE_DEFLATE, compressionAfter(COMPRESSION_DEFLATE, 8, {"--bits", "2"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
