#include "tests/tools/expected_image.h"
#include "tests/tools/tool_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int depths[] = {1, 2, 8, 16};

bool OneSideBelow8(int from, int to)
{
    return (from < 8) != (to < 8);
}

// Goes through the ways a file can be cut and compressed, one after the other.
FileForm NextForm(int number, bool separate, int bits)
{
    FileForm form;
    form.separate = separate;
    form.rowsPerStrip = number % 3 == 0 ? 1 : 4;
    form.tile = number % 4 == 3 ? 16 : 0;
    constexpr int compressions[] = {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS,
                                    COMPRESSION_ADOBE_DEFLATE};
    form.compression = compressions[number % 7 % 4];
    if (bits >= 8 && number % 5 == 2)
        form.setTags = [](TIFF* tiff) {
            std::uint16_t compression = 0;
            TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
            if (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE)
                TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        };
    return form;
}

class ConvertFormats : public ToolFixture, public ::testing::WithParamInterface<int>
{};

// From every layout and depth to every second layout and depth; the next channel count takes the
// others.
TEST_P(ConvertFormats, BringsEverySampleAcross)
{
    constexpr int widths[] = {1, 7, 8, 9, 17, 31, 64, 129};
    const int channels = GetParam();
    int number = channels;
    for (const int from : depths) {
        for (const bool oldSeparate : {false, true}) {
            const int width = widths[number % 8];
            const int height = 1 + number % 11;
            const TiffImage image =
                RandomImage(width, height, channels, from, static_cast<std::uint32_t>(number));
            const FileForm form = NextForm(number, oldSeparate, from);
            WriteTiff(Path("in.tif"), image, form);
            int pair = from == 2 || from == 16 ? 1 : 0;
            for (const int to : depths) {
                for (const bool newSeparate : {false, true}) {
                    if (++pair % 2 != channels % 2)
                        continue;
                    SCOPED_TRACE(::testing::Message()
                                 << from << (oldSeparate ? " planar" : " interleaved") << " to "
                                 << to << (newSeparate ? " planar" : " interleaved") << ", "
                                 << width << " wide, tile " << form.tile << ", compression "
                                 << form.compression);
                    const Outcome outcome =
                        Convert({"--bits", std::to_string(to), "--layout",
                                 newSeparate ? "planar" : "interleaved", "--tones",
                                 OneSideBelow8(from, to) ? "scale" : "raw"});
                    // Levels of 2 bits cut to 1 are told of.
                    const int code =
                        from == 2 && to == 1 ? outcome.exitCode & ~1 : outcome.exitCode;
                    ASSERT_EQ(0, code) << outcome.errors;

                    FileForm newForm;
                    const TiffImage result = ReadTiff(Path("out.tif"), newForm);
                    Wish wish;
                    wish.bits = to;
                    wish.scaleTones = OneSideBelow8(from, to);
                    EXPECT_EQ(newSeparate, newForm.separate);
                    EXPECT_EQ(form.compression, newForm.compression);
                    EXPECT_EQ(to, result.bits);
                    ASSERT_EQ(Expected(image, wish).samples, result.samples);
                }
            }
            ++number;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, ConvertFormats, ::testing::Range(1, 9),
                         ::testing::PrintToStringParamName());

class ConvertSamples : public ToolFixture
{};

TEST_F(ConvertSamples, LeavesAFileAsItIsWithoutOptions)
{
    for (const int bits : depths) {
        for (const bool separate : {false, true}) {
            FileForm form;
            form.separate = separate;
            const TiffImage image = RandomImage(33, 10, 3, bits, 5);
            WriteTiff(Path("in.tif"), image, form);
            ASSERT_TRUE(EndedSilently(Convert()));
            FileForm newForm;
            const TiffImage result = ReadTiff(Path("out.tif"), newForm);
            EXPECT_EQ(bits, result.bits);
            EXPECT_EQ(separate, newForm.separate);
            EXPECT_EQ(3, newForm.rowsPerStrip);
            EXPECT_EQ(image.samples, result.samples);
        }
    }
}

TEST_F(ConvertSamples, NarrowsAndWidensEverySampleValue)
{
    TiffImage words = BlankImage(256, 256, 1, 16);
    for (std::size_t i = 0; i < words.samples.size(); ++i)
        words.samples[i] = static_cast<std::uint16_t>(i);
    WriteTiff(Path("in.tif"), words, {});
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "8"})));
    EXPECT_EQ(Expected(words, {}).samples, Output().samples);

    std::filesystem::rename(Path("out.tif"), Path("in.tif"));
    const TiffImage bytes = Expected(words, {});
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "16"})));
    Wish wide;
    wide.bits = 16;
    EXPECT_EQ(Expected(bytes, wide).samples, Output().samples);
}

// The 8-bit tones at which a level ends and the next begins.
TEST_F(ConvertSamples, RoundsTonesEvenlyToLevels)
{
    TiffImage tones = BlankImage(256, 1, 1, 8);
    for (std::size_t i = 0; i < 256; ++i)
        tones.samples[i] = static_cast<std::uint16_t>(i);
    WriteTiff(Path("in.tif"), tones, {});

    ASSERT_TRUE(EndedSilently(Convert({"--bits", "1"})));
    const TiffImage bits = Output();
    EXPECT_EQ(0, bits.samples[127]);
    EXPECT_EQ(1, bits.samples[128]);
    EXPECT_EQ(128, std::count(bits.samples.begin(), bits.samples.end(), 1));

    ASSERT_TRUE(EndedSilently(Convert({"--bits", "2"})));
    const TiffImage levels = Output();
    for (const auto& [tone, level] :
         {std::pair{42, 0}, {43, 1}, {127, 1}, {128, 2}, {212, 2}, {213, 3}, {255, 3}})
        EXPECT_EQ(level, levels.samples[static_cast<std::size_t>(tone)]) << tone;
}

