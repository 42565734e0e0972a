#include "tools/pelkraft/output_rules.h"

#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"
#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/failure.h"

#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Client::FileKind;

bool Takes(const std::string& path, FileKind kind)
{
    try {
        Client::RefuseOtherEnding(path, kind);
        return true;
    } catch (const Client::Failure& failure) {
        EXPECT_EQ(Client::ExitCode::Usage, failure.Code());
        return false;
    }
}

TEST(OutputRules, RefuseEndingsOfOtherKinds)
{
    const std::vector<std::pair<FileKind, std::vector<std::string>>> own = {
        {FileKind::Tiff, {"a.tif", "a.TIFF", "b.png/a.tif", "a.png.tif"}},
        {FileKind::Png, {"a.png", "a.PNG"}},
        {FileKind::Svg, {"a.svg"}},
        {FileKind::JsonText, {"a.json", "a.sarif"}},
        {FileKind::Csv, {"a.csv"}},
        {FileKind::Text, {"a.txt"}}};
    for (const auto& [kind, names] : own) {
        for (const auto& [other, otherNames] : own) {
            for (const std::string& name : otherNames)
                EXPECT_EQ(kind == other, Takes(name, kind)) << name;
        }
        for (const char* name : {"m.jpg", "m.JPeg", "m.pdf", "m.gif", "m.webp", "a.tif.jpg"})
            EXPECT_FALSE(Takes(name, kind)) << name;
        // No ending, or one that says nothing.
        for (const char* name : {"a", "a.", "a.b12", "dir.png/a", ".png", "dir/.tif", "-", ""})
            EXPECT_TRUE(Takes(name, kind)) << name;
    }
    EXPECT_TRUE(Takes("m.jpg", FileKind::Any));
}

class Outputs : public ToolFixture
{
protected:
    Outputs()
    {
        WriteTiff(Path("in.tif"), RandomImage(40, 30, 2, 8, 8), {});
        WriteBytes(Path("pattern.txt"), smallPattern);
    }

    [[nodiscard]] std::vector<std::string> Simulation(const std::string& output,
                                                      const std::string& preview) const
    {
        return {"simulate",   Path("pattern.txt"), Path("in.tif"),
                Path(output), "--preview",         Path(preview),
                "-q"};
    }

    [[nodiscard]] std::vector<std::string> Plot(const std::string& output) const
    {
        return {"pattern", Path("pattern.txt"), "--plot", Path(output)};
    }

    [[nodiscard]] bool LeftNothing() const
    {
        return Files() == std::vector<std::string>{"in.tif", "pattern.txt"};
    }
};

