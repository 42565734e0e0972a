#include "tests/tools/simulate_fixture.h"

#include <chrono>
#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

class SimulateFailures : public SimulateFixture
{
protected:
    SimulateFailures() { WriteInput(RandomImage(40, 30, 2, 8, 8), "Cyan Black"); }

    // Nothing but the two inputs lies in the folder.
    [[nodiscard]] bool LeftNothing() const
    {
        return Files() == std::vector<std::string>{"in.tif", "pattern.txt"};
    }
};

TEST_F(SimulateFailures, NamePatternsThatTheEngineRefuses)
{
    WritePattern("");
    EXPECT_TRUE(StoppedAtFindings(Simulate(), 4, {"pattern.txt:1:1: error: the text holds no word"},
                                  {"pattern.txt", "no version in dotweave pattern"}));
    std::string text = smallPattern;
    WritePattern(text.replace(text.find("3 1 0-255"), 1, "8"));
    EXPECT_TRUE(StoppedAtFindings(
        Simulate(), 4,
        {"pattern.txt:19:1: error: step 8 is outside of 0 to 7\n    8 1 0-255\n    ^\n    hint: "},
        {"pattern.txt", "the auto engine doesn't load it; the engine says: \"step out of range",
         "pelkraft pattern shows where"}));
    text = smallPattern;
    WritePattern(text.replace(text.find("VERSION 2"), 9, "VERSION 1"));
    EXPECT_TRUE(StoppedAtFindings(Simulate({"--engine", "x86"}), 4, {"pattern.txt:17:5: error: "},
                                  {"\"unsupported pattern version\""}));
    EXPECT_TRUE(LeftNothing());
    EXPECT_TRUE(EndedSilently(Simulate({"--engine", "reference", "--levels", "quantize"})));
}

// Both byte orders and both formats count, and the size is complained of later.
TEST_F(SimulateFailures, KnowPicturesInThePlaceOfTexts)
{
    for (const std::string& start : {std::string("II*\0", 4), std::string("MM\0*", 4),
                                     std::string("II+\0", 4), std::string("MM\0+", 4)}) {
        for (const std::size_t size : {std::size_t{4}, std::size_t{2000000}}) {
            std::string picture = start;
            picture.resize(size, 'x');
            WriteBytes(Path("odd"), picture);
            EXPECT_TRUE(Refused(Run({"pattern", "lint", Path("odd")}), 4,
                                {"odd: is a TIFF picture, and a pattern text is expected here\n"}));
            EXPECT_TRUE(Refused(Simulate({"--tone", Path("odd")}), 3,
                                {"odd: is a TIFF picture, and a table of inks is expected"}));
        }
        WriteBytes(Path("odd"), start.substr(0, 3));
        EXPECT_EQ(std::string::npos,
                  Run({"pattern", "lint", Path("odd")}).errors.find("TIFF picture"));
    }
}

// An engine loads the text, but not as it was meant.
TEST_F(SimulateFailures, StopAtErrorsOfPatternsThatLoad)
{
    std::string text = smallPattern;
    WritePattern(text.replace(text.find("END_INKS\nBEGIN_VALUES\n1 1 1"), 9, ""));
    EXPECT_TRUE(StoppedAtFindings(Simulate(), 4, {":15:1: error: ", "write END_INKS ahead of it"},
                                  {"pattern.txt: has 1 error, and nothing was written"}));
    text = smallPattern;
    WritePattern(text.replace(text.find("2 1:3 1-128 0-40\n"), 17, ""));
    EXPECT_EQ(4, Simulate({"--engine", "reference"}).exitCode);
    EXPECT_TRUE(LeftNothing());
}

TEST_F(SimulateFailures, WarnOfPatternsOncePerKindAndGoOn)
{
    std::string text = smallPattern;
    text.replace(text.find("LightCyan\nEND_INKS"), 9, "LihgtCyan");
    text.replace(text.find("1 1 1-64"), 8, "1 1 1-640");
    WritePattern(text.replace(text.find("1-128"), 5, "1-300"));
    const Outcome outcome = Simulate({"--levels", "quantize"});
    EXPECT_EQ(1, outcome.exitCode);
    const std::string head = "pelkraft: " + Path("pattern.txt") + ": warning: line ";
    EXPECT_EQ(0U, outcome.errors.find(head + "14, column 6: \"LihgtCyan\" is not listed in "))
        << outcome.errors;
    EXPECT_NE(std::string::npos, outcome.errors.find("; did you mean LightCyan? "));
    EXPECT_NE(std::string::npos, outcome.errors.find(head + "17, column 5: of the value 640 "));
    EXPECT_NE(std::string::npos, outcome.errors.find(" (1 more of this kind)\n"));
    EXPECT_EQ(2, std::count(outcome.errors.begin(), outcome.errors.end(), '\n'));
    EXPECT_EQ(40, Output().width);
}

TEST_F(SimulateFailures, KeepQuietAboutLimitsOfOtherEngines)
{
    std::string text = smallPattern;
    WritePattern(text.replace(text.find("3 1 0-255"), 9, "3 2:6 0-255 0-128"));
    EXPECT_TRUE(EndedSilently(Simulate({"--engine", "reference"})));
    EXPECT_EQ(1, Simulate({"--engine", "x86"}).exitCode);
}

