#include "tools/pelkraft/image_options.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/page_warnings.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int highestSample = 65535;

[[noreturn]] void RefusePages(const std::string& words)
{
    throw Failure(ExitCode::Usage, {},
                  "--page " + words +
                      " names no pages; supported are all, and numbers from 1 and "
                      "ranges between commas: 1,3-5");
}

// Takes a number off the start of rest.
std::optional<int> TakeNumber(std::string_view& rest)
{
    int number = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error != std::errc() || number < 1)
        return std::nullopt;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return number;
}

// Reads "LO,HI".
std::optional<DotRange> ReadRange(std::string_view words)
{
    DotRange range;
    const char* const end = words.data() + words.size();
    const auto [comma, error] = std::from_chars(words.data(), end, range.none);
    if (error != std::errc() || comma == end || *comma != ',')
        return std::nullopt;
    const auto [last, secondError] = std::from_chars(comma + 1, end, range.full);
    const bool inRange = range.none >= 0 && range.full >= 0 && range.none != range.full &&
                         range.none <= highestSample && range.full <= highestSample;
    if (secondError != std::errc() || last != end || !inRange)
        return std::nullopt;
    return range;
}

void TakeRange(const std::string& words, InputOptions& input, RangeWords known)
{
    const bool all = known == RangeWords::All;
    if (words == "keep")
        input.rangeWork = RangeWork::Keep;
    else if (all && words == "scale")
        input.rangeWork = RangeWork::Scale;
    else if (all && words == "full")
        input.rangeWork = RangeWork::Full;
    else if (const std::optional<DotRange> range = ReadRange(words))
        input.dotRange = range;
    else
        throw Failure(ExitCode::Usage, {},
                      "--dot-range " + words + " is no range; supported are keep, " +
                          (all ? "scale, full, " : "") +
                          "and the samples of no ink and of full ink: 5,250");
}

// Reads a number of bytes, or of K, M or G of them.
std::uint64_t ReadSize(const std::string& words)
{
    constexpr std::string_view units = "KMG";
    std::uint64_t size = 0;
    const char* const end = words.data() + words.size();
    const auto [rest, error] = std::from_chars(words.data(), end, size);
    const std::size_t unit = rest == end ? 0 : units.find(*rest) + 1;
    const bool known = rest == end || (rest + 1 == end && unit != 0);
    const auto shift = static_cast<unsigned>(10 * unit);
    if (error != std::errc() || !known || size > std::numeric_limits<std::uint64_t>::max() >> shift)
        throw Failure(ExitCode::Usage, {},
                      "--spool-limit " + words +
                          " is no size; supported are bytes, and K, M or G of them: 500M");
    return size << shift;
}

} // namespace

PageChoice::PageChoice(const std::string& words)
{
    if (words == "all")
        return;
    std::string_view rest = words;
    for (;;) {
        const std::optional<int> first = TakeNumber(rest);
        std::optional<int> last = first;
        if (rest.starts_with('-')) {
            rest.remove_prefix(1);
            last = TakeNumber(rest);
        }
        if (!first || !last || *first > *last)
            RefusePages(words);
        ranges.emplace_back(*first, *last);
        if (rest.empty())
            return;
        if (!rest.starts_with(','))
            RefusePages(words);
        rest.remove_prefix(1);
    }
}

bool PageChoice::Takes(int page) const
{
    return ranges.empty() || std::any_of(ranges.begin(), ranges.end(), [page](const auto& range) {
               return range.first <= page && page <= range.second;
           });
}

int PageChoice::Last() const
{
    int last = 0;
    for (const auto& range : ranges)
        last = std::max(last, range.second);
    return last;
}

TiffFile OpenInput(const InputOptions& input, const std::string& outputPath)
{
    return TiffFile::OpenForReading(input.path, {outputPath, input.spoolLimit});
}

namespace {

// A failure of the file names the page, unless there is no other.
void VisitPage(const TiffFile& file, int page, const std::function<void(int page)>& visit)
{
    try {
        visit(page);
    } catch (const Failure& failure) {
        if (failure.File() != file.Path() || !file.HasSeveralPages() ||
            failure.Code() == ExitCode::Interrupted)
            throw;
        throw Failure(failure.Code(), failure.File(), PageLabel({page}) + ": " + failure.what());
    }
}

} // namespace

void VisitPages(const TiffFile& file, const PageChoice& pages,
                const std::function<void(int page)>& visit)
{
    PageWarnings warnings(file.HasSeveralPages());
    int page = 0;
    do {
        ++page;
        warnings.StartPage(page);
        if (pages.Takes(page))
            VisitPage(file, page, visit);
    } while (page != pages.Last() && file.NextPage(page));
    if (page < pages.Last())
        throw Failure(ExitCode::Usage, file.Path(),
                      "has no page " + std::to_string(pages.Last()) + "; its last one is " +
                          std::to_string(page));
    file.FirstPage();
}

void AddInputOptions(CLI::App& verb, InputOptions& input, RangeWords known)
{
    verb.add_option_function<std::string>(
            "--page", [&input](const std::string& words) { input.pages = PageChoice(words); },
            "Pages to take, in the order of the file: all, or numbers and ranges as in 1,3-5")
        ->type_name("PAGES")
        ->default_str("all");
    const std::map<std::string, Polarity> polarities = {
        {"auto", Polarity::Auto}, {"ink-high", Polarity::InkHigh}, {"ink-low", Polarity::InkLow}};
    verb.add_option_function<std::string>(
            "--polarity",
            [&input, polarities](const std::string& name) { input.polarity = polarities.at(name); },
            "Whether high samples are much ink; auto asks the page's photometric kind")
        ->check(CLI::IsMember({"auto", "ink-high", "ink-low"}))
        ->default_str("auto");
    verb.add_option_function<std::vector<std::string>>(
            "--dot-range",
            [&input, known](const std::vector<std::string>& all) {
                for (const std::string& words : all)
                    TakeRange(words, input, known);
            },
            known == RangeWords::All
                ? "Samples of no ink and of full ink, LO,HI, instead of those in the tags; and "
                  "what "
                  "becomes of them: keep lets samples stay, scale maps them to the same range at "
                  "the new depth, full to all that it has; may be given for both"
                : "Samples of no ink and of full ink, LO,HI; keep takes those in the tags")
        ->type_name("RANGE")
        ->allow_extra_args(false)
        ->default_str("keep");
    verb.add_option_function<std::string>(
            "--spool-limit",
            [&input](const std::string& words) { input.spoolLimit = ReadSize(words); },
            "Bytes of a pipe that may be kept in a file, as in 500M")
        ->type_name("SIZE")
        ->default_str("16G");
}

void AddOutputOptions(CLI::App& verb, OutputOptions& output)
{
    const std::map<std::string, std::uint16_t> kinds = {
        {"none", COMPRESSION_NONE}, {"lzw", COMPRESSION_LZW}, {"zip", COMPRESSION_ADOBE_DEFLATE}};
    verb.add_option_function<std::string>(
            "--compress",
            [&output, kinds](const std::string& name) { output.compression = kinds.at(name); },
            "Compression of the new file; without it that of the old one")
        ->check(CLI::IsMember({"none", "lzw", "zip"}));
    verb.add_flag("--no-clobber", output.noClobber, "Refuse to overwrite a file");
}

} // namespace zvk::Pelkraft::Client
