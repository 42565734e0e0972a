#include "tools/pelkraft/image_options.h"

#include "tools/pelkraft/failure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <map>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

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

void VisitPages(const TiffFile& file, const PageChoice& pages,
                const std::function<void(int page)>& visit)
{
    int page = 0;
    do {
        ++page;
        if (pages.Takes(page))
            visit(page);
    } while (page != pages.Last() && file.NextPage(page));
    if (page < pages.Last())
        throw Failure(ExitCode::Usage, file.Path(),
                      "has no page " + std::to_string(pages.Last()) + "; its last one is " +
                          std::to_string(page));
    file.FirstPage();
}

void AddInputOptions(CLI::App& verb, InputOptions& input)
{
    verb.add_option_function<std::string>(
            "--page", [&input](const std::string& words) { input.pages = PageChoice(words); },
            "Pages to take: all, or numbers and ranges as in 1,3-5")
        ->default_str("all");
    const std::map<std::string, Polarity> polarities = {
        {"auto", Polarity::Auto}, {"ink-high", Polarity::InkHigh}, {"ink-low", Polarity::InkLow}};
    verb.add_option_function<std::string>(
            "--polarity",
            [&input, polarities](const std::string& name) { input.polarity = polarities.at(name); },
            "Whether high samples are much ink; auto asks the page's photometric kind")
        ->check(CLI::IsMember({"auto", "ink-high", "ink-low"}))
        ->default_str("auto");
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
