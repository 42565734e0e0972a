#include "tests/tools/tool_fixture.h"

#include "tools/pelkraft/strip_writer.h"

#include <fcntl.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Runs lines of a shell in the folder; $P is the program.
class Pipes : public ToolFixture
{
protected:
    [[nodiscard]] Outcome Shell(const std::string& line) const
    {
        const std::string script =
            "set -o pipefail; cd '" + folder + "' || exit 99; P='" PELKRAFT_TOOL "'\n" + line;
        return Subprocess({"bash", "-c", script}, Streams()).Wait();
    }

    void WriteInput(const std::vector<TiffImage>& images, const FileForm& form = {}) const
    {
        WriteTiffPages(Path("in.tif"), images, form);
    }

    // The samples of all pages of a file.
    [[nodiscard]] std::vector<TiffImage> Pages(const std::string& name) const
    {
        std::vector<TiffImage> pages;
        TIFF* const tiff = TIFFOpen(Path(name).c_str(), "r");
        const int count = tiff != nullptr ? static_cast<int>(TIFFNumberOfDirectories(tiff)) : 0;
        if (tiff != nullptr)
            TIFFClose(tiff);
        for (int page = 0; page < count; ++page) {
            FileForm form;
            pages.push_back(ReadTiff(Path(name), form, page));
        }
        return pages;
    }

    [[nodiscard]] ::testing::AssertionResult Holds(const std::string& name,
                                                   const std::vector<TiffImage>& images) const
    {
        const std::vector<TiffImage> pages = Pages(name);
        if (pages.size() != images.size())
            return ::testing::AssertionFailure() << name << " has " << pages.size() << " pages";
        for (std::size_t i = 0; i < pages.size(); ++i) {
            if (pages[i].width != images[i].width || pages[i].bits != images[i].bits ||
                pages[i].channels != images[i].channels || pages[i].samples != images[i].samples)
                return ::testing::AssertionFailure() << name << " differs on page " << i + 1;
        }
        return ::testing::AssertionSuccess();
    }
};

TEST_F(Pipes, CarryEveryKindOfSamples)
{
    std::uint32_t seed = 0;
    for (const int bits : {1, 2, 8, 16}) {
        for (const int channels : {1, 3}) {
            for (const char* const layout : {"interleaved", "planar"}) {
                SCOPED_TRACE(std::to_string(channels) + " x " + std::to_string(bits) + layout);
                const TiffImage image = RandomImage(61, 37, channels, bits, ++seed);
                WriteInput({image});
                const Outcome outcome = Shell(std::string("cat in.tif | $P convert - - --layout ") +
                                              layout + " | cat | $P convert - - | cat > out.tif");
                EXPECT_TRUE(EndedSilently(outcome));
                EXPECT_TRUE(Holds("out.tif", {image}));
            }
        }
    }
}

TEST_F(Pipes, CarryOtherByteOrdersBitOrdersAndForms)
{
    const TiffImage words = RandomImage(61, 37, 3, 16, 1);
    for (const char* const mode : {"wb", "wl", "w8", "wb8"}) {
        FileForm form;
        form.mode = mode;
        WriteInput({words}, form);
        EXPECT_EQ(0, Shell("cat in.tif | $P convert - - | cat > out.tif").exitCode);
        EXPECT_TRUE(Holds("out.tif", {words})) << mode;
    }
    const TiffImage bits = RandomImage(61, 37, 1, 1, 2);
    FileForm form;
    form.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_LSB2MSB); };
    WriteInput({bits}, form);
    EXPECT_TRUE(EndedSilently(Shell("$P convert in.tif - | cat > out.tif")));
    EXPECT_TRUE(Holds("out.tif", {bits}));
    EXPECT_TRUE(EndedSilently(Convert()));
    EXPECT_EQ(Output().samples, bits.samples);
}

TEST_F(Pipes, CarryPagesOfOddSizes)
{
    const std::vector<TiffImage> pages = {RandomImage(7, 5, 1, 8, 1), RandomImage(9, 3, 3, 8, 2),
                                          RandomImage(1, 1, 1, 1, 3),
                                          RandomImage(33, 21, 1, 16, 4)};
    FileForm form;
    form.mode = "wb";
    WriteInput(pages, form);
    EXPECT_EQ(0, Shell("cat in.tif | $P convert - - | cat > out.tif").exitCode);
    EXPECT_TRUE(Holds("out.tif", pages));
    EXPECT_EQ(0, Shell("cat in.tif | $P convert - - --page 2-3 | cat > out.tif").exitCode);
    EXPECT_TRUE(Holds("out.tif", {pages[1], pages[2]}));
}

