#include "tools/pelkraft/ink_range.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

std::string Words(const DotRange& range)
{
    return std::to_string(range.none) + ',' + std::to_string(range.full);
}

// Samples of other kinds are numbers, or differences.
bool HasAmounts(std::uint16_t photometric)
{
    return IsGray(photometric) || photometric == PHOTOMETRIC_SEPARATED ||
           photometric == PHOTOMETRIC_RGB;
}

// Plans one page: the old codes, the new ones, the work between them, and the tags.
class RangePlanner
{
public:
    RangePlanner(const TiffFile& newFile, const TiffPicture& newPicture,
                 const InputOptions& newInput, const RangeRequest& newRequest)
        : file(newFile), picture(newPicture), input(newInput), request(newRequest),
          highest((1 << picture.bits) - 1), newHighest((1 << request.newBits) - 1),
          separated(picture.photometric == PHOTOMETRIC_SEPARATED),
          oldTag(ReadRangeTag(file, picture)),
          unequal(separated && !input.dotRange && HasUnequalRanges(file, picture))
    {}

    InkRange Plan()
    {
        range.photometric = picture.photometric;
        if (HasAmounts(picture.photometric)) {
            ReadCodes();
            PlanPolarity();
            PlanCodes();
        } else {
            LoseOptions();
        }
        PlanWork();
        PlanTag();
        return range;
    }

private:
    // Without an option about the range, a tag without sense is no reason to refuse the page.
    void ReadCodes()
    {
        InputOptions options = input;
        const bool plain = !input.dotRange && !unequal && input.rangeWork == RangeWork::Keep;
        if (plain && separated && oldTag && !HasSense(*oldTag)) {
            options.dotRange = DotRange{0, highest};
            LeaveSenseless();
        }
        if (unequal && input.rangeWork == RangeWork::Full)
            channelCodes = ReadChannelCodes(file, picture, input);
        else if (unequal)
            LeaveUnequal(options);
        range.old = channelCodes.empty() ? ReadInkCodes(file, picture, options) : channelCodes[0];
    }

    // No tag that can be written says it of the new page.
    void LeaveUnequal(InputOptions& options)
    {
        if (input.rangeWork == RangeWork::Scale)
            throw Failure(ExitCode::Unsupported, file.Path(),
                          "has a dot range for each channel, and one for all is written; supported "
                          "is --dot-range full");
        options.dotRange = DotRange{0, highest};
        range.losses.push_back("DotRange is not kept: it has a pair for each channel, and one for "
                               "all is written; --dot-range full maps each channel to all samples");
        oldTag.reset();
    }

    // It stays as it is where nothing else changes.
    void LeaveSenseless()
    {
        const bool same = picture.bits == request.newBits && !request.invert;
        if (same && input.polarity == Polarity::Auto)
            range.tag = oldTag;
        else
            range.losses.push_back("DotRange " + Words(*oldTag) +
                                   " is not kept: it is empty or exceeds the samples");
        oldTag.reset();
    }

    bool HasSense(const DotRange& tag) const
    {
        return tag.none != tag.full && tag.none <= highest && tag.full <= highest;
    }

    void PlanPolarity()
    {
        if (input.polarity == Polarity::Auto || separated)
            return;
        const bool inkHigh = input.polarity == Polarity::InkHigh;
        if (IsGray(picture.photometric))
            range.photometric = inkHigh ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
        else if (inkHigh)
            range.losses.push_back("--polarity ink-high is not kept: no tag says it of a page of " +
                                   PhotometricName(picture.photometric));
    }

    int AtNewDepth(int code) const
    {
        return SampleLine{0, highest, 0, newHighest}.At(code, newHighest);
    }

    void PlanCodes()
    {
        range.fresh = {AtNewDepth(range.old.none), AtNewDepth(range.old.full)};
        if (input.rangeWork == RangeWork::Full) {
            const bool inkHigh = separated || range.old.InkIsHigh();
            range.fresh = {inkHigh ? 0 : newHighest, inkHigh ? newHighest : 0};
        }
        if (range.fresh.none != range.fresh.full)
            return;
        const std::string words = "the dot range " + Words({range.old.none, range.old.full}) +
                                  " has no room in " + std::to_string(request.newBits) +
                                  (request.newBits == 1 ? " bit" : " bits");
        if (input.rangeWork == RangeWork::Scale)
            throw Failure(ExitCode::Unsupported, file.Path(),
                          words + "; supported is --dot-range full");
        range.losses.push_back("DotRange is not kept: " + words);
    }

