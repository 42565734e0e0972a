#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"

#include <nlohmann/json.hpp>

#include <functional>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A verb that reads a picture, as it is called for the picture at this path.
struct ReadingVerb
{
    std::string name;
    std::function<std::vector<std::string>(const std::string& path)> call;
    bool writes;
};

// All verbs that read pictures keep to these.
class VerbManners : public ToolFixture
{
protected:
    VerbManners()
    {
        FileForm form;
        form.photometric = PHOTOMETRIC_SEPARATED;
        WriteTiff(Path("in.tif"), RandomImage(40, 30, 4, 8, 8), form);
        WriteTiff(Path("plate.tif"), RandomImage(40, 30, 1, 8, 8), {});
        WriteBytes(Path("pattern.txt"), smallPattern);
        given = Files();
    }

    [[nodiscard]] std::vector<ReadingVerb> Verbs() const
    {
        const std::string out = Path("out.tif");
        const std::string pattern = Path("pattern.txt");
        return {{"check",
                 [](const std::string& path) -> std::vector<std::string> {
                     return {"check", path};
                 },
                 false},
                {"convert",
                 [=](const std::string& path) -> std::vector<std::string> {
                     return {"convert", path, out};
                 },
                 true},
                {"coverage",
                 [](const std::string& path) -> std::vector<std::string> {
                     return {"coverage", path, "--limit", "400"};
                 },
                 false},
                {"info",
                 [](const std::string& path) -> std::vector<std::string> {
                     return {"info", path};
                 },
                 false},
                {"join",
                 [=](const std::string& path) -> std::vector<std::string> {
                     return {"join", out, "Cyan=" + path};
                 },
                 true},
                {"preview",
                 [this](const std::string& path) -> std::vector<std::string> {
                     return {"preview", path, Path("out.png")};
                 },
                 true},
                {"simulate",
                 [=](const std::string& path) -> std::vector<std::string> {
                     return {"simulate", pattern, path, out};
                 },
                 true},
                {"split",
                 [this](const std::string& path) -> std::vector<std::string> {
                     return {"split", path, Path("out")};
                 },
                 true}};
    }

    // The picture that the verb takes.
    [[nodiscard]] std::string InputOf(const ReadingVerb& verb) const
    {
        return Path(verb.name == "join" ? "plate.tif" : "in.tif");
    }

    [[nodiscard]] Outcome RunWith(const ReadingVerb& verb, const std::string& path,
                                  const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments = verb.call(path);
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    [[nodiscard]] bool LeftNothing() const { return Files() == given; }

    void RemoveNewFiles() const
    {
        for (const std::string& name : Files()) {
            if (std::find(given.begin(), given.end(), name) == given.end())
                std::filesystem::remove(Path(name));
        }
    }

    std::vector<std::string> given;
};

TEST_F(VerbManners, NameWhatIsWrongWithAFile)
{
    const std::string whole = Bytes(Path("in.tif"));
    WriteBytes(Path("cut.tif"), whole.substr(0, whole.size() / 2));
    WriteBytes(Path("other.tif"), "\x89PNG\r\n\x1A\n");
    given = Files();
    for (const ReadingVerb& verb : Verbs()) {
        SCOPED_TRACE(verb.name);
        EXPECT_TRUE(Refused(RunWith(verb, Path("no.tif")), 6,
                            {"no.tif: cannot be read: No such file or directory"}));
        EXPECT_TRUE(Refused(RunWith(verb, Path("cut.tif")), 3,
                            {"cut.tif: is truncated: the directory of page 1 begins at byte "}));
        EXPECT_TRUE(Refused(RunWith(verb, Path("other.tif")), 3,
                            {"other.tif: is not a TIFF file but a PNG file"}));
        // A check is about all pages.
        EXPECT_TRUE(verb.name == "check" ||
                    Refused(RunWith(verb, InputOf(verb), {"--page", "2"}), 2,
                            {"has no page 2; its last one is 1",
                             ". See pelkraft " + verb.name + " --help"}));
        EXPECT_TRUE(Refused(RunWith(verb, InputOf(verb), {"--expain"}), 2,
                            {". Did you mean --explain? See pelkraft " + verb.name + " --help"}));
        EXPECT_TRUE(LeftNothing());
    }
}

TEST_F(VerbManners, NameThePageThatIsWrong)
{
    WriteTiffPages(Path("pages.tif"), {RandomImage(20, 10, 1, 8, 1), RandomImage(20, 10, 1, 4, 1)},
                   {});
    given = Files();
    for (const ReadingVerb& verb : Verbs()) {
        SCOPED_TRACE(verb.name);
        // One channel is too few for the pattern of the tests, and any depth has tags.
        if (verb.name == "simulate" || verb.name == "info" || verb.name == "check")
            continue;
        EXPECT_TRUE(Refused(RunWith(verb, Path("pages.tif"), {"-q"}), 5,
                            {"pages.tif: page 2: has samples of 4 bits"}));
        EXPECT_TRUE(LeftNothing());
    }
}

TEST_F(VerbManners, WriteNothingInADryRun)
{
    for (const ReadingVerb& verb : Verbs()) {
        SCOPED_TRACE(verb.name);
        const Outcome dry = RunWith(verb, InputOf(verb), {"--dry-run", "-q"});
        EXPECT_LE(dry.exitCode, 1) << dry.errors;
        EXPECT_EQ("", dry.errors);
        EXPECT_TRUE(LeftNothing());
        const Outcome plan = RunWith(verb, InputOf(verb), {"--dry-run", "--explain", "-q"});
        const char* const said = verb.name == "check" ? "all pages by the rules " : "page 1";
        EXPECT_NE(std::string::npos, plan.output.find(said)) << plan.output;
        EXPECT_EQ(std::string::npos, plan.output.find("per second"));
    }
}

TEST_F(VerbManners, PrintDataAloneOnTheStandardOutput)
{
    for (const ReadingVerb& verb : Verbs()) {
        SCOPED_TRACE(verb.name);
        const Outcome outcome =
            RunWith(verb, InputOf(verb), {"--explain", "--json", "--progress", "json"});
        EXPECT_LE(outcome.exitCode, 1) << outcome.errors;
        ASSERT_TRUE(nlohmann::json::accept(outcome.output)) << outcome.output;
        const auto json = nlohmann::json::parse(outcome.output);
        EXPECT_TRUE(json.contains("schema")) << outcome.output;
        RemoveNewFiles();
    }
}

TEST_F(VerbManners, KeepWhatExistsIfAsked)
{
    for (const ReadingVerb& verb : Verbs()) {
        if (!verb.writes)
            continue;
        SCOPED_TRACE(verb.name);
        EXPECT_LE(RunWith(verb, InputOf(verb), {"-q"}).exitCode, 1);
        const std::vector<std::string> files = Files();
        ASSERT_GT(files.size(), given.size());
        for (const std::string& name : files) {
            if (std::find(given.begin(), given.end(), name) == given.end())
                WriteBytes(Path(name), "old");
        }
        EXPECT_TRUE(Refused(RunWith(verb, InputOf(verb), {"-q", "--no-clobber"}), 6,
                            {"cannot be written: it exists, and --no-clobber keeps"}));
        EXPECT_EQ(files, Files());
        for (const std::string& name : files) {
            const bool isNew = std::find(given.begin(), given.end(), name) == given.end();
            EXPECT_TRUE(!isNew || Bytes(Path(name)) == "old") << name;
        }
        RemoveNewFiles();
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
