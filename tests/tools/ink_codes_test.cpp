#include "tools/pelkraft/ink_codes.h"

#include "tests/tools/tiff_image.h"
#include "tests/tools/tool_folder.h"
#include "tools/pelkraft/failure.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

using TestSupport::FileForm;

// A page of this kind in a file of libtiff, and the codes that are read from it.
class InkCodesTest : public ::testing::Test, protected TestSupport::ToolFolder
{
protected:
    InkCodes Read(int photometric, int bits, std::optional<std::pair<int, int>> tag = {},
                  const InputOptions& options = {})
    {
        FileForm form;
        form.photometric = photometric;
        if (tag)
            form.setTags = [tag](TIFF* tiff) {
                TIFFSetField(tiff, TIFFTAG_DOTRANGE, tag->first, tag->second);
            };
        const int channels = photometric == PHOTOMETRIC_SEPARATED ? 4
                             : photometric == PHOTOMETRIC_RGB     ? 3
                                                                  : 1;
        WriteTiff(Path("page.tif"), TestSupport::BlankImage(3, 2, channels, bits), form);
        const TiffFile file = TiffFile::OpenForReading(Path("page.tif"));
        return ReadInkCodes(file, ReadPicture(file), options);
    }

    static InputOptions With(Polarity polarity, std::optional<DotRange> range = {})
    {
        InputOptions options;
        options.polarity = polarity;
        options.dotRange = range;
        return options;
    }
};

TEST_F(InkCodesTest, FollowThePhotometricKind)
{
    for (const int bits : {1, 2, 8, 16}) {
        const int highest = (1 << bits) - 1;
        EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, bits), (InkCodes{0, highest}));
        EXPECT_EQ(Read(PHOTOMETRIC_MINISWHITE, bits), (InkCodes{0, highest}));
        EXPECT_EQ(Read(PHOTOMETRIC_MINISBLACK, bits), (InkCodes{highest, 0}));
    }
    EXPECT_EQ(Read(PHOTOMETRIC_RGB, 8), (InkCodes{255, 0}));
}

TEST_F(InkCodesTest, FollowTheOptionsBeforeTheKind)
{
    EXPECT_EQ(Read(PHOTOMETRIC_MINISBLACK, 8, {}, With(Polarity::InkHigh)), (InkCodes{0, 255}));
    EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, 8, {}, With(Polarity::InkLow)), (InkCodes{255, 0}));
    EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, 16, {{4000, 60000}}, With(Polarity::Auto, {{5, 65000}})),
              (InkCodes{5, 65000}));
}

TEST_F(InkCodesTest, FollowTheRangeOfTheTagsInInksAlone)
{
    EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, 8, {{5, 250}}), (InkCodes{5, 250}));
    EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, 16, {{4000, 60000}}), (InkCodes{4000, 60000}));
    EXPECT_EQ(Read(PHOTOMETRIC_MINISWHITE, 8, {{5, 250}}), (InkCodes{0, 255}));
    // A reversed range is polarity enough.
    EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, 8, {{255, 0}}), (InkCodes{255, 0}));
    EXPECT_FALSE(Read(PHOTOMETRIC_SEPARATED, 8, {{250, 5}}).InkIsHigh());
}

TEST_F(InkCodesTest, CountARangeFromTheHighestSampleWhereInkIsLow)
{
    EXPECT_EQ(Read(PHOTOMETRIC_MINISBLACK, 8, {}, With(Polarity::Auto, {{5, 245}})),
              (InkCodes{250, 10}));
    EXPECT_EQ(Read(PHOTOMETRIC_SEPARATED, 16, {{1000, 60000}}, With(Polarity::InkLow)),
              (InkCodes{64535, 5535}));
}

TEST_F(InkCodesTest, OfARangeWithoutSenseAreRefused)
{
    const auto refusal = [&](int bits, std::optional<std::pair<int, int>> tag,
                             std::optional<DotRange> range) {
        try {
            Read(PHOTOMETRIC_SEPARATED, bits, tag, With(Polarity::Auto, range));
            return std::pair{ExitCode::Done, std::string()};
        } catch (const Failure& failure) {
            return std::pair{failure.Code(), std::string(failure.what())};
        }
    };
    const auto tagged = refusal(8, {{7, 7}}, {});
    EXPECT_EQ(tagged.first, ExitCode::BadInput);
    EXPECT_NE(tagged.second.find("dot range 7,7"), std::string::npos);
    EXPECT_EQ(refusal(8, {{0, 256}}, {}).first, ExitCode::BadInput);
    EXPECT_EQ(refusal(8, {}, {{0, 256}}).first, ExitCode::Usage);
    EXPECT_EQ(refusal(2, {}, {{4, 0}}).first, ExitCode::Usage);
    EXPECT_EQ(refusal(8, {{7, 7}}, {{0, 255}}).first, ExitCode::Done);
}

} // namespace
} // namespace zvk::Pelkraft::Client
