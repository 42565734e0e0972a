#include "pattern/pattern_words.h"
#include "tools/pelkraft/check_rule_list.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/near_names.h"
#include "tools/pelkraft/plate_names.h"

#include <tiffio.h>

#include <algorithm>
#include <map>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint64_t processInks = 4;

void Add(CheckFindings& findings, const CheckedPage& page, const char* tag, std::string found,
         std::string expected, std::string advice)
{
    findings.push_back(
        {0, page.page, tag, std::move(found), std::move(expected), std::move(advice)});
}

std::string RangeText(const std::vector<std::uint64_t>& range)
{
    std::string text;
    for (const std::uint64_t number : range)
        text.append(text.empty() ? "" : ",").append(std::to_string(number));
    return text;
}

// Whether low samples are much ink, by the photometric kind alone.
bool IsLow(const CheckedPage& page)
{
    return page.photometric == PHOTOMETRIC_MINISBLACK;
}

bool HasPolarity(const CheckedPage& page)
{
    return page.IsSeparated() || page.photometric == PHOTOMETRIC_MINISBLACK ||
           page.photometric == PHOTOMETRIC_MINISWHITE;
}

std::string KindOf(const CheckedPage& page)
{
    return page.IsSeparated() ? "Separated" : IsLow(page) ? "MinIsBlack" : "MinIsWhite";
}

} // namespace

void CheckInkNames(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    if (!page.IsSeparated())
        return;
    const std::uint64_t inks = page.CountInks();
    const bool named = page.inkNames.has_value();
    if (!named && (page.inkSet.value_or(INKSET_CMYK) == INKSET_MULTIINK || inks > processInks)) {
        Add(findings, page, "InkNames", "none", Counted(inks, "name", "names"),
            "name the inks: pelkraft join does, from a plate for each");
        return;
    }
    if (!named)
        return;
    if (page.inkNames->size() != inks)
        Add(findings, page, "InkNames", Counted(page.inkNames->size(), "name", "names"),
            std::to_string(inks) +
                (page.numberOfInks ? ", as NumberOfInks says" : ", as there are channels of inks"),
            "name every ink once, in the order of the channels");
    if (std::count(page.inkNames->begin(), page.inkNames->end(), std::string()) > 0)
        Add(findings, page, "InkNames", "an empty name", "a name for each ink",
            "name every ink once, in the order of the channels");
}

void CheckNumberOfInks(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    if (!page.numberOfInks || !page.IsSeparated())
        return;
    // Inks beyond the fourth may be announced as extra samples too.
    const std::uint64_t least =
        page.channels - std::min<std::uint64_t>(page.channels, page.extraKinds.size());
    if (*page.numberOfInks >= least && *page.numberOfInks <= page.channels)
        return;
    const std::string most = std::to_string(page.channels);
    Add(findings, page, "NumberOfInks", std::to_string(*page.numberOfInks),
        least == page.channels
            ? most + ", as SamplesPerPixel says"
            : std::to_string(least) + " to " + most + ", by SamplesPerPixel and ExtraSamples",
        "correct the number, or the tags that count the channels");
}

void CheckInkSet(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    if (!page.IsSeparated())
        return;
    const std::uint64_t set = page.inkSet.value_or(INKSET_CMYK);
    const std::string found = page.inkSet ? std::to_string(set) : "none, which means 1, CMYK";
    const std::uint64_t inks = page.CountInks();
    if (set != INKSET_CMYK && set != INKSET_MULTIINK)
        Add(findings, page, "InkSet", found, "1 for CMYK, or 2 for other inks", "correct the tag");
    else if (set == INKSET_CMYK && inks != processInks)
        Add(findings, page, "InkSet", found + " with " + Counted(inks, "ink", "inks"),
            "2, which is for other inks than CMYK", "set it to 2, and name the inks");
    else if (set == INKSET_CMYK && page.inkNames && page.inkNames->size() == processInks &&
             !AreProcessInks(*page.inkNames))
        Add(findings, page, "InkSet", found + " with inks of other names",
            "2, which is for other inks than CMYK", "set it to 2, or correct the names");
}

