#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

class CommonOptions : public ToolFixture
{
protected:
    CommonOptions()
    {
        WriteTiff(Path("in.tif"), RandomImage(40, 30, 3, 8, 8), {});
        // The ink of Cyan's steps does not rise.
        std::string text = smallPattern;
        WriteBytes(Path("pattern.txt"), text.replace(text.find("3 1 0-255"), 9, "3 1 0-1"));
    }

    // A call of each verb that prints a warning, without its options.
    [[nodiscard]] std::vector<std::vector<std::string>> WarningCalls() const
    {
        return {
            {"convert", Path("in.tif"), Path("out.tif"), "--bits", "1", "--tones", "raw"},
            {"simulate", Path("pattern.txt"), Path("in.tif"), Path("out.tif"), "--levels", "raw"}};
    }

    [[nodiscard]] static std::vector<std::string> With(std::vector<std::string> call,
                                                       const std::vector<std::string>& options)
    {
        call.insert(call.end(), options.begin(), options.end());
        return call;
    }
};

TEST_F(CommonOptions, QuietLeavesErrorsAlone)
{
    for (const auto& call : WarningCalls()) {
        const Outcome loud = Run(call);
        EXPECT_NE(std::string::npos, loud.errors.find("warning: ")) << call.front();
        for (const char* option : {"-q", "--quiet"}) {
            const Outcome quiet = Run(With(call, {option}));
            EXPECT_EQ("", quiet.errors) << call.front();
            EXPECT_EQ(loud.exitCode, quiet.exitCode) << call.front();
        }
    }
    EXPECT_TRUE(Refused(Run({"convert", "-q", Path("no.tif"), Path("out.tif")}), 6, {"no.tif"}));
}

// The numbers of a run's time are its own; all else is known.
TEST_F(CommonOptions, VerboseTellsWhatWasReadChosenAndWritten)
{
    const auto size = [this](const char* name) {
        return std::to_string(Bytes(Path(name)).size()) + " bytes\n";
    };
    const Outcome converted = Convert({"-v", "--threads", "3", "--portable"});
    EXPECT_EQ(0, converted.exitCode);
    EXPECT_EQ("", converted.output);
    const std::string head = "pelkraft: ";
    for (const std::string& line :
         {std::string("; 3 threads\n"), head + Path("in.tif") + ": opened, " + size("in.tif"),
          head + Path("in.tif") +
              ": page 1: direct road of the library; ink: none is 255, all is 0",
          head + "convert " + Path("out.tif") + ": 30 rows in ", std::string(" rows per second\n"),
          head + Path("out.tif") + ": written, " + size("out.tif")})
        EXPECT_NE(std::string::npos, converted.errors.find(line)) << line << converted.errors;

    const Outcome simulated = Run({"simulate", "-v", Path("pattern.txt"), Path("in.tif"),
                                   Path("out.tif"), "--engine", "x86", "--levels", "quantize"});
    for (const std::string& line : {head + Path("pattern.txt") + ": opened, " + size("pattern.txt"),
                                    std::string(": page 1: x86 engine; Cyan from channel 0"),
                                    std::string(", quantized; Black"),
                                    head + Path("out.tif") + ": written, " + size("out.tif")})
        EXPECT_NE(std::string::npos, simulated.errors.find(line)) << line << simulated.errors;
    EXPECT_TRUE(EndedSilently(Convert()));
}

TEST_F(CommonOptions, DryRunWritesNothingAndFindsWhatIsWrong)
{
    for (const auto& call : WarningCalls()) {
        Outcome dry = Run(With(call, {"--dry-run"}));
        EXPECT_TRUE(dry.exitCode == 0 || dry.exitCode == 1) << dry.errors;
        EXPECT_EQ("", dry.output);
        const Outcome explained = Run(With(call, {"--dry-run", "--explain"}));
        EXPECT_EQ(0U, explained.output.find("page 1")) << explained.output;
        EXPECT_EQ(std::string::npos, explained.output.find("rows per second"));
    }
    EXPECT_TRUE(Refused(Run({"convert", "--dry-run", Path("pattern.txt"), Path("out.tif")}), 3,
                        {"pattern.txt"}));
    EXPECT_TRUE(Refused(Run({"convert", "--dry-run", Path("in.tif"), Path("no/out.tif")}), 6,
                        {"no/out.tif: cannot be written"}));
    EXPECT_TRUE(Refused(Run({"simulate", "--dry-run", "-q", Path("pattern.txt"), Path("in.tif"),
                             Path("out.tif"), "--preview", Path("no/out.png")}),
                        6, {"no/out.png: cannot be written"}));
    const Outcome plot =
        Run({"pattern", Path("pattern.txt"), "--dry-run", "--plot", Path("p.svg")});
    EXPECT_EQ(0, plot.exitCode) << plot.errors;
    EXPECT_EQ((std::vector<std::string>{"in.tif", "pattern.txt"}), Files());
}

TEST_F(CommonOptions, AndValuesAreOneWordOrTwo)
{
    ASSERT_TRUE(EndedSilently(Convert({"--bits", "16", "--threads", "1", "--layout", "planar"})));
    const std::string two = Bytes(Path("out.tif"));
    ASSERT_TRUE(EndedSilently(Convert({"--bits=16", "--threads=1", "--layout=planar"})));
    EXPECT_EQ(two, Bytes(Path("out.tif")));
    ASSERT_TRUE(EndedSilently(Convert({})));
    EXPECT_NE(two, Bytes(Path("out.tif")));
    EXPECT_TRUE(Refused(Convert({"--threads=0"}), 2, {"--threads"}));
    EXPECT_TRUE(Refused(Convert({"--progress=loud"}), 2, {"--progress"}));
    EXPECT_TRUE(Refused(Convert({"--color", "green"}), 2, {"--color"}));
    EXPECT_TRUE(Refused(Convert({"-q", "-v"}), 2, {"--verbose", "--quiet"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
