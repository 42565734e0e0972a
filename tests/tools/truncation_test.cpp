#include "tests/tools/convert_failures.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

class Truncation : public ConvertFailures
{
protected:
    // Cuts the input and demands the line that says so.
    void ExpectTruncated(const std::string& whole, std::size_t size)
    {
        WriteBytes(Path("in.tif"), whole.substr(0, size));
        EXPECT_TRUE(Refused(
            Convert(), 3,
            {"in.tif: ", "is truncated: ",
             ", and the file ends after " + std::to_string(size) + "; get a whole copy of it"}))
            << size << " of " << whole.size();
        EXPECT_TRUE(LeftNothing());
    }

    [[nodiscard]] std::string Said(const std::string& bytes)
    {
        WriteBytes(Path("in.tif"), bytes);
        const Outcome outcome = Convert();
        EXPECT_EQ(3, outcome.exitCode);
        return outcome.errors.substr(("pelkraft: " + Path("in.tif") + ": ").size());
    }
};

TEST_F(Truncation, IsCalledByItsName)
{
    for (const bool big : {false, true}) {
        for (const bool separate : {false, true}) {
            FileForm form;
            form.mode = big ? "w8" : "w";
            form.separate = separate;
            form.compression = separate ? COMPRESSION_LZW : COMPRESSION_NONE;
            MakeInput(8, form);
            const std::string whole = Bytes(Path("in.tif"));
            for (std::size_t size = 4; size < whole.size(); size += whole.size() / 40)
                ExpectTruncated(whole, size);
        }
    }
}

TEST_F(Truncation, NamesTheBytesThatAreMissing)
{
    // A directory of one entry whose eight shorts lie at byte 26.
    const std::string header("II*\0\x08\0\0\0", 8);
    const std::string entry("\x02\x01\x03\0\x08\0\0\0\x1A\0\0\0", 12);
    const std::string directory = (std::string("\x01\0", 2) + entry).append(4, '\0');
    const std::string end = "; get a whole copy of it\n";
    EXPECT_EQ("is truncated: a header takes 8 bytes, and the file ends after 6" + end,
              Said(header.substr(0, 6)));
    EXPECT_EQ("is truncated: the directory of page 1 begins at byte 8, and the file ends after 9" +
                  end,
              Said(header + '\1'));
    EXPECT_EQ("is truncated: the directory of page 1 has 1 entries from byte 10 on, and the file "
              "ends after 20" +
                  end,
              Said((header + directory).substr(0, 20)));
    EXPECT_EQ("is truncated: the values of tag 258 of page 1 reach up to byte 42, and the file "
              "ends after 26" +
                  end,
              Said(header + directory));
    // The same in the other order of bytes.
    const std::string motorola("MM\0*\0\0\0\x08\0\x01\x01\x02\0\x03\0\0\0\x08\0\0\0\x1A\0\0\0\0",
                               26);
    EXPECT_EQ("is truncated: the values of tag 258 of page 1 reach up to byte 42, and the file "
              "ends after 26" +
                  end,
              Said(motorola));
}

TEST_F(Truncation, NamesThePageWhoseDirectoryIsGone)
{
    WriteTiffPages(Path("in.tif"), {RandomImage(40, 30, 3, 8, 8), RandomImage(40, 30, 3, 8, 8)},
                   {});
    const std::string whole = Bytes(Path("in.tif"));
    TIFF* tiff = TIFFOpen(Path("in.tif").c_str(), "r");
    TIFFSetDirectory(tiff, 1);
    const auto second = static_cast<std::size_t>(TIFFCurrentDirOffset(tiff));
    TIFFClose(tiff);
    ExpectTruncated(whole, second + 20);
    EXPECT_NE(std::string::npos,
              Said(whole.substr(0, second - 10))
                  .find("the directory of page 2 begins at byte " + std::to_string(second)));
    EXPECT_NE(std::string::npos,
              Said(whole.substr(0, second + 20)).find("the directory of page 2 has "));
}

TEST_F(Truncation, IsNotTheNameOfOtherFiles)
{
    EXPECT_EQ("is not a TIFF file, since it is empty; supported are TIFF and BigTIFF\n", Said(""));
    EXPECT_EQ("is not a TIFF file but a PNG file; supported are TIFF and BigTIFF\n",
              Said("\x89PNG\r\n\x1A\n"));
    EXPECT_EQ("is not a TIFF file but a JPEG file; supported are TIFF and BigTIFF\n",
              Said("\xFF\xD8\xFF\xE0"));
    EXPECT_EQ("is not a TIFF file but a PDF file; supported are TIFF and BigTIFF\n",
              Said("%PDF-1.7\n"));
    EXPECT_EQ("is not a TIFF file, since it begins with the bytes 0A FF instead of 49 49 or 4D "
              "4D; supported are TIFF and BigTIFF\n",
              Said("\n\xFF"));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