void CheckDuplicates(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    if (!page.inkNames)
        return;
    std::map<std::string, std::size_t> places;
    for (std::size_t ink = 0; ink < page.inkNames->size(); ++ink) {
        const std::string& name = (*page.inkNames)[ink];
        const auto [earlier, added] = places.emplace(UpperCase(name), ink);
        if (!added && !name.empty())
            Add(findings, page, "InkNames",
                Quoted(name) + " for channels " + std::to_string(earlier->second) + " and " +
                    std::to_string(ink),
                "a name of its own for each ink", "rename one of them");
    }
}

void CheckSpelling(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    if (!page.inkNames)
        return;
    // A name that is near to one that is there already is another ink: Lack is varnish.
    std::vector<std::string> missing;
    for (const char* ink : {"Cyan", "Magenta", "Yellow", "Black"}) {
        if (std::none_of(
                page.inkNames->begin(), page.inkNames->end(),
                [ink](const std::string& name) { return UpperCase(name) == UpperCase(ink); }))
            missing.emplace_back(ink);
    }
    for (const std::string& name : *page.inkNames) {
        const std::string near = NearestName(name, missing);
        if (!near.empty() && UpperCase(near) != UpperCase(name))
            Add(findings, page, "InkNames", Quoted(name), near,
                "correct the name if that ink is meant");
    }
}

void CheckDotRange(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    if (!page.dotRange)
        return;
    const std::vector<std::uint64_t>& range = *page.dotRange;
    if (range.size() != 2 && range.size() != 2 * page.channels) {
        Add(findings, page, "DotRange", Counted(range.size(), "number", "numbers"),
            "2, or 2 for each channel", "give the samples of no ink and of full ink");
        return;
    }
    const std::uint64_t highest = page.HighestSample();
    const std::uint64_t top = *std::max_element(range.begin(), range.end());
    const std::string most = std::to_string(highest);
    if (top > highest)
        Add(findings, page, "DotRange", RangeText(range),
            "at most " + most + ", the highest sample",
            "set it to the samples of no ink and of full ink: 0," + most);
    else if (page.bits == 16 && top <= 255)
        Add(findings, page, "DotRange", RangeText(range) + ", as of 8 bits",
            "a range of 16 bits, up to " + most,
            "set it to the samples of no ink and of full ink: 0," + most);
    for (std::size_t i = 0; i + 1 < range.size(); i += 2) {
        if (range[i] == range[i + 1]) {
            Add(findings, page, "DotRange", RangeText(range), "two different samples",
                "set it to the samples of no ink and of full ink: 0," + most);
            break;
        }
    }
}

void CheckPolarity(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings)
{
    if (page.IsSeparated() && page.dotRange && page.dotRange->size() >= 2 &&
        (*page.dotRange)[0] > (*page.dotRange)[1])
        Add(findings, page, "DotRange", RangeText(*page.dotRange) + ", so that low is much ink",
            "a rising range on a page of separated inks",
            "turn the samples and the tag by pelkraft convert --invert");
    if (!page.IsSeparated() && (page.inkNames || page.numberOfInks || page.inkSet))
        Add(findings, page, "PhotometricInterpretation",
            std::to_string(page.photometric) + " with tags of inks", "5, separated inks",
            "correct the photometric kind, or remove the tags of inks");
    if (HasPolarity(page) && HasPolarity(first) && IsLow(page) != IsLow(first))
        Add(findings, page, "PhotometricInterpretation",
            KindOf(page) + ", where page 1 is " + KindOf(first),
            "the same meaning of high samples on all pages",
            "give --polarity for each page, or turn one by pelkraft convert --invert");
}

} // namespace zvk::Pelkraft::Client
