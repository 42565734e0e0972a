#include "tests/tools/tool_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

using UsageErrors = ToolFixture;

struct Wrong
{
    std::vector<std::string> arguments;
    std::string said;
};

TEST_F(UsageErrors, CallAnExampleOne)
{
    EXPECT_TRUE(Refused(Run({"coverage", "in.tif", "--limit", "0"}), 2,
                        {"supported are numbers above 0, in percent, such as 300"}));
    EXPECT_TRUE(Refused(Run({"coverage", "in.tif", "--window", "0"}), 2, {"px, such as 1mm"}));
}

TEST_F(UsageErrors, SayWhatIsWrongAndWhereHelpIs)
{
    const std::vector<Wrong> cases = {
        {{"convertt", "a.tif", "b.tif"},
         "there is no verb \"convertt\". Did you mean convert? See pelkraft --help"},
        {{"simul"}, "there is no verb \"simul\". Did you mean simulate? See pelkraft --help"},
        {{"--versio"},
         "--versio is no option of pelkraft. Did you mean --version? See pelkraft --help"},
        {{"-q", "convert", "a", "b"},
         "-q stands before the verb; its options follow it. See pelkraft convert --help"},
        {{"convert", "--bit", "8", "a", "b"},
         "--bit is no option of pelkraft convert. Did you mean --bits? See pelkraft convert "
         "--help"},
        {{"convert", "--bit=8", "a", "b"},
         "--bit is no option of pelkraft convert. Did you mean --bits? See pelkraft convert "
         "--help"},
        {{"convert", "--lay", "planar"},
         "--lay is no option of pelkraft convert. Did you mean --layout? See pelkraft convert "
         "--help"},
        // It begins --explain and --export.
        {{"mask", "--exp"}, "--exp is no option of pelkraft mask. See pelkraft mask --help"},
        {{"convert", "a", "b", "-z"},
         "-z is no option of pelkraft convert. See pelkraft convert --help"},
        {{"simulate", "--colour", "never"},
         "--colour is no option of pelkraft simulate. Did you mean --color? See pelkraft simulate "
         "--help"},
        {{"convert", "a", "b", "--bits", "eight"},
         "--bits can't be \"eight\"; supported are 1, 2, 8 and 16. See pelkraft convert --help"},
        {{"convert", "a", "b", "--bits=3"},
         "--bits can't be \"3\"; supported are 1, 2, 8 and 16. See pelkraft convert --help"},
        {{"convert", "a", "b", "--tones", "--mirror"},
         "--tones can't be \"--mirror\"; supported are scale and raw. See pelkraft convert --help"},
        {{"convert", "a", "b", "--threads", "x"},
         "--threads can't be \"x\"; supported are 1 to 256. See pelkraft convert --help"},
        {{"convert", "a", "b", "--mirror=maybe"},
         "--mirror can't be \"maybe\"; it takes no value. See pelkraft convert --help"},
        {{"convert", "a", "b", "--bits"},
         "--bits lacks its value; supported are 1, 2, 8 and 16. See pelkraft convert --help"},
        {{"convert", "a", "b", "--bits", "8", "--bits", "1"},
         "--bits is given 2 times, which is more than it takes. See pelkraft convert --help"},
        {{"convert", "--bits=", "a", "b", "c"},
         "--bits= is given no value. See pelkraft convert --help"},
        {{"convert", "--channels", "", "a", "b"},
         "--channels is given an empty value. See pelkraft convert --help"},
        {{"convert", "", "b"}, "IN.tif is given an empty value. See pelkraft convert --help"},
        {{"convert", "a"}, "OUT.tif is missing. See pelkraft convert --help"},
        {{"convert", "a", "b", "c"},
         "\"c\" is one word too many; pelkraft convert takes IN.tif and OUT.tif. See pelkraft "
         "convert --help"},
        {{"convert", "a", "b", "--json"},
         "--json is of no use without --explain. See pelkraft convert --help"},
        {{"pattern", "explan"},
         "there is neither a verb nor a file \"explan\". Did you mean explain? See pelkraft "
         "pattern --help"},
        {{"pattern", "expl", "--json"},
         "there is neither a verb nor a file \"expl\". Did you mean explain? See pelkraft "
         "pattern --help"},
        {{"pattern", "explan", "a.txt"},
         "there is no verb \"explan\". Did you mean explain? See pelkraft pattern --help"},
        {{"convert", "a", "b", "-q", "-v"},
         "--quiet and --verbose can't be given together. See pelkraft convert --help"}};
    for (const Wrong& wrong : cases) {
        const Outcome outcome = Run(wrong.arguments);
        EXPECT_EQ("pelkraft: " + wrong.said + '\n', outcome.errors);
        EXPECT_EQ(2, outcome.exitCode);
        EXPECT_EQ("", outcome.output);
    }
    EXPECT_TRUE(Files().empty());
}

TEST_F(UsageErrors, NameAllVerbsWhereNoneIsNear)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>(), {"paint"}})
        EXPECT_TRUE(Refused(Run(arguments), 2,
                            {"verb", "supported are ", "convert", "pattern", " and ", "simulate",
                             ". See pelkraft --help\n"}));
}

TEST_F(UsageErrors, AreNoFilesWithNamesLikeVerbs)
{
    for (const std::string name : {"explan", "lin", "explai.txt"}) {
        // A path can't be a verb.
        EXPECT_TRUE(Refused(Run({"pattern", Path(name)}), 6, {name + ": cannot be read"}));
        WriteBytes(Path(name), "DotWeavePattern VERSION 2");
        const auto here = std::filesystem::current_path();
        std::filesystem::current_path(Path("."));
        const Outcome read = Run({"pattern", name});
        std::filesystem::current_path(here);
        EXPECT_EQ(4, read.exitCode);
        EXPECT_EQ(std::string::npos, read.errors.find("verb")) << read.errors;
    }
}

// The file alone can say that these are wrong.
TEST_F(UsageErrors, OfTheWorkNameTheHelpToo)
{
    WriteTiff(Path("in.tif"), RandomImage(4, 3, 3, 8, 8), {});
    EXPECT_TRUE(Refused(Convert({"--channels", "7"}), 2,
                        {"\"7\"", "0 to 2", ". See pelkraft convert --help\n"}));
    EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), Path("m.jpg")}), 2,
                        {"JPEG", ". See pelkraft convert --help\n"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
