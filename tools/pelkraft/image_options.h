#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zvk::Pelkraft::Client {

// Some pages of a file, counted from 1.
class PageChoice
{
public:
    // Reads "all", or numbers and ranges: "1,3-5". Anything else is wrong usage.
    explicit PageChoice(const std::string& words);

    bool Takes(int page) const;
    // The last page that was named; 0 for all.
    int Last() const;

private:
    std::vector<std::pair<int, int>> ranges;
};

// Visits the chosen pages in the order of the file, which stands at each in its turn, and at its
// first page afterwards. A chosen page that the file lacks is wrong usage.
void VisitPages(const TiffFile& file, const PageChoice& pages,
                const std::function<void(int page)>& visit);

enum class Polarity
{
    // The photometric kind tells.
    Auto,
    InkHigh,
    InkLow,
};

// The samples of no ink and of full ink, where ink is high.
struct DotRange
{
    int none = 0;
    int full = 0;
};

// The ways that a range of dots may go where samples of inks are written as such again.
enum class RangeWork
{
    // Samples stay; the range follows the depth.
    Keep,
    // Samples are mapped from the range to the range at the new depth.
    Scale,
    // Samples are mapped from the range to all that the new depth has.
    Full,
};

// Tells how a picture is to be read.
struct InputOptions
{
    std::string path;
    PageChoice pages = PageChoice("all");
    Polarity polarity = Polarity::Auto;
    // Stands for the range of the page's tags.
    std::optional<DotRange> dotRange;
    RangeWork rangeWork = RangeWork::Keep;
    // Bytes of a pipe that may be kept in a file.
    std::uint64_t spoolLimit = Spool().limit;
};

// Opens the file; a pipe is kept in the folder of what is to be written, if a path of it is given.
TiffFile OpenInput(const InputOptions& input, const std::string& outputPath = {});

// Tells how a picture is to be written.
struct OutputOptions
{
    std::string path;
    // A compression of libtiff; without one it is that of the old picture.
    std::optional<std::uint16_t> compression;
    // A file that exists is refused.
    bool noClobber = false;

    bool IsPipe() const { return path == standardStream; }
};

// A verb that writes no samples of the kind that it reads has no work on their range.
enum class RangeWords
{
    All,
    ReadingAlone,
};

// Each adds its options to a verb: --page, --polarity, --dot-range and --spool-limit; --compress
// and --no-clobber. The options take their values when the command line is parsed.
void AddInputOptions(CLI::App& verb, InputOptions& input, RangeWords words = RangeWords::All);
void AddOutputOptions(CLI::App& verb, OutputOptions& output);

} // namespace zvk::Pelkraft::Client