    void LoseOptions()
    {
        const std::string page = " says nothing of a page of " + PhotometricName(range.photometric);
        if (input.polarity != Polarity::Auto)
            range.losses.push_back("--polarity" + page);
        if (input.dotRange || input.rangeWork != RangeWork::Keep)
            range.losses.push_back("--dot-range" + page);
        range.old = {0, highest};
        range.fresh = {0, newHighest};
    }

    void PlanWork()
    {
        const bool sameDepth = picture.bits == request.newBits;
        if (sameDepth && HasAmounts(picture.photometric) && input.rangeWork == RangeWork::Scale)
            range.losses.push_back("--dot-range scale moves no sample: it maps " +
                                   Words({range.old.none, range.old.full}) +
                                   " to the same range at the new depth, which is the old one; "
                                   "--dot-range full maps it to all samples");
        const bool mapped = HasAmounts(picture.photometric) && input.rangeWork != RangeWork::Keep &&
                            (!sameDepth || range.fresh != range.old || unequal);
        SampleLine line = {range.old.none, range.old.full, range.fresh.none, range.fresh.full};
        // The library would turn all samples.
        const bool turned =
            request.invert && std::count(request.inks.begin(), request.inks.end(), false) > 0;
        if (!mapped)
            line = {0, highest, 0, newHighest};
        if (request.invert) {
            range.fresh = {newHighest - range.fresh.none, newHighest - range.fresh.full};
            line.newNone = newHighest - line.newNone;
            line.newFull = newHighest - line.newFull;
        }
        if (mapped || turned)
            range.lines = LinesOf(line);
        else
            range.invert = request.invert;
    }

    SampleLines LinesOf(const SampleLine& ink) const
    {
        SampleLines lines;
        for (std::size_t i = 0; i < request.inks.size(); ++i) {
            lines.push_back(request.inks[i] ? ink : SampleLine{0, highest, 0, newHighest});
            if (request.inks[i] && !channelCodes.empty()) {
                lines[i].none = channelCodes[i].none;
                lines[i].full = channelCodes[i].full;
            }
        }
        return lines;
    }

    void PlanTag()
    {
        if (separated)
            PlanInkTag();
        else
            PlanOtherTag();
        if (request.invert)
            TurnMeaning();
    }

    void PlanInkTag()
    {
        const bool whole = range.fresh == InkCodes{0, newHighest};
        const bool told = oldTag || input.dotRange || !whole || input.rangeWork != RangeWork::Keep;
        if (told && range.fresh.none != range.fresh.full)
            range.tag = DotRange{range.fresh.none, range.fresh.full};
        range.empty = range.fresh.InkIsHigh() ? 0 : range.fresh.none;
    }

    // The tag means nothing on other pages, so that it stays where all samples stay.
    void PlanOtherTag()
    {
        if (HasAmounts(picture.photometric))
            range.empty = range.fresh.none;
        const bool asked = range.old != InkCodes{0, highest} && range.old != InkCodes{highest, 0};
        if (asked && input.rangeWork != RangeWork::Full)
            range.losses.push_back("--dot-range is not kept: only pages of separated inks have the "
                                   "tag");
        if (oldTag && (picture.bits != request.newBits || request.invert || range.lines))
            range.losses.push_back("DotRange is not kept: the samples change");
        else
            range.tag = oldTag;
    }

    void TurnMeaning()
    {
        if (IsGray(range.photometric))
            range.photometric = range.photometric == PHOTOMETRIC_MINISBLACK
                                    ? PHOTOMETRIC_MINISWHITE
                                    : PHOTOMETRIC_MINISBLACK;
        else if (!separated)
            range.losses.push_back("--invert makes a negative: no tag turns the meaning of a page "
                                   "of " +
                                   PhotometricName(range.photometric));
    }

    const TiffFile& file;
    const TiffPicture& picture;
    const InputOptions& input;
    RangeRequest request;
    int highest;
    int newHighest;
    bool separated;
    std::optional<DotRange> oldTag;
    // Each channel has a range of its own.
    bool unequal;
    // They are read where each is mapped to all samples.
    std::vector<InkCodes> channelCodes;
    InkRange range;
};

} // namespace

bool IsGray(std::uint16_t photometric)
{
    return photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_MINISBLACK;
}

InkRange PlanInkRange(const TiffFile& file, const TiffPicture& picture, const InputOptions& input,
                      const RangeRequest& request)
{
    return RangePlanner(file, picture, input, request).Plan();
}

} // namespace zvk::Pelkraft::Client