TEST_F(SimulateFailures, NamePicturesWithTooFewChannels)
{
    WriteInput(RandomImage(40, 30, 1, 8, 8));
    EXPECT_TRUE(Refused(Simulate(), 3, {"in.tif", "1 channel;", "2 in-colours"}));
    WritePattern(Bytes(PELKRAFT_EXAMPLES "/patterns/six_ink.txt"));
    WriteInput(RandomImage(40, 30, 3, 8, 8));
    EXPECT_TRUE(Refused(Simulate(), 3, {"in.tif", "3 channels;", "4 in-colours"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(SimulateFailures, NameFilesThatArentThere)
{
    EXPECT_TRUE(Refused(Run({"simulate", Path("no.txt"), Path("in.tif"), Path("out.tif")}), 6,
                        {"no.txt: cannot be read"}));
    EXPECT_TRUE(Refused(Run({"simulate", Path("pattern.txt"), Path("no.tif"), Path("out.tif")}), 6,
                        {"no.tif: cannot be read"}));
    EXPECT_TRUE(Refused(Run({"simulate", Path("in.tif"), Path("pattern.txt"), Path("out.tif")}), 4,
                        {"in.tif: is a TIFF picture, and a pattern text is expected here; the "
                         "order is pelkraft simulate PATTERN IN.tif OUT.tif\n"}));
    EXPECT_TRUE(
        Refused(Run({"simulate", Path("pattern.txt"), Path("pattern.txt"), Path("out.tif")}), 3,
                {"pattern.txt: is not a TIFF file but a pattern text"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(SimulateFailures, LeaveNeitherFileWithoutTheOther)
{
    EXPECT_TRUE(Refused(Simulate({"--preview", Path("missing/seen.png")}), 6,
                        {"seen.png: cannot be written"}));
    EXPECT_TRUE(Refused(Run({"simulate", Path("pattern.txt"), Path("in.tif"),
                             Path("missing/out.tif"), "--preview", Path("seen.png")}),
                        6, {"out.tif: cannot be written"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(SimulateFailures, NameWrongUsage)
{
    EXPECT_TRUE(Refused(Simulate({"--engine", "fast"}), 2, {"--engine", "reference"}));
    EXPECT_TRUE(Refused(Simulate({"--levels", "even"}), 2, {"quantize", "raw"}));
    EXPECT_TRUE(Refused(Simulate({"--threads", "0"}), 2, {"--threads"}));
    EXPECT_TRUE(Refused(Simulate({"--preview", Path("out.tif")}), 2, {"ending", ".png"}));
    EXPECT_TRUE(Refused(Run({"simulate", Path("pattern.txt"), Path("in.tif"), Path("out"),
                             "--preview", Path("out")}),
                        2, {"both OUT.tif and the preview"}));
    for (const char* ink :
         {"Cyan", "Cyan=00FF00", "Cyan=#00FF0", "=#00FF00", "Cyan=#00FG00", "Cyan=#-0FF00"})
        EXPECT_TRUE(Refused(Simulate({"--ink", ink}), 2, {ink, "NAME=#RRGGBB"}));
    EXPECT_TRUE(
        Refused(Simulate({"--ink", "Gold=#00FF00"}), 2, {"\"Gold\"", "Cyan, LightCyan, Black"}));
    EXPECT_TRUE(Refused(Run({"simulate", Path("pattern.txt")}), 2, {"IN.tif is missing"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(SimulateFailures, MeetEveryTruncationWithoutACrash)
{
    const std::string whole = Bytes(Path("in.tif"));
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 16 + 1) {
        WriteBytes(Path("in.tif"), whole.substr(0, size));
        EXPECT_TRUE(Refused(Simulate({"--preview", Path("seen.png")}), 3, {"in.tif"})) << size;
        EXPECT_TRUE(LeftNothing());
    }
}

TEST_F(SimulateFailures, LeaveNothingWhenInterrupted)
{
    FileForm form = InkForm("Cyan Black");
    form.compression = COMPRESSION_ADOBE_DEFLATE;
    form.rowsPerStrip = 64;
    WriteTiff(Path("in.tif"), BlankImage(3000, 8000, 2, 8), form);
    Outcome outcome;
    outcome.exitCode = 0;
    // On a busy machine the program may be done before the signal: then once more.
    for (int attempt = 0; attempt < 20 && outcome.exitCode == 0; ++attempt) {
        std::filesystem::remove(Path("out.tif"));
        Subprocess tool({PELKRAFT_TOOL, "simulate", Path("pattern.txt"), Path("in.tif"),
                         Path("out.tif"), "--threads", "1"},
                        folder + "/streams");
        // The temporary file shows that the work is under way.
        while (Files().size() < 3 && !tool.HasEnded())
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        tool.Interrupt(Interrupts().front());
        outcome = tool.Wait();
    }
    EXPECT_TRUE(Refused(outcome, 130, {"out.tif", "interrupted"}));
    EXPECT_TRUE(LeftNothing());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