TEST_F(Outputs, AreRefusedUnderTheEndingOfAnotherKind)
{
    const std::string said = "m.jpg: would be a TIFF file under an ending that says JPEG; give it "
                             "the ending .tif";
    EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), Path("m.jpg")}), 2, {said}));
    EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), Path("m.png"), "--dry-run"}), 2, {"PNG"}));
    EXPECT_TRUE(Refused(Run(Simulation("m.png", "p.png")), 2, {"m.png", "TIFF"}));
    EXPECT_TRUE(Refused(Run(Simulation("m.tif", "p.tif")), 2, {"p.tif", "would be a PNG file"}));
    EXPECT_TRUE(Refused(Run(Plot("p.png")), 2, {"p.png", "SVG"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(Outputs, AreKeptByNoClobber)
{
    using Call = std::pair<std::vector<std::string>, std::string>;
    for (const auto& [call, target] :
         {Call{{"convert", Path("in.tif"), Path("out.tif")}, "out.tif"},
          Call{Simulation("out.tif", "p.png"), "out.tif"},
          Call{Simulation("out.tif", "p.png"), "p.png"}, Call{Plot("p.svg"), "p.svg"}}) {
        for (const bool dry : {false, true}) {
            WriteBytes(Path(target), "old");
            std::vector<std::string> arguments = call;
            arguments.emplace_back("--no-clobber");
            if (dry)
                arguments.emplace_back("--dry-run");
            const Outcome outcome = Run(arguments);
            EXPECT_EQ(6, outcome.exitCode) << target;
            EXPECT_NE(std::string::npos,
                      outcome.errors.find(target + ": cannot be written: it exists"))
                << outcome.errors;
            EXPECT_EQ("old", Bytes(Path(target)));
            std::filesystem::remove(Path(target));
            EXPECT_TRUE(LeftNothing());
        }
        std::vector<std::string> arguments = call;
        arguments.emplace_back("--no-clobber");
        EXPECT_EQ(0, Run(arguments).exitCode) << target;
        EXPECT_NE("", Bytes(Path(target)));
        for (const std::string& name : Files()) {
            if (name != "in.tif" && name != "pattern.txt")
                std::filesystem::remove(Path(name));
        }
    }
}

// A file without an ending may be of any kind, and a hard link is another name of the same file.
TEST_F(Outputs, AreRefusedInPlaceOfAnInputOfAnotherKind)
{
    std::filesystem::copy_file(Path("in.tif"), Path("page"));
    std::filesystem::copy_file(Path("pattern.txt"), Path("text"));
    WriteBytes(Path("tones"), "Cyan,0,0\nCyan,1,1\nCyan,2,2\nCyan,3,3\nBlack,0,0\nBlack,1,1\n");
    std::filesystem::create_hard_link(Path("page"), Path("again"));
    const std::vector<std::string> before = {Bytes(Path("page")), Bytes(Path("text")),
                                             Bytes(Path("tones"))};
    const auto simulate = [&](const std::string& out, const std::string& seen) {
        return std::vector<std::string>{"simulate", Path("text"), Path("page"),
                                        Path(out),  "--preview",  Path(seen),
                                        "-q",       "--tone",     Path("tones")};
    };
    for (const auto& [arguments, refused, kinds] :
         {std::tuple<std::vector<std::string>, std::string, std::string>{
              {"preview", Path("page"), Path("page")},
              "page",
              "as TIFF and can't be written as PNG too; name another file"},
          {{"preview", Path("page"), Path("again")}, "again", "as PNG"},
          {{"coverage", Path("page"), "--map", Path("page")}, "page", "as PNG"},
          {{"coverage", Path("again"), "--map", Path("page")},
           "page",
           "as TIFF and can't be written as PNG too; name another file"},
          {simulate("text", "seen"), "text", "as text and can't be written as TIFF"},
          {simulate("tones", "seen"), "tones", "as text"},
          {simulate("out", "page"), "page", "as TIFF and can't be written as PNG"},
          {simulate("out", "text"), "text", "as PNG"},
          {{"pattern", Path("text"), "--plot", Path("text")}, "text", "as SVG"}}) {
        for (const bool dry : {false, true}) {
            std::vector<std::string> call = arguments;
            if (dry)
                call.emplace_back("--dry-run");
            const Outcome outcome = Run(call);
            EXPECT_EQ(2, outcome.exitCode) << outcome.errors;
            EXPECT_NE(std::string::npos, outcome.errors.find(Path(refused) + ": is read as "))
                << outcome.errors;
            EXPECT_NE(std::string::npos, outcome.errors.find(kinds)) << outcome.errors;
        }
    }
    EXPECT_EQ(before, (std::vector<std::string>{Bytes(Path("page")), Bytes(Path("text")),
                                                Bytes(Path("tones"))}));
    EXPECT_EQ((std::vector<std::string>{"again", "in.tif", "page", "pattern.txt", "text", "tones"}),
              Files());
    // A new version of a file is no other kind.
    EXPECT_TRUE(EndedSilently(Run({"convert", Path("page"), Path("page"), "--bits", "16"})));
}

// Between the check and the end of the work somebody else may have written the file.
TEST_F(Outputs, ThatCameToBeMeanwhileAreKeptToo)
{
    for (const bool noClobber : {false, true}) {
        const std::string path = Path("late.tif");
        {
            Client::AtomicOutput output(path, {FileKind::Tiff, noClobber});
            output.Write("new");
            WriteBytes(path, "old");
            if (noClobber)
                EXPECT_THROW(output.Commit(), Client::Failure);
            else
                output.Commit();
        }
        EXPECT_EQ(noClobber ? "old" : "new", Bytes(path));
        std::filesystem::remove(path);
        EXPECT_TRUE(LeftNothing());
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
