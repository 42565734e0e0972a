#include "tools/pelkraft/plate_set.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/plate_names.h"

#include <algorithm>
#include <map>

namespace zvk::Pelkraft::Client {
namespace {

std::vector<std::string> InksOf(const PlateGroup& group)
{
    std::vector<std::string> inks;
    for (const PlateArgument& plate : group)
        inks.push_back(plate.ink);
    return inks;
}

// A plate without a page could be of any.
bool MayBeOfOnePage(const PlateArgument& one, const PlateArgument& other)
{
    return one.page.empty() || other.page.empty() || one.page == other.page;
}

// Plates of one ink need pages of their own. Answers whether there are any.
bool CheckTwins(const std::vector<PlateArgument>& plates)
{
    std::map<std::string, std::vector<const PlateArgument*>> byInk;
    for (const PlateArgument& plate : plates) {
        std::vector<const PlateArgument*>& earlier = byInk[plate.ink];
        for (const PlateArgument* twin : earlier) {
            if (MayBeOfOnePage(*twin, plate))
                throw Failure(ExitCode::Usage, plate.path,
                              "is a second plate of ink " + Quoted(plate.ink) + " beside " +
                                  twin->path +
                                  ", and no name of a page tells them apart; leave one out, give "
                                  "it another ink by NAME=PLATE, or name the pages as in "
                                  "page1(Cyan).tif");
        }
        earlier.push_back(&plate);
    }
    return byInk.size() < plates.size();
}

void RefusePlatesOfNoPage(const std::vector<PlateArgument>& plates)
{
    for (const PlateArgument& plate : plates) {
        if (plate.page.empty())
            throw Failure(ExitCode::Usage, plate.path,
                          "names no page, and the other plates are of several; name it as in "
                          "page1(Cyan).tif");
    }
}

// Pages in the order of their numbers.
std::vector<PlateGroup> GroupByPage(const std::vector<PlateArgument>& plates)
{
    std::map<std::string, PlateGroup, bool (*)(const std::string&, const std::string&)> pages(
        NumbersBefore);
    for (const PlateArgument& plate : plates)
        pages[plate.page].push_back(plate);
    std::vector<PlateGroup> groups;
    for (auto& [page, group] : pages)
        groups.push_back(std::move(group));
    return groups;
}

// Both in the order of their inks.
void RefuseOtherInks(const PlateGroup& first, const PlateGroup& group)
{
    const std::vector<std::string> wanted = InksOf(first);
    const std::vector<std::string> found = InksOf(group);
    for (std::size_t i = 0; i < std::max(wanted.size(), found.size()); ++i) {
        if (i < found.size() && std::find(wanted.begin(), wanted.end(), found[i]) == wanted.end())
            throw Failure(ExitCode::Usage, group[i].path,
                          "is a plate of ink " + Quoted(found[i]) + ", which the page of " +
                              first[0].path + " lacks; every page needs the same inks");
        if (i < wanted.size() && std::find(found.begin(), found.end(), wanted[i]) == found.end())
            throw Failure(ExitCode::Usage, group[0].path,
                          "comes without a plate of ink " + Quoted(wanted[i]) + ", which " +
                              first[i].path + " is; every page needs the same inks");
    }
}

PlateGroup Ordered(const PlateGroup& group, const std::string& list)
{
    PlateGroup ordered;
    for (const std::size_t plate : PlateOrder(InksOf(group), list))
        ordered.push_back(group[plate]);
    return ordered;
}

} // namespace

PlateArgument ReadPlateArgument(const std::string& argument)
{
    const std::size_t equals = argument.find('=');
    const std::size_t slash = argument.find_first_of("/\\");
    PlateArgument plate = {argument, {}, {}, {}};
    if (equals != std::string::npos && (slash == std::string::npos || equals < slash)) {
        plate.ink = argument.substr(0, equals);
        plate.path = argument.substr(equals + 1);
    } else if (const auto name = ReadPlateName(argument)) {
        plate.ink = name->ink;
        plate.base = name->base;
        plate.page = name->page;
    }
    if (plate.ink.empty() || plate.path.empty())
        throw Failure(ExitCode::Usage, argument,
                      "tells no ink; leave it out if it shows all inks together, as tiffsep's "
                      "page.tif does; plates have names such as page(Cyan).tif and page.Cyan.tif, "
                      "and Cyan=PLATE names any other");
    if (plate.ink.find('\0') != std::string::npos)
        throw Failure(ExitCode::Usage, argument,
                      "names an ink with a zero byte, which no TIFF file can hold");
    return plate;
}

std::vector<PlateGroup> GroupPlates(const std::vector<PlateArgument>& plates,
                                    const std::string& list)
{
    std::vector<PlateGroup> groups = {plates};
    if (CheckTwins(plates)) {
        RefusePlatesOfNoPage(plates);
        groups = GroupByPage(plates);
    }
    for (PlateGroup& group : groups) {
        group = Ordered(group, list);
        RefuseOtherInks(groups[0], group);
    }
    return groups;
}

std::vector<TiffFile> OpenPlates(const PlateGroup& group, const Spool& spool)
{
    std::vector<TiffFile> files;
    std::uint64_t pages = 0;
    for (const PlateArgument& plate : group) {
        files.push_back(TiffFile::OpenForReading(plate.path, spool));
        const std::uint64_t found = TIFFNumberOfDirectories(files.back().Get());
        if (&plate != &group[0] && found != pages)
            throw Failure(ExitCode::BadInput, plate.path,
                          "has " + Counted(found, "page", "pages") + ", and " + group[0].path +
                              " has " + std::to_string(pages) + "; plates need the same number");
        pages = found;
    }
    return files;
}

} // namespace zvk::Pelkraft::Client
