#include "tools/pelkraft/page_inks.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/ink_names.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

std::string NameOf(const Channel& channel, std::size_t index, const TiffPicture& picture)
{
    if (!channel.extra && picture.photometric != PHOTOMETRIC_SEPARATED)
        return "Black";
    return channel.name.empty() ? NumberedName(index) : channel.name;
}

std::string Names(const std::vector<PageInk>& inks)
{
    std::string names;
    for (const PageInk& ink : inks)
        names.append(names.empty() ? "" : ", ").append(ink.name);
    return names;
}

} // namespace

void RefuseOtherColours(const TiffPicture& picture, const std::string& path)
{
    if (!IsPageOfInks(picture.photometric))
        throw Failure(ExitCode::Unsupported, path,
                      "holds " + PhotometricName(picture.photometric) +
                          "; supported are pages of inks: separated, MinIsWhite and MinIsBlack; a "
                          "program that knows colour profiles makes inks of it");
}

std::vector<PageInk> ReadPageInks(const TiffFile& file, const TiffPicture& picture)
{
    RefuseOtherColours(picture, file.Path());
    const std::vector<Channel> channels = ReadChannels(file, picture);
    std::vector<PageInk> inks;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (channels[i].ink)
            inks.push_back({NameOf(channels[i], i, picture), i});
    }
    return inks;
}

void SortByPrintOrder(std::vector<PageInk>& inks, const std::vector<std::string>& order,
                      const std::string& path)
{
    auto place = inks.begin();
    for (const std::string& name : order) {
        const auto isMeant = [&](const PageInk& ink) {
            return PlainInkName(ink.name) == PlainInkName(name);
        };
        const auto found = std::find_if(place, inks.end(), isMeant);
        if (found == inks.end()) {
            const bool again = std::any_of(inks.begin(), place, isMeant);
            throw Failure(ExitCode::Usage, path,
                          (again ? "--print-order names the ink \"" + name + "\" again"
                                 : "has no ink \"" + name + "\", which --print-order names") +
                              "; its inks are " + Names(inks));
        }
        // Those between keep their order.
        std::rotate(place, found, std::next(found));
        ++place;
    }
}

std::vector<InkLayer> LayersOf(const std::vector<PageInk>& inks, const InkTable& table,
                               const LookWarnings& warnings)
{
    std::vector<InkLayer> layers;
    for (const PageInk& ink : inks) {
        const InkLook look = LookOfInk(ink.name, table);
        layers.push_back({ink.sample, look});
        if (!IsKnownInk(ink.name, table) && warnings.told.insert(ink.name).second)
            PrintWarning(warnings.path, "the look of ink \"" + ink.name +
                                            "\" isn't known; it is shown as " +
                                            HexWords(look.colour) + "; " +
                                            warnings.advice(ink.name) + " gives it its own");
    }
    return layers;
}

} // namespace zvk::Pelkraft::Client