TEST_F(ConvertSamples, StretchesLevelsToTones)
{
    TiffImage levels = BlankImage(4, 1, 1, 2);
    levels.samples = {0, 1, 2, 3};
    WriteTiff(Path("in.tif"), levels, {});
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "8"})));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 85, 170, 255}), Output().samples);
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "16"})));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 21845, 43690, 65535}), Output().samples);
    for (const char* bits : {"8", "16"}) {
        ASSERT_TRUE(EndedSilently(Convert({"--bits", bits, "--tones", "raw"})));
        EXPECT_EQ((std::vector<std::uint16_t>{0, 1, 2, 3}), Output().samples);
    }
}

TEST_F(ConvertSamples, PacksWordsThatAreLevels)
{
    TiffImage levels = BlankImage(4, 1, 1, 16);
    levels.samples = {0, 1, 2, 3};
    WriteTiff(Path("in.tif"), levels, {});
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "2", "--tones", "raw"})));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 1, 2, 3}), Output().samples);
}

TEST_F(ConvertSamples, ScalesBetweenLowDepthsOnlyWhenAsked)
{
    const TiffImage levels = RandomImage(37, 3, 3, 2, 9);
    WriteTiff(Path("in.tif"), levels, {});
    Wish wish;
    wish.bits = 1;
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "1", "--tones", "scale"})));
    EXPECT_EQ(Expected(levels, wish).samples, Output().samples);

    wish.scaleTones = false;
    EXPECT_EQ(1, Convert({"--bits", "1"}).exitCode);
    EXPECT_EQ(Expected(levels, wish).samples, Output().samples);
}

TEST_F(ConvertSamples, WarnsWhenRawSamplesExceedTheLevels)
{
    for (const int from : {2, 8, 16}) {
        TiffImage image = BlankImage(9, 2, 3, from);
        // The highest sample that still fits, and one more, in the last pixel of the last row.
        const int highest = 1;
        for (const bool separate : {false, true}) {
            FileForm form;
            form.separate = separate;
            image.At(8, 1, 1) = static_cast<std::uint16_t>(highest);
            WriteTiff(Path("in.tif"), image, form);
            EXPECT_TRUE(EndedSilently(Convert({"--bits", "1", "--tones", "raw"}))) << from;

            image.At(8, 1, 1) = static_cast<std::uint16_t>(highest + 1);
            WriteTiff(Path("in.tif"), image, form);
            EXPECT_TRUE(Refused(Convert({"--bits", "1", "--tones", "raw"}), 1,
                                {"in.tif", "warning", "exceed", "--tones scale"}))
                << from;
            Wish wish;
            wish.bits = 1;
            wish.scaleTones = false;
            EXPECT_EQ(Expected(image, wish).samples, Output().samples);
            // A channel that is dropped doesn't matter.
            EXPECT_EQ(0, Convert({"--bits", "1", "--tones", "raw", "--channels", "0,2"}).exitCode);
        }
    }
}

TEST_F(ConvertSamples, ReadsTilesOfOtherShapesThanThePicture)
{
    for (const bool separate : {false, true}) {
        for (const int bits : depths) {
            FileForm form;
            form.separate = separate;
            form.tile = 32;
            const TiffImage image = RandomImage(100, 70, 3, bits, 11);
            WriteTiff(Path("in.tif"), image, form);
            ASSERT_TRUE(EndedSilently(Convert({"--layout", "planar"})));
            EXPECT_EQ(image.samples, Output().samples) << bits;
        }
    }
}

TEST_F(ConvertSamples, TakesEveryPage)
{
    const std::vector<TiffImage> pages = {RandomImage(20, 5, 1, 8, 1), RandomImage(9, 30, 4, 16, 2),
                                          RandomImage(33, 4, 3, 1, 3)};
    WriteTiffPages(Path("in.tif"), pages, {});
    ASSERT_TRUE(EndedSilently(Convert({"--layout", "planar", "--bits", "8"})));
    FileForm form;
    for (int page = 0; page < 3; ++page)
        EXPECT_EQ(Expected(pages[static_cast<std::size_t>(page)], {}).samples,
                  ReadTiff(Path("out.tif"), form, page).samples);
    EXPECT_ANY_THROW((void)ReadTiff(Path("out.tif"), form, 3));
}

TEST_F(ConvertSamples, ReadsBothByteOrdersAndBigFiles)
{
    for (const auto& [mode, loss] : {std::pair{"wl", ""},
                                     {"wb", "the byte order is not kept"},
                                     {"w8", "the form for more than 4 GB is not kept"}}) {
        FileForm form;
        form.mode = mode;
        const TiffImage image = RandomImage(19, 6, 3, 16, 21);
        WriteTiff(Path("in.tif"), image, form);
        const Outcome outcome = Convert({"--layout", "planar"});
        EXPECT_TRUE(*loss == 0 ? EndedSilently(outcome) : Refused(outcome, 0, {"warning: ", loss}));
        EXPECT_EQ(image.samples, Output().samples) << mode;
    }
}

TEST_F(ConvertSamples, ReplacesItsOwnInput)
{
    const TiffImage image = RandomImage(19, 6, 3, 8, 22);
    WriteTiff(Path("in.tif"), image, {});
    ASSERT_TRUE(EndedSilently(Run({"convert", Path("in.tif"), Path("in.tif"), "--mirror"})));
    std::filesystem::rename(Path("in.tif"), Path("out.tif"));
    Wish wish;
    wish.mirror = true;
    EXPECT_EQ(Expected(image, wish).samples, Output().samples);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
