#include "tests/tools/tool_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

// A file of five pages, and pages of it.
class ConvertPages : public ToolFixture
{
protected:
    ConvertPages()
    {
        for (int page = 0; page < 5; ++page)
            pages.push_back(RandomImage(9 + page, 4, 1, 8, static_cast<std::uint32_t>(page)));
        WriteTiffPages(Path("in.tif"), pages, {});
    }

    [[nodiscard]] int CountPages() const
    {
        TIFF* const tiff = TIFFOpen(Path("out.tif").c_str(), "r");
        const auto count = static_cast<int>(TIFFNumberOfDirectories(tiff));
        TIFFClose(tiff);
        return count;
    }

    // The numbers of the pages of in.tif that out.tif holds, counted from 1.
    [[nodiscard]] std::vector<int> Written() const
    {
        std::vector<int> numbers;
        for (int page = 0; page < CountPages(); ++page) {
            FileForm form;
            const TiffImage image = ReadTiff(Path("out.tif"), form, page);
            for (std::size_t i = 0; i < pages.size(); ++i) {
                if (image.width == pages[i].width && image.samples == pages[i].samples)
                    numbers.push_back(static_cast<int>(i) + 1);
            }
        }
        return numbers;
    }

    std::vector<TiffImage> pages;
};

TEST_F(ConvertPages, AreTheChosenOnesInTheOrderOfTheFile)
{
    ASSERT_TRUE(EndedSilently(Convert()));
    EXPECT_EQ(Written(), (std::vector<int>{1, 2, 3, 4, 5}));
    ASSERT_TRUE(EndedSilently(Convert({"--page", "4-5,2"})));
    EXPECT_EQ(Written(), (std::vector<int>{2, 4, 5}));
    ASSERT_TRUE(EndedSilently(Convert({"--page=1"})));
    EXPECT_EQ(Written(), std::vector<int>{1});
}

TEST_F(ConvertPages, ThatTheFileLacksAreRefusedBeforeAFileAppears)
{
    EXPECT_TRUE(Refused(Convert({"--page", "2,6"}), 2, {"in.tif", "no page 6", "last one is 5"}));
    EXPECT_TRUE(Refused(Convert({"--page", "0"}), 2, {"--page 0 names no pages"}));
    EXPECT_EQ(Files(), std::vector<std::string>{"in.tif"});
}

// Another page of the file may be anything.
TEST_F(ConvertPages, AreReadAlone)
{
    pages[1] = RandomImage(7, 3, 1, 4, 2);
    WriteTiffPages(Path("in.tif"), pages, {});
    EXPECT_TRUE(Refused(Convert(), 5, {"samples of 4 bits"}));
    ASSERT_TRUE(EndedSilently(Convert({"--page", "1,3-5"})));
    EXPECT_EQ(Written(), (std::vector<int>{1, 3, 4, 5}));
}

TEST_F(ConvertPages, AreCompressedAsToldWhateverTheOldFileWas)
{
    const auto compression = [&] {
        TIFF* const tiff = TIFFOpen(Path("out.tif").c_str(), "r");
        std::uint16_t scheme = 0;
        TIFFGetField(tiff, TIFFTAG_COMPRESSION, &scheme);
        TIFFClose(tiff);
        return int{scheme};
    };
    FileForm form;
    for (const int old : {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW}) {
        form.compression = old;
        WriteTiff(Path("in.tif"), pages[0], form);
        for (const auto& [word, scheme] : {std::pair{"none", COMPRESSION_NONE},
                                           {"lzw", COMPRESSION_LZW},
                                           {"zip", COMPRESSION_ADOBE_DEFLATE}}) {
            ASSERT_TRUE(EndedSilently(Convert({"--compress", word})));
            EXPECT_EQ(compression(), scheme);
            EXPECT_EQ(Output().samples, pages[0].samples);
        }
        ASSERT_TRUE(EndedSilently(Convert()));
        EXPECT_EQ(compression(), old);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