TEST_F(Pipes, ServeOtherVerbs)
{
    const std::vector<TiffImage> pages = {RandomImage(7, 5, 3, 8, 1), RandomImage(9, 3, 3, 8, 2)};
    FileForm form;
    form.photometric = PHOTOMETRIC_SEPARATED;
    form.setTags = [](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
        TIFFSetField(tiff, TIFFTAG_INKNAMES, 16, "Cyan\0Black\0Spot");
        TIFFSetField(tiff, TIFFTAG_NUMBEROFINKS, 3);
    };
    WriteInput(pages, form);
    EXPECT_EQ(0, Shell("cat in.tif | $P split - plate && "
                       "$P join - plate*.tif | cat > out.tif")
                     .exitCode);
    EXPECT_EQ(2U, Pages("out.tif").size());
    WriteBytes(Path("pattern.txt"), "DotWeavePattern VERSION 2\nBEGIN_OUT_INKS Ink END_OUT_INKS\n"
                                    "BEGIN_IN_COLORS Ink END_IN_COLORS\nBEGIN_IN_COLOR Ink\n"
                                    "BEGIN_INKS Ink END_INKS\nBEGIN_VALUES 1 1 0-255\n"
                                    "END_VALUES\nEND_IN_COLOR\n");
    const std::vector<TiffImage> plates = {RandomImage(7, 5, 1, 8, 1), RandomImage(9, 3, 1, 8, 2)};
    WriteInput(plates);
    EXPECT_EQ(0, Shell("cat in.tif | $P simulate pattern.txt - - | cat > out.tif").exitCode);
    std::vector<TiffImage> dots = Pages("out.tif");
    ASSERT_EQ(0, Shell("$P simulate pattern.txt in.tif out.tif").exitCode);
    EXPECT_TRUE(Holds("out.tif", dots));
    EXPECT_EQ(2U, dots.size());
    EXPECT_EQ(0, Shell("cat in.tif | $P info - && cat in.tif | $P preview - seen.png").exitCode);
    for (const char* verb : {"info", "coverage"})
        EXPECT_TRUE(Shell("cat in.tif | $P " + std::string(verb) + " -")
                        .output.starts_with("standard input"))
            << verb;
}

TEST_F(Pipes, SayOnceThatAWindowIsCut)
{
    WriteInput({RandomImage(7, 5, 1, 8, 1), RandomImage(7, 5, 1, 8, 2)});
    const Outcome outcome = Shell("$P coverage in.tif --page all --window 6px -q; "
                                  "$P coverage in.tif --page all --window 6px");
    EXPECT_NE(std::string::npos,
              outcome.errors.find(
                  "in.tif: warning: page 1: --window reaches beyond the page, and is cut to 6 x 5 "
                  "pixels\n"))
        << outcome.errors;
    EXPECT_EQ(std::string::npos, outcome.errors.find("page 2")) << outcome.errors;
    EXPECT_EQ("", Shell("$P coverage in.tif --page all --window 5px").errors);
}

// A reader that can't go back has met a page's directory when its samples come.
TEST_F(Pipes, GetEachDirectoryBeforeItsStrips)
{
    const std::vector<TiffImage> pages = {RandomImage(70, 50, 4, 8, 1),
                                          RandomImage(90, 30, 4, 8, 2)};
    WriteInput(pages);
    ASSERT_TRUE(EndedSilently(Shell("$P convert in.tif - --layout planar > out.tif")));
    TIFF* const tiff = TIFFOpen(Path("out.tif").c_str(), "r");
    ASSERT_NE(nullptr, tiff);
    std::uint64_t last = 0;
    do {
        const std::uint64_t directory = TIFFCurrentDirOffset(tiff);
        EXPECT_GT(directory, last);
        last = directory;
        const std::uint32_t perPlane = TIFFNumberOfStrips(tiff) / 4;
        EXPECT_GT(perPlane, 1U);
        // The strips of all planes for the first rows, then those for the next.
        for (std::uint32_t i = 0; i < 4 * perPlane; ++i) {
            const std::uint32_t strip = i % 4 * perPlane + i / 4;
            EXPECT_GT(TIFFGetStrileOffset(tiff, strip), last);
            last = TIFFGetStrileOffset(tiff, strip);
        }
    } while (TIFFReadDirectory(tiff) == 1);
    TIFFClose(tiff);
    EXPECT_TRUE(Holds("out.tif", pages));
}

