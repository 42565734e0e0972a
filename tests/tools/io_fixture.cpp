#include "tests/tools/io_fixture.h"

#include "tests/tools/pattern_texts.h"

#include <regex>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A program with sanitizers takes its time to start.
#if defined(PELKRAFT_SANITIZED)
constexpr long sampledFactor = 8;
#else
constexpr long sampledFactor = 2;
#endif

// Cyan and black.
FileForm TwoInks()
{
    FileForm form;
    form.photometric = PHOTOMETRIC_SEPARATED;
    form.setTags = [](TIFF* tiff) {
        constexpr char names[] = "Cyan\0Black";
        TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
        TIFFSetField(tiff, TIFFTAG_INKNAMES, static_cast<int>(sizeof names), names);
    };
    return form;
}

// Many strips, so that there are many calls, and a profile too long for the directory itself.
FileForm StripsWithProfile()
{
    FileForm form;
    form.photometric = PHOTOMETRIC_RGB;
    form.setTags = [](TIFF* tiff) {
        const std::string profile(500, 'p');
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, 500, profile.data());
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, "a picture of the tests");
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 150.0);
    };
    return form;
}

} // namespace

IoFixture::IoFixture()
{
    MakeInputs();
    const std::string out = Path("out.tif");
    const auto convert = [&](const std::string& name, const std::string& input,
                             std::vector<std::string> options) {
        std::vector<std::string> arguments = {"convert", Path(input), out};
        arguments.insert(arguments.end(), options.begin(), options.end());
        uses.push_back({name, arguments, {"out.tif"}});
    };
    convert("plain", "pages.tif", {"--layout", "planar", "--threads", "1", "--explain"});
    convert("threads", "pages.tif", {"--bits", "16", "--mirror", "--threads", "3"});
    convert("several_steps", "bits.tif",
            {"--channels", "2,-,0", "--repeat", "2", "--layout", "interleaved"});
    convert("tiles", "tiles.tif", {"--bits", "1", "--threads", "2"});
    convert("long_strip", "long.tif", {"--layout", "planar"});
    convert("long_planes", "planes.tif", {"--layout", "interleaved"});
    uses.push_back({"through_a_link",
                    {"convert", Path("pages.tif"), Path("link.tif"), "--mirror"},
                    {"linked.tif"}});
    uses.push_back({"simulate",
                    {"simulate", Path("pattern.txt"), Path("inks.tif"), out, "--threads", "2",
                     "--preview", Path("seen.png"), "--explain"},
                    {"out.tif", "seen.png"}});
    uses.push_back(
        {"plot", {"pattern", Path("pattern.txt"), "--plot", Path("plot.svg")}, {"plot.svg"}});
    uses.push_back({"json", {"pattern", Path("pattern.txt"), "--json"}, {}});
    uses.push_back({"help", {"convert", "--help"}, {}});
}

void IoFixture::MakeInputs() const
{
    WriteBytes(Path("pattern.txt"), smallPattern);
    WriteTiffPages(Path("pages.tif"), {RandomImage(40, 30, 3, 8, 1), RandomImage(30, 20, 3, 8, 2)},
                   StripsWithProfile());
    FileForm form;
    form.separate = true;
    form.compression = COMPRESSION_LZW;
    WriteTiff(Path("bits.tif"), RandomImage(50, 20, 3, 1, 3), form);
    form = {};
    form.tile = 16;
    form.compression = COMPRESSION_ADOBE_DEFLATE;
    WriteTiff(Path("tiles.tif"), RandomImage(40, 40, 2, 8, 4), form);
    WriteTiff(Path("inks.tif"), RandomImage(60, 40, 2, 8, 5), TwoInks());
    // Strips that are too long to be held whole.
    form = {};
    form.rowsPerStrip = 2300;
    form.compression = COMPRESSION_ADOBE_DEFLATE;
    WriteTiff(Path("long.tif"), BlankImage(2000, 2300, 2, 8), form);
    form.separate = true;
    WriteTiff(Path("planes.tif"), BlankImage(2000, 2300, 2, 8), form);
    std::filesystem::create_symlink("linked.tif", Path("link.tif"));
}

void IoFixture::PrepareTargets(const ToolUse& use, bool withOld) const
{
    for (const std::string& target : use.targets) {
        if (withOld)
            WriteBytes(Path(target), "old " + target);
        else
            std::filesystem::remove(Path(target));
    }
}

FolderState IoFixture::State() const
{
    FolderState state;
    for (const std::string& name : Files()) {
        state[name] = std::filesystem::is_symlink(Path(name))
                          ? "link to " + std::filesystem::read_symlink(Path(name)).string()
                          : Bytes(Path(name));
    }
    return state;
}

Subprocess IoFixture::Start(const ToolUse& use, const std::string& failing) const
{
    std::vector<std::string> command = {PELKRAFT_TOOL};
    command.insert(command.end(), use.arguments.begin(), use.arguments.end());
    const std::string calls = folder + "/streams/calls";
    return Subprocess(command, folder + "/streams", [=] {
        setenv("LD_PRELOAD", PELKRAFT_FAILING_CALLS, 1);
        setenv("PELKRAFT_CALLS", calls.c_str(), 1);
        if (!failing.empty())
            setenv("PELKRAFT_FAIL", failing.c_str(), 1);
    });
}

std::map<std::string, long> IoFixture::Calls() const
{
    std::map<std::string, long> calls;
    std::ifstream file(folder + "/streams/calls");
    std::string name;
    for (long count = 0; file >> name >> count;)
        calls[name] = count;
    return calls;
}

std::vector<long> CallNumbers(long count)
{
    const bool whole = std::getenv("PELKRAFT_TEST_FULL") != nullptr;
    std::vector<long> numbers;
    for (long number = 1; number < count; number = whole ? number + 1 : number * sampledFactor)
        numbers.push_back(number);
    if (count > 0)
        numbers.push_back(count);
    return numbers;
}

std::string WithoutTimes(const std::string& output)
{
    static const std::regex time("in [0-9.]+ s, [0-9]+ rows per second");
    return std::regex_replace(output, time, "in its time");
}

::testing::AssertionResult IsOldOrNew(const FolderState& state, const FolderState& before,
                                      const FolderState& after)
{
    const auto agrees = [&](const std::string& name, const FolderState& with) {
        const auto here = state.find(name);
        const auto there = with.find(name);
        if (here == state.end() || there == with.end())
            return here == state.end() && there == with.end();
        return here->second == there->second;
    };
    FolderState names = state;
    names.insert(before.begin(), before.end());
    for (const auto& [name, bytes] : names) {
        if (!agrees(name, before) && !agrees(name, after))
            return ::testing::AssertionFailure()
                   << name << " has " << bytes.size() << " bytes that are neither old nor new";
    }
    return ::testing::AssertionSuccess();
}

} // namespace zvk::Pelkraft::TestSupport
