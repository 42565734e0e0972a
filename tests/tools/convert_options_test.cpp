#include "pelkraft/plan.hpp"
#include "tests/tools/expected_image.h"
#include "tests/tools/tool_fixture.h"

#include <nlohmann/json.hpp>

namespace zvk::Pelkraft::TestSupport {
namespace {

struct OptionCase
{
    std::string name;
    std::vector<int> channels;
    std::string list;
    int repeat;
    bool mirror;
};

std::vector<OptionCase> OptionCases()
{
    std::vector<OptionCase> cases;
    for (const auto& [name, channels, list] :
         {std::tuple<std::string, std::vector<int>, std::string>{"All", {}, ""},
          {"Shuffled", {2, 1, 0}, "2,1,0"},
          {"Fewer", {2}, "2"},
          {"More", {0, -1, 1, 2, 2}, "0,-,1,2,2"}}) {
        for (const int repeat : {1, 2, 4}) {
            for (const bool mirror : {false, true})
                cases.push_back(
                    {name + "Repeat" + std::to_string(repeat) + (mirror ? "Mirror" : ""), channels,
                     list, repeat, mirror});
        }
    }
    return cases;
}

class ConvertOptions : public ToolFixture, public ::testing::WithParamInterface<OptionCase>
{
public:
    std::vector<std::string> Arguments() const
    {
        std::vector<std::string> arguments = {"--repeat", std::to_string(GetParam().repeat)};
        if (!GetParam().list.empty())
            arguments.insert(arguments.end(), {"--channels", GetParam().list});
        if (GetParam().mirror)
            arguments.push_back("--mirror");
        return arguments;
    }
};

TEST_P(ConvertOptions, DoAsTheySayBetweenAllDepthsOnBothRoads)
{
    int number = GetParam().repeat;
    for (const int from : {1, 2, 8, 16}) {
        const TiffImage image =
            RandomImage(5 + number * 7 % 60, 3, 3, from, static_cast<std::uint32_t>(number));
        FileForm form;
        form.separate = number % 2 == 0;
        WriteTiff(Path("in.tif"), image, form);
        for (const int to : {1, 2, 8, 16}) {
            // The factors 1 and 4 go through all pairs of depths.
            ++number;
            if (number % 2 == 0 && GetParam().repeat == 2)
                continue;
            SCOPED_TRACE(::testing::Message() << from << " to " << to << " bits, "
                                              << (form.separate ? "planar" : "interleaved"));
            std::vector<std::string> arguments = Arguments();
            arguments.insert(arguments.end(),
                             {"--bits", std::to_string(to), "--layout",
                              number % 3 == 0 ? "planar" : "interleaved", "--tones", "scale"});
            const Outcome outcome = Convert(arguments);
            ASSERT_EQ(0, outcome.exitCode) << outcome.errors;
            Wish wish{to, GetParam().channels, GetParam().repeat, GetParam().mirror, true,
                      // Highest samples are no ink on these pages.
                      (1 << to) - 1};
            ASSERT_EQ(Expected(image, wish).samples, Output().samples);

            const std::string vectorFile = Bytes(Path("out.tif"));
            arguments.push_back("--portable");
            ASSERT_EQ(0, Convert(arguments).exitCode);
            ASSERT_EQ(vectorFile, Bytes(Path("out.tif")));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, ConvertOptions, ::testing::ValuesIn(OptionCases()),
                         [](const auto& each) { return each.param.name; });

class ConvertWork : public ToolFixture
{};

TEST_F(ConvertWork, GivesTheSameFileOnAnyNumberOfThreads)
{
    FileForm form;
    form.rowsPerStrip = 5;
    WriteTiff(Path("in.tif"), RandomImage(301, 400, 4, 8, 31), form);
    for (const auto& options : {std::vector<std::string>{"--layout", "planar", "--bits", "16"},
                                {"--bits", "1", "--mirror", "--channels", "3,-,1", "--repeat", "2"},
                                {"--bits", "2", "--tones", "raw"}}) {
        std::string first;
        for (const char* threads : {"1", "2", "7", "256"}) {
            std::vector<std::string> arguments = options;
            arguments.insert(arguments.end(), {"--threads", threads});
            const Outcome outcome = Convert(arguments);
            EXPECT_EQ(options.back() == "raw" ? 1 : 0, outcome.exitCode) << outcome.errors;
            if (first.empty())
                first = Bytes(Path("out.tif"));
            EXPECT_EQ(first, Bytes(Path("out.tif"))) << threads;
        }
    }
}

// Channel counts around the slots of the library, in which the portable road unpacks.
TEST_F(ConvertWork, UnpacksAllChannelsOnBothRoads)
{
    for (const int channels : {1, 4, 12, 13, 16, 17, 28, 29, 33}) {
        const TiffImage image = RandomImage(21, 2, channels, 1, 77);
        WriteTiff(Path("in.tif"), image, {});
        for (const char* road : {"--threads=1", "--portable"}) {
            ASSERT_TRUE(EndedSilently(Convert({"--bits", "8", road})));
            ASSERT_EQ(Expected(image, {}).samples, Output().samples) << channels << road;
            ASSERT_TRUE(EndedSilently(Convert({"--mirror", "--layout", "planar", road})));
            Wish mirrored;
            mirrored.bits = 1;
            mirrored.mirror = true;
            ASSERT_EQ(Expected(image, mirrored).samples, Output().samples) << channels << road;
        }
    }
}

TEST_F(ConvertWork, TakesManyChannels)
{
    const TiffImage image = RandomImage(7, 2, 130, 8, 78);
    WriteTiff(Path("in.tif"), image, {});
    ASSERT_TRUE(EndedSilently(Convert({"--layout", "planar", "--bits", "16"})));
    Wish wish;
    wish.bits = 16;
    EXPECT_EQ(Expected(image, wish).samples, Output().samples);
}

TEST_F(ConvertWork, ExplainsItsPlanAndDoesIt)
{
    const TiffImage image = RandomImage(100, 4, 4, 16, 41);
    WriteTiff(Path("in.tif"), image, {});
    const Outcome outcome = Convert(
        {"--bits", "1", "--mirror", "--channels", "3,2,1,0", "--explain", "--threads", "3"});
    ASSERT_EQ(0, outcome.exitCode) << outcome.errors;
    for (const char* words :
         {"100 x 4 pixels, 4 x 16 bits, contiguous, strips, uncompressed",
          "interleaved, 100 pixels, 4 x 16 bits, 800 bytes", "library    narrow to 8 bits\n",
          "planar, 100 pixels, 4 x 1 bit, 52 bytes", "client     weave planes",
          "contiguous bits, 100 pixels, 4 x 1 bit, 50 bytes", "road       direct, ",
          "traffic    reads 800 bytes, writes 52 for each row\n", "tones      scale",
          "polarity   MinIsBlack: 0 is black, kept", "bit order  highest bit first", "on 3 threads",
          "rows per second"})
        EXPECT_NE(std::string::npos, outcome.output.find(words)) << words << "\n" << outcome.output;
    Wish wish{1, {3, 2, 1, 0}, 1, true, true};
    EXPECT_EQ(Expected(image, wish).samples, Output().samples);

    const Outcome portable = Convert({"--portable", "--explain"});
    EXPECT_NE(std::string::npos, portable.output.find("road       direct, plain code (level 0)\n"));
    EXPECT_EQ("", Convert().output);
}

// The library's own words for a conversion between rows of these forms.
nlohmann::json Description(const RowFormat& source, const RowFormat& target, int repeat)
{
    ConversionSpec spec;
    spec.source = source;
    spec.target = target;
    spec.repeat = repeat;
    return nlohmann::json::parse(ConversionPlan(spec).Describe(PLK_JSON));
}

TEST_F(ConvertWork, ExplainsInTheLibrarysWords)
{
    WriteTiff(Path("in.tif"), RandomImage(20, 2, 3, 16, 43), {});
    const Outcome outcome =
        Convert({"--bits", "8", "--layout", "planar", "--repeat", "2", "--explain"});
    const auto description = Description({20, 3, 16, false}, {40, 3, 8, true}, 2);
    std::string steps;
    for (const auto& step : description["steps"])
        steps += "  library    " + step.get<std::string>() + "\n";
    EXPECT_NE("", steps);
    EXPECT_NE(std::string::npos, outcome.output.find(steps)) << steps << outcome.output;
}

TEST_F(ConvertWork, ExplainsEachPageInJson)
{
    FileForm form;
    WriteTiff(Path("in.tif"), RandomImage(20, 2, 3, 1, 43), form);
    const Outcome outcome =
        Convert({"--channels", "2,1,0", "--portable", "--explain", "--json", "--threads", "3"});
    ASSERT_EQ(0, outcome.exitCode) << outcome.errors;
    const auto json = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(1, json["schema"]);
    ASSERT_EQ(1U, json["pages"].size());
    const auto& page = json["pages"][0];
    EXPECT_EQ(1, page["page"]);
    EXPECT_EQ(3, page["reads"]["channels"]);
    EXPECT_EQ("interleaved", page["writes"]["layout"]);
    EXPECT_EQ(2U, page["client"].size());
    EXPECT_EQ((std::vector<int>{2, 1, 0}), page["library"]["map"].get<std::vector<int>>());
    EXPECT_EQ(9, page["library"]["bytes_read"]);
    EXPECT_EQ(3, page["threads"]);
    EXPECT_TRUE(Refused(Convert({"--json"}), 2, {"--explain"}));
}

TEST_F(ConvertWork, TellsItsExitCodesInTheHelp)
{
    for (const auto& arguments :
         {std::vector<std::string>{"--help"}, {"convert", "--help"}, {"convert", "-h"}}) {
        const Outcome outcome = Run(arguments);
        EXPECT_TRUE(EndedSilently(outcome));
        for (const char* words :
             {"0    done", "1    findings of check or in a pattern", "2    wrong usage",
              "3    bad input file", "4    bad pattern", "5    conversion not supported",
              "6    reading or writing failed", "7    out of memory", "130  interrupted"})
            EXPECT_NE(std::string::npos, outcome.output.find(words)) << words;
    }
    const Outcome verb = Run({"convert", "--help"});
    for (const char* option : {"--layout", "--bits", "--channels", "--repeat", "--mirror",
                               "--tones", "--portable", "--threads", "--explain"})
        EXPECT_NE(std::string::npos, verb.output.find(option)) << option;
}

TEST_F(ConvertWork, ShowsNoProgressInAPipe)
{
    WriteTiff(Path("in.tif"), RandomImage(15, 25, 4, 8, 8), {});
    const Outcome outcome = Convert();
    EXPECT_TRUE(EndedSilently(outcome));
    EXPECT_EQ("", outcome.output);
}

// libtiff itself opens files by name only in the letters of the machine's code page.
TEST_F(ConvertWork, TakesNamesInAnyLetters)
{
    const TiffImage image = RandomImage(15, 25, 4, 8, 8);
    WriteTiff(Path("in.tif"), image, {});
    const std::string in = Path("Tür für Zoë.tif");
    const std::string out = Path("größer 色 Ω.tif");
    EXPECT_TRUE(Refused(Run({"convert", in, out}), 6, {"Tür für Zoë.tif: cannot be read: "}));
    std::filesystem::rename(PathOf(Path("in.tif")), PathOf(in));
    WriteBytes(out, "old");
    ASSERT_TRUE(EndedSilently(Run({"convert", in, out})));
    EXPECT_EQ((std::vector<std::string>{"Tür für Zoë.tif", "größer 色 Ω.tif"}), Files());
    std::filesystem::rename(PathOf(out), PathOf(Path("out.tif")));
    EXPECT_EQ(image.samples, Output().samples);
}

// Strips of more than 64 MiB are not held whole.
TEST_F(ConvertWork, StreamsAPictureThatIsOneStrip)
{
    for (const bool separate : {false, true}) {
        TiffImage image = BlankImage(4200, 5600, 3, 8);
        for (int y = 0; y < image.height; ++y) {
            for (int c = 0; c < 3; ++c)
                image.At(y % image.width, y, c) = static_cast<std::uint16_t>(y % 250 + c);
        }
        FileForm form;
        form.separate = separate;
        form.rowsPerStrip = image.height;
        form.compression = COMPRESSION_ADOBE_DEFLATE;
        WriteTiff(Path("in.tif"), image, form);
        // The picture has 70 MB.
        ASSERT_TRUE(EndedSilently(Convert(
            {"--layout", separate ? "interleaved" : "planar", "--threads", "1"}, 40UL << 20)));
        ASSERT_TRUE(image.samples == Output().samples);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