TEST_F(Pipes, MayBeNamedOrRedirected)
{
    const TiffImage image = RandomImage(61, 37, 3, 8, 1);
    WriteInput({image});
    for (const char* const line :
         {"$P convert - out.tif < in.tif", "cat in.tif | $P convert /dev/stdin out.tif",
          "mkfifo pipe; cat in.tif > pipe & $P convert pipe out.tif",
          "(sleep 0.3; cat in.tif) | $P convert - out.tif",
          "(echo; cat in.tif) > more; (head -c1 > /dev/null; $P convert - out.tif) < more"}) {
        std::filesystem::remove(Path("out.tif"));
        EXPECT_EQ(0, Shell(std::string("dd bs=1 count=0 2>/dev/null; ") + line).exitCode) << line;
        EXPECT_TRUE(Holds("out.tif", {image})) << line;
    }
}

TEST_F(Pipes, LeaveAFileNamedByAHyphenAlone)
{
    const TiffImage image = RandomImage(61, 37, 3, 8, 1);
    WriteTiff(Path("-"), image, {});
    ASSERT_TRUE(EndedSilently(Shell("$P convert ./- out.tif && $P convert out.tif ./-")));
    EXPECT_TRUE(Holds("out.tif", {image}));
    EXPECT_EQ(Files(), (std::vector<std::string>{"-", "out.tif"}));
}

TEST_F(Pipes, ThatNobodyReadsAnyMoreEndTheProgram)
{
    WriteInput({RandomImage(600, 500, 4, 8, 1)});
    const Outcome outcome =
        Shell("$P convert in.tif - | head -c 100 > /dev/null; exit ${PIPESTATUS[0]}");
    EXPECT_TRUE(Refused(
        outcome, 6, {"standard output: cannot be written: whoever read the pipe has closed it"}));
    EXPECT_EQ(Files(), std::vector<std::string>{"in.tif"});
}

TEST_F(Pipes, AreKeptUpToALimitAlone)
{
    WriteInput({RandomImage(100, 100, 1, 8, 1)});
    const auto size = Bytes(Path("in.tif")).size();
    const auto run = [&](std::size_t limit) {
        return Shell("cat in.tif | $P convert - out.tif --spool-limit " + std::to_string(limit));
    };
    EXPECT_TRUE(Refused(run(size - 1), 5, {"standard input: gives more than", "--spool-limit"}));
    EXPECT_EQ(Files(), std::vector<std::string>{"in.tif"});
    EXPECT_TRUE(EndedSilently(run(size)));
}

TEST_F(Pipes, AreKeptBesideTheNewFileOrAmongTemporaryOnes)
{
    const TiffImage image = RandomImage(61, 37, 3, 8, 1);
    WriteInput({image});
    EXPECT_TRUE(EndedSilently(Shell("export TMPDIR=/no/such; cat in.tif | $P convert - out.tif")));
    EXPECT_TRUE(Holds("out.tif", {image}));
    EXPECT_TRUE(Refused(Shell("export TMPDIR=/no/such; cat in.tif | $P convert - - > none"), 6,
                        {"no file can be made to keep what comes through the pipe"}));
    EXPECT_EQ(Bytes(Path("none")), "");
    EXPECT_TRUE(EndedSilently(Shell("mkdir tmp; export TMPDIR=tmp; cat in.tif | $P convert - - | "
                                    "cat > out.tif; rmdir tmp")));
    EXPECT_TRUE(Holds("out.tif", {image}));
}

TEST_F(Pipes, TakeTurnedPicturesThatAreKeptAmongTemporaryFiles)
{
    FileForm form;
    form.photometric = PHOTOMETRIC_MINISWHITE;
    form.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, 6); };
    WriteInput({RandomImage(1700, 1800, 1, 8, 1)}, form);
    const std::string preview = "$P preview in.tif - --crop 0,0,1700,1800 > ";
    EXPECT_TRUE(Refused(Shell("export TMPDIR=/no/such; " + preview + "none"), 6,
                        {"cannot be written: no file can be made to keep its rows"}));
    EXPECT_TRUE(EndedSilently(Shell("mkdir tmp; TMPDIR=tmp " + preview + "out.png; rmdir tmp")));
    EXPECT_TRUE(EndedSilently(Shell("$P preview in.tif seen.png --crop 0,0,1700,1800; "
                                    "cmp seen.png out.png")));
}

