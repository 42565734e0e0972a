#include "tests/support/random_bytes.h"
#include "tests/tools/convert_failures.h"

#include <chrono>
#include <cstring>
#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST_F(ConvertFailures, NameAMissingInput)
{
    EXPECT_TRUE(Refused(Convert(), 6, {"in.tif: cannot be read: No such file"}));
    EXPECT_TRUE(
        Refused(Run({"convert", folder, Path("out.tif")}), 6, {folder, "not a regular file"}));
    EXPECT_TRUE(Files().empty());
}

TEST_F(ConvertFailures, NameAnOutputThatCantBe)
{
    MakeInput();
    for (const std::string& target :
         {Path("in.tif") + "/out.tif", Path("missing/out.tif"), folder, folder + "/"}) {
        EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), target}), 6,
                            {target + ": cannot be written: "}));
    }
    EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), Path("missing/out.tif")}), 6,
                        {"there is no folder " + Path("missing") + "; make it first"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(ConvertFailures, NameWrongUsage)
{
    MakeInput();
    EXPECT_TRUE(Refused(Convert({"--bits", "4"}), 2, {"--bits can't be \"4\"", "1, 2, 8 and 16"}));
    EXPECT_TRUE(Refused(Convert({"--layout", "diagonal"}), 2, {"interleaved", "planar"}));
    EXPECT_TRUE(Refused(Convert({"--repeat", "3"}), 2, {"--repeat"}));
    EXPECT_TRUE(Refused(Convert({"--threads", "0"}), 2, {"--threads"}));
    EXPECT_TRUE(Refused(Convert({"--tones", "sepia"}), 2, {"scale", "raw"}));
    EXPECT_TRUE(Refused(Convert({"--sideways"}), 2, {"--sideways"}));
    EXPECT_TRUE(Refused(Convert({"--channels", "0,3"}), 2, {"in.tif", "\"3\"", "0 to 2"}));
    EXPECT_TRUE(Refused(Convert({"--channels", "Cyan"}), 2, {"\"Cyan\""}));
    EXPECT_TRUE(Refused(Convert({"--channels", "0,,1"}), 2, {"\"\""}));
    EXPECT_TRUE(Refused(Convert({"--channels", "99999999999999999999"}), 2, {"0 to 2"}));
    EXPECT_TRUE(Refused(Run({}), 2, {"--help"}));
    EXPECT_TRUE(Refused(Run({"paint"}), 2, {"--help"}));
    EXPECT_TRUE(Refused(Run({"convert", Path("in.tif")}), 2, {"OUT.tif"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(ConvertFailures, NameSamplesThatAreNotServed)
{
    FileForm form;
    WriteTiff(Path("in.tif"), RandomImage(10, 3, 1, 4, 1), form);
    EXPECT_TRUE(Refused(Convert(), 5, {"in.tif", "4 bits", "1, 2, 8 and 16"}));
    for (const int sampleFormat : {SAMPLEFORMAT_INT, SAMPLEFORMAT_IEEEFP}) {
        form.setTags = [=](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, sampleFormat); };
        WriteTiff(Path("in.tif"), RandomImage(10, 3, 1, 16, 1), form);
        EXPECT_TRUE(Refused(Convert(), 5, {"in.tif", "unsigned integers"}));
    }
    EXPECT_TRUE(LeftNothing());
}

TEST_F(ConvertFailures, NameRowsThatAreTooLong)
{
    // 300 MB of zeros compress to little: 8 channels of 16 bits repeated by 4 are beyond 2^31.
    FileForm form;
    form.compression = COMPRESSION_ADOBE_DEFLATE;
    WriteTiff(Path("in.tif"), BlankImage(35000000, 1, 4, 1), form);
    EXPECT_TRUE(Refused(Convert({"--bits", "16", "--channels", "0,1,2,3,0,1,2,3", "--repeat", "4"}),
                        5, {"in.tif", "2147483647 bytes"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(ConvertFailures, MeetEveryTruncationWithoutACrash)
{
    for (const bool separate : {false, true}) {
        for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW}) {
            FileForm form;
            form.separate = separate;
            form.compression = compression;
            form.tile = separate ? 16 : 0;
            MakeInput(8, form);
            const std::string whole = Bytes(Path("in.tif"));
            ASSERT_EQ(0, Convert().exitCode);
            std::filesystem::remove(Path("out.tif"));
            for (std::size_t size = 0; size < whole.size(); size += whole.size() / 16 + 1) {
                WriteBytes(Path("in.tif"), whole.substr(0, size));
                EXPECT_TRUE(Refused(Convert(), 3, {"in.tif"})) << size << " of " << whole.size();
                EXPECT_TRUE(LeftNothing());
            }
        }
    }
}

// Three strips after their directory, which stays whole when the end of the file is lost.
void WriteDirectoryFirst(const std::string& path)
{
    TIFF* tiff = TIFFOpen(path.c_str(), "w");
    ASSERT_NE(nullptr, tiff);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 40);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 30);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 10);
    TIFFDeferStrileArrayWriting(tiff);
    TIFFWriteCheck(tiff, 0, "test");
    TIFFWriteDirectory(tiff);
    TIFFSetDirectory(tiff, 0);
    std::vector<unsigned char> strip(1200, 7);
    for (std::uint32_t i = 0; i < 3; ++i)
        TIFFWriteEncodedStrip(tiff, i, strip.data(), 1200);
    TIFFForceStrileArrayWriting(tiff);
    TIFFClose(tiff);
}

TEST_F(ConvertFailures, TellWhichStripIsMissing)
{
    WriteDirectoryFirst(Path("in.tif"));
    ASSERT_EQ(0, Convert().exitCode);
    std::filesystem::remove(Path("out.tif"));
    const std::uintmax_t whole = std::filesystem::file_size(Path("in.tif"));
    for (const auto& [lost, strip] : {std::pair(100U, "3"), std::pair(1300U, "2")}) {
        std::filesystem::resize_file(Path("in.tif"), whole - lost);
        EXPECT_TRUE(Refused(Convert(), 3,
                            {std::string("in.tif: is truncated: its strip ") + strip +
                                 " of 3 has 1200 bytes from byte ",
                             "and the file ends after "}));
        EXPECT_TRUE(LeftNothing());
    }
}

TEST_F(ConvertFailures, TellWhichRowCantBeDecoded)
{
    struct Damage
    {
        FileForm form;
        std::uint32_t block;
        std::string row;
    };
    FileForm strips;
    strips.compression = COMPRESSION_ADOBE_DEFLATE;
    FileForm planes = strips;
    planes.separate = true;
    FileForm tiles = strips;
    tiles.tile = 16;
    // Three strips a plane, and three tiles side by side.
    for (const auto& [form, block, row] : {Damage{strips, 1, "row 4"}, Damage{planes, 1, "row 4"},
                                           Damage{planes, 8, "row 7"}, Damage{tiles, 2, "row 1"}}) {
        WriteTiff(Path("in.tif"), RandomImage(40, 9, 3, 8, 5), form);
        TIFF* tiff = TIFFOpen(Path("in.tif").c_str(), "r");
        const auto start = static_cast<std::size_t>(TIFFGetStrileOffset(tiff, block));
        const auto size = static_cast<std::size_t>(TIFFGetStrileByteCount(tiff, block));
        TIFFClose(tiff);
        std::string bytes = Bytes(Path("in.tif"));
        bytes.replace(start, size, std::string(size, '\xFF'));
        WriteBytes(Path("in.tif"), bytes);
        EXPECT_TRUE(Refused(Convert(), 3, {"in.tif", row, "damaged"}));
        EXPECT_TRUE(LeftNothing());
    }
}

// Whatever a damaged file says, the program ends by itself and leaves a whole file or none.
TEST_F(ConvertFailures, MeetDamagedFilesWithoutACrash)
{
    int refused = 0;
    for (std::uint32_t seed = 0; seed < 240; ++seed) {
        FileForm form;
        form.separate = seed % 2 == 0;
        form.tile = seed % 3 == 0 ? 16 : 0;
        form.compression = seed % 4 == 0 ? COMPRESSION_LZW : COMPRESSION_NONE;
        WriteTiff(Path("in.tif"), RandomImage(17, 9, 3, seed % 5 == 0 ? 1 : 8, seed), form);
        std::string bytes = Bytes(Path("in.tif"));
        std::uint32_t directory = 0;
        std::memcpy(&directory, bytes.data() + 4, 4);
        const auto random = RandomBytes(12, seed);
        for (std::size_t i = 0; i < 3; ++i) {
            const auto step = static_cast<std::size_t>(random[4 * i] | random[4 * i + 1] << 8);
            const std::size_t where = directory + step % (bytes.size() - directory);
            bytes[where] = static_cast<char>(random[4 * i + 2]);
        }
        WriteBytes(Path("in.tif"), bytes);
        const Outcome outcome = Convert({"--bits", "8", "--layout", "planar"});
        SCOPED_TRACE(::testing::Message() << "seed " << seed << ": " << outcome.errors);
        ASSERT_EQ(0, outcome.signalNumber);
        ASSERT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 3 || outcome.exitCode == 5);
        ASSERT_EQ(outcome.exitCode == 0, std::filesystem::exists(Path("out.tif")));
        ASSERT_LE(Files().size(), 2U);
        refused += outcome.exitCode != 0 ? 1 : 0;
        std::filesystem::remove(Path("out.tif"));
    }
    EXPECT_GT(refused, 20);
}

TEST_F(ConvertFailures, DontBelieveAbsurdSizes)
{
    struct Claim
    {
        std::uint32_t tag;
        std::uint32_t value;
        int compression;
    };
    for (const Claim& claim : {Claim{TIFFTAG_IMAGEWIDTH, 500000000, COMPRESSION_LZW},
                               Claim{TIFFTAG_IMAGEWIDTH, 500000000, COMPRESSION_NONE},
                               Claim{TIFFTAG_IMAGEWIDTH, 4000000000U, COMPRESSION_LZW},
                               Claim{TIFFTAG_TILEWIDTH, 1600000000, COMPRESSION_LZW},
                               Claim{TIFFTAG_TILELENGTH, 1600000000, COMPRESSION_NONE}}) {
        FileForm form;
        form.compression = claim.compression;
        form.tile = claim.tag == TIFFTAG_IMAGEWIDTH ? 0 : 16;
        MakeInput(8, form);
        // The entry of the directory with this tag gets the new value as a LONG.
        std::string bytes = Bytes(Path("in.tif"));
        std::uint32_t directory = 0;
        std::uint16_t count = 0;
        std::memcpy(&directory, bytes.data() + 4, 4);
        std::memcpy(&count, bytes.data() + directory, 2);
        bool found = false;
        for (std::uint32_t i = 0; i < count; ++i) {
            char* entry = bytes.data() + directory + 2 + std::size_t{12} * i;
            std::uint16_t tag = 0;
            std::memcpy(&tag, entry, 2);
            if (tag != claim.tag)
                continue;
            const std::uint16_t longType = 4;
            std::memcpy(entry + 2, &longType, 2);
            std::memcpy(entry + 8, &claim.value, 4);
            found = true;
        }
        ASSERT_TRUE(found);
        WriteBytes(Path("in.tif"), bytes);
        const Outcome outcome = Convert({"--threads", "1"}, 100UL << 20);
        EXPECT_TRUE(outcome.exitCode == 3 || outcome.exitCode == 5) << outcome.exitCode;
        EXPECT_TRUE(Refused(outcome, outcome.exitCode, {"in.tif"}));
        EXPECT_TRUE(LeftNothing());
    }
}

TEST_F(ConvertFailures, LeaveNothingWhenInterrupted)
{
    FileForm form;
    form.compression = COMPRESSION_ADOBE_DEFLATE;
    WriteTiff(Path("in.tif"), RandomImage(2000, 2000, 4, 8, 8), form);
    for (const int number : Interrupts()) {
        Outcome outcome;
        outcome.exitCode = 0;
        // On a busy machine the program may be done before the signal: then once more.
        for (int attempt = 0; attempt < 20 && outcome.exitCode == 0; ++attempt) {
            WriteBytes(Path("out.tif"), "old");
            Subprocess tool({PELKRAFT_TOOL, "convert", Path("in.tif"), Path("out.tif")},
                            folder + "/streams");
            // The temporary file shows that the work is under way.
            while (Files().size() < 3 && !tool.HasEnded())
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            tool.Interrupt(number);
            outcome = tool.Wait();
        }
        EXPECT_TRUE(Refused(outcome, 130, {"out.tif", "interrupted", "nothing was written"}));
        EXPECT_EQ("old", Bytes(Path("out.tif")));
        EXPECT_EQ((std::vector<std::string>{"in.tif", "out.tif"}), Files());
    }
}

TEST_F(ConvertFailures, KeepATerminalsControlCharactersOut)
{
    const std::string name = folder + "/a\033[31m\nb.tif";
    EXPECT_TRUE(Refused(Run({"convert", name, Path("out.tif")}), 6, {"a?[31m?b.tif"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
