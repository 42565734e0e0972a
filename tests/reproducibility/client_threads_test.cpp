#include "tests/reproducibility/golden_cases.h"
#include "tests/support/naive_conversion.h"
#include "tests/tools/tool_fixture.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <cstdlib>

// The program's files on 1 to 16 threads against the naive references, on pictures of one band
// and of several. A push takes four numbers of threads and the small picture;
// PELKRAFT_TEST_FULL=1 takes all.
namespace zvk::Pelkraft::TestSupport {
namespace {

bool TakesAll()
{
    return std::getenv("PELKRAFT_TEST_FULL") != nullptr;
}

std::vector<std::string> ThreadCounts()
{
    if (!TakesAll())
        return {"1", "2", "3", "16"};
    std::vector<std::string> counts;
    for (int count = 1; count <= 16; ++count)
        counts.push_back(std::to_string(count));
    return counts;
}

// The large one is more than the program holds at once.
std::vector<PictureSize> Sizes()
{
    if (!TakesAll())
        return {{61, 60}};
    return {{61, 60}, {1500, 1200}};
}

TiffImage ImageOf(const std::vector<Bytes>& rows, const PictureSize& size)
{
    TiffImage image;
    image.width = size.width;
    image.height = size.height;
    image.channels = static_cast<int>(rows.front().size()) / size.width;
    image.bits = 8;
    for (const Bytes& row : rows)
        image.samples.insert(image.samples.end(), row.begin(), row.end());
    return image;
}

using Samples = std::vector<unsigned>;

// Each row mirrored, with every pixel twice, in planes of 16 bits.
Samples ConvertNaively(const TiffImage& in)
{
    const NaiveGeometry from{in.width, in.channels, 8, false};
    const NaiveGeometry to{2 * in.width, in.channels, 16, true};
    const NaiveOperation mirror = RepeatBy(-2);
    Samples expected;
    const auto rowBytes = static_cast<std::ptrdiff_t>(NaiveRowBytes(from));
    for (auto row = in.samples.begin(); row != in.samples.end(); row += rowBytes) {
        const Bytes wide =
            NaiveConvert(from, Bytes(row, row + rowBytes), to, Bytes(NaiveRowBytes(to)), mirror);
        const auto samples = ReadSamples(to, wide);
        expected.insert(expected.end(), samples.begin(), samples.end());
    }
    return expected;
}

Samples SimulateNaively(const NaivePattern& pattern, const std::vector<Bytes>& rows)
{
    NaiveSimulation simulation(pattern);
    Samples expected;
    for (const Bytes& row : rows) {
        const Bytes inks = simulation.Row(row);
        expected.insert(expected.end(), inks.begin(), inks.end());
    }
    return expected;
}

// Without steps above the top, of which the program would warn.
std::vector<Bytes> MakeTamePicture(const NaivePattern& pattern, const PictureSize& size)
{
    auto rows = MakeGoldenPicture(pattern, size, 0);
    for (Bytes& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) {
            const auto& lines = pattern.inColors[i % pattern.inColors.size()].lines;
            const int top = lines.empty() ? 0 : lines.rbegin()->first;
            row[i] = static_cast<unsigned char>(std::min<int>(row[i], top));
        }
    return rows;
}

// Every engine that this processor runs and that can start at any row.
std::vector<std::string> Engines()
{
    std::vector<std::string> engines{"x86"};
    if (SystemTools::GetSseVersion() >= 3)
        engines.emplace_back("sse");
    return engines;
}

class ClientThreads : public ToolFixture
{
protected:
    // Runs the command on each number of threads; its file must always hold the same samples.
    void ExpectSamples(const std::vector<std::string>& command, const Samples& expected) const
    {
        for (const std::string& threads : ThreadCounts()) {
            SCOPED_TRACE(threads + " threads");
            std::vector<std::string> arguments = command;
            arguments.insert(arguments.end(), {"--threads", threads});
            // Oddities of the patterns are told, and leave their mark in the exit code.
            arguments.emplace_back("--quiet");
            const Outcome outcome = Run(arguments);
            ASSERT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 1) << outcome.errors;
            ASSERT_EQ(outcome.errors, "");
            const TiffImage out = Output();
            ASSERT_TRUE(std::equal(out.samples.begin(), out.samples.end(), expected.begin(),
                                   expected.end()));
        }
    }
};

TEST_F(ClientThreads, GiveTheNaiveConversion)
{
    for (const PictureSize& size : Sizes()) {
        const TiffImage in = RandomImage(size.width, size.height, 4, 8, 2029);
        WriteTiff(Path("in.tif"), in, {});
        ExpectSamples({"convert", Path("in.tif"), Path("out.tif"), "--layout", "planar", "--bits",
                       "16", "--repeat", "2", "--mirror"},
                      ConvertNaively(in));
    }
}

TEST_F(ClientThreads, GiveTheNaiveSimulation)
{
    FileForm form;
    form.photometric = PHOTOMETRIC_SEPARATED;
    for (const PictureSize& size : Sizes())
        for (const int number : {4, 5}) {
            const NaivePattern pattern = MakeGoldenPattern(number, 0);
            WriteBytes(Path("pattern.txt"), pattern.Text());
            const auto rows = MakeTamePicture(pattern, size);
            WriteTiff(Path("in.tif"), ImageOf(rows, size), form);
            const Samples expected = SimulateNaively(pattern, rows);
            for (const std::string& engine : Engines()) {
                SCOPED_TRACE(PatternName(number, 0) + ", " + engine);
                ExpectSamples({"simulate", Path("pattern.txt"), Path("in.tif"), Path("out.tif"),
                               "--levels", "raw", "--engine", engine},
                              expected);
            }
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