TEST_F(Pipes, TakeNothingCompressed)
{
    FileForm form;
    form.compression = COMPRESSION_LZW;
    const TiffImage image = RandomImage(61, 37, 3, 8, 1);
    WriteInput({image}, form);
    for (const char* const scheme : {"lzw", "zip"}) {
        const Outcome outcome =
            Shell(std::string("$P convert in.tif - > none --compress ") + scheme);
        EXPECT_TRUE(Refused(outcome, 2, {"standard output: is a pipe, which takes no --compress"}));
        EXPECT_EQ(Bytes(Path("none")), "");
        EXPECT_EQ(
            2, Shell(std::string("$P convert in.tif - --dry-run --compress ") + scheme).exitCode);
    }
    EXPECT_TRUE(EndedSilently(Shell("$P convert in.tif - --compress none > out.tif")));
    EXPECT_TRUE(Holds("out.tif", {image}));
    EXPECT_TRUE(EndedSilently(Shell("$P convert in.tif - > out.tif")));
    EXPECT_TRUE(Holds("out.tif", {image}));
}

TEST_F(Pipes, CarryNoWords)
{
    const TiffImage image = RandomImage(61, 37, 3, 8, 1);
    WriteInput({image});
    for (const char* const options : {"--explain", "--explain --json"}) {
        const Outcome outcome =
            Shell(std::string("cat in.tif | $P convert - - > out.tif ") + options);
        EXPECT_EQ(0, outcome.exitCode);
        EXPECT_NE("", outcome.errors) << options;
        EXPECT_TRUE(Holds("out.tif", {image})) << options;
    }
}

TEST_F(Pipes, ThatGiveNothingOrNoPictureAreRefused)
{
    EXPECT_TRUE(Refused(Shell(": | $P convert - out.tif"), 3,
                        {"standard input: is not a TIFF file, since it is empty"}));
    EXPECT_TRUE(
        Refused(Shell("echo text | $P convert - -"), 3, {"standard input: is not a TIFF file"}));
    EXPECT_TRUE(Refused(Shell("$P convert - out.tif <&-"), 6, {"standard input: cannot be read"}));
    EXPECT_TRUE(Refused(Shell("$P convert - out.tif < /dev/zero"), 6,
                        {"standard input: cannot be read: it is not a regular file or a pipe"}));
    EXPECT_TRUE(Files().empty());
}

TEST_F(Pipes, ThatKeepSilentCanBeInterrupted)
{
    const Outcome outcome = Shell("mkfifo pipe; timeout -s INT 0.5 $P convert pipe out.tif; "
                                  "sleep 2 | timeout -s INT 0.5 $P convert - out.tif");
    EXPECT_EQ("pelkraft: pipe: interrupted; nothing was written\n"
              "pelkraft: standard input: interrupted; nothing was written\n",
              outcome.errors);
}

// The form for more than 4 GB, which no test fills.
TEST_F(Pipes, CarryTheBigForm)
{
    const std::vector<TiffImage> pages = {RandomImage(40, 30, 3, 8, 1),
                                          RandomImage(50, 1, 3, 8, 2)};
    const int file = open(Path("out.tif").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    Client::TiffFile out = Client::TiffFile::OpenForSending(file, "-", true, 2);
    for (const TiffImage& image : pages) {
        Client::TiffPicture picture;
        picture.width = static_cast<std::uint32_t>(image.width);
        picture.height = static_cast<std::uint32_t>(image.height);
        picture.channels = image.channels;
        picture.bits = image.bits;
        picture.rowsPerStrip = 7;
        TIFFSetField(out.Get(), TIFFTAG_IMAGEWIDTH, picture.width);
        TIFFSetField(out.Get(), TIFFTAG_IMAGELENGTH, picture.height);
        TIFFSetField(out.Get(), TIFFTAG_SAMPLESPERPIXEL, picture.channels);
        TIFFSetField(out.Get(), TIFFTAG_BITSPERSAMPLE, picture.bits);
        TIFFSetField(out.Get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(out.Get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        TIFFSetField(out.Get(), TIFFTAG_ROWSPERSTRIP, picture.rowsPerStrip);
        Client::StripWriter writer(out, picture);
        const std::vector<unsigned char> rows(image.samples.begin(), image.samples.end());
        writer.WriteRows(rows.data(), picture.RowBytes(), picture.height);
        writer.EndPage();
    }
    out.Finish();
    EXPECT_EQ(Bytes(Path("out.tif"))[2], 43);
    EXPECT_TRUE(Holds("out.tif", pages));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
