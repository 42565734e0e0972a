#include "tools/pelkraft/plan.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

using Kind = RowStep::Kind;

// The portable road unpacks the last lanes of a pixel slot alone: all of them only where the
// channels fill the slot to its last 4 bytes.
constexpr int lanesPerSlot = 16;
constexpr int lanesPerColumn = 4;

bool FillsSlot(int channels)
{
    return (channels + lanesPerSlot - 1) / lanesPerSlot * lanesPerSlot - channels < lanesPerColumn;
}

bool Unpacks(const RowStep& fill)
{
    return fill.from.bits < 8 && (fill.to.bits != fill.from.bits || fill.factor != 1);
}

class Planner
{
public:
    explicit Planner(const RowRequest& newRequest) : request(newRequest), present(newRequest.from)
    {
        map = request.map;
        factor = request.factor;
    }

    std::vector<RowStep> Plan()
    {
        if (present.woven)
            MoveTo(Kind::Split, PlanesOf(present));
        const RowShape last = request.to.woven ? PlanesOf(request.to) : request.to;
        const bool depthChanges = present.bits != last.bits;
        if (depthChanges && request.tones == Tones::Scale && (present.bits < 8 || last.bits < 8))
            ScaleTo(last);
        else
            FillTo(last, depthChanges && last.bits < 8);
        if (request.to.woven)
            MoveTo(Kind::Weave, request.to);
        RefuseLongRows();
        return std::move(steps);
    }

private:
    static RowShape PlanesOf(RowShape shape)
    {
        shape.woven = false;
        shape.planar = true;
        return shape;
    }

    RowStep& Add(Kind kind, const RowShape& to)
    {
        RowStep& step = steps.emplace_back();
        step.kind = kind;
        step.from = present;
        step.to = to;
        return step;
    }

    void MoveTo(Kind kind, const RowShape& to)
    {
        Add(kind, to);
        present = to;
    }

    void ChangeTones(Kind kind, int levelBits) { Add(kind, present).levelBits = levelBits; }

    // Tones are made and taken in a row of 8 bits, which either end may be.
    void ScaleTo(const RowShape& last)
    {
        const int firstBits = present.bits;
        if (present.bits != 8) {
            RowShape tones = last.bits >= 8 ? last : present;
            tones.bits = 8;
            const bool onTheWay = last.bits != 8;
            // A step that can wait is left for the second pass.
            if (onTheWay)
                PassTo(WithChannels(tones, map, 1), map, 1);
            else
                FillTo(tones, false);
            if (onTheWay)
                map.clear();
        }
        if (firstBits < 8)
            ChangeTones(Kind::Stretch, firstBits);
        if (last.bits < 8)
            ChangeTones(Kind::Quantize, last.bits);
        if (last.bits != 8)
            FillTo(last, false);
    }

    // The present row's own width and channels, changed by what a pass does to them.
    RowShape WithChannels(RowShape shape, const std::vector<int>& passMap, int passFactor) const
    {
        shape.channels = passMap.empty() ? present.channels : static_cast<int>(passMap.size());
        shape.width = present.width * std::abs(passFactor);
        return shape;
    }

    // All that is left to do. The library takes a list of channels or a factor, not both.
    void FillTo(const RowShape& last, bool checkLevels)
    {
        if (!map.empty() && factor != 1) {
            PassTo(WithChannels(present, map, 1), map, 1);
            map.clear();
        }
        if (checkLevels) {
            RowStep& check = Add(Kind::CheckLevels, present);
            check.levelBits = last.bits;
            check.map = map;
        }
        PassTo(last, map, factor);
        map.clear();
        factor = 1;
    }

    void PassTo(const RowShape& to, const std::vector<int>& passMap, int passFactor)
    {
        RowStep fill;
        fill.from = present;
        fill.to = to;
        fill.map = passMap;
        fill.factor = passFactor;
        const int lanes = passMap.empty() ? present.channels : static_cast<int>(passMap.size());
        if (request.portableRoad && Unpacks(fill) && !FillsSlot(lanes))
            UnpackPadded(fill);
        else
            steps.push_back(fill);
        present = to;
    }

    // Planes of zeros fill the slot, so that the portable road unpacks every real one.
    void UnpackPadded(const RowStep& fill)
    {
        if (!fill.map.empty()) {
            RowStep choose = fill;
            choose.to = WithChannels(present, fill.map, 1);
            choose.factor = 1;
            steps.push_back(choose);
            present = choose.to;
        }
        const int real = present.channels;
        const int padded = (real + lanesPerSlot - 1) / lanesPerSlot * lanesPerSlot;
        RowShape next = present;
        next.channels = padded;
        MoveTo(Kind::Pad, next);

        next.width = fill.to.width;
        next.bits = fill.to.bits;
        Add(Kind::Fill, next).factor = fill.factor;
        present = next;
        next.channels = real;
        MoveTo(Kind::Crop, next);
        if (!(next == fill.to))
            Add(Kind::Fill, fill.to);
    }

    void RefuseLongRows() const
    {
        constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
        for (const RowStep& step : steps) {
            for (const RowShape& shape : {step.from, step.to}) {
                const bool longPlane = shape.planar && shape.width * shape.bits > longest - 7;
                if (shape.Bytes() > longest || shape.width > longest || longPlane)
                    throw Failure(ExitCode::Unsupported, {},
                                  "would need " + shape.Words() +
                                      "; supported are rows of up to 2147483647 bytes, and bits "
                                      "in a plane");
            }
        }
    }

    const RowRequest& request;
    RowShape present;
    std::vector<int> map;
    int factor = 1;
    std::vector<RowStep> steps;
};

std::string Bits(int bits)
{
    return std::to_string(bits) + (bits == 1 ? " bit" : " bits");
}

std::string MapWords(const std::vector<int>& map)
{
    std::string words = "channels ";
    for (std::size_t i = 0; i < map.size(); ++i) {
        if (i > 0)
            words += ",";
        words += map[i] < 0 ? "-" : std::to_string(map[i]);
    }
    return words;
}

std::string JoinWords(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

// It says what happens to the samples. The order of the work is up to the library, and differs with
// the processor.
std::string FillWords(const RowStep& fill)
{
    const bool packedSource = fill.from.bits < 8;
    const bool packedDestination = fill.to.bits < 8;
    const bool unpack = Unpacks(fill);
    const bool pack = packedDestination && (!packedSource || unpack);
    const bool widen = fill.to.bits == 16 && fill.from.bits != 16;
    const bool narrow = fill.from.bits == 16 && fill.to.bits != 16;

    std::vector<std::string> words;
    if (narrow)
        words.push_back("narrow 16 bits to 8");
    if (fill.factor < 0)
        words.push_back("mirror");
    if (!fill.map.empty())
        words.push_back(MapWords(fill.map));
    if (unpack)
        words.push_back("unpack " + Bits(fill.from.bits) + " to levels");
    if (widen)
        words.push_back("widen 8 bits to 16");
    if (std::abs(fill.factor) != 1)
        words.push_back("repeat each pixel " + std::to_string(std::abs(fill.factor)) + " times");
    if (pack)
        words.push_back("pack levels to " + Bits(fill.to.bits));
    // One channel stands the same in both layouts.
    const bool oneChannel = fill.from.channels == 1 && fill.to.channels == 1;
    if (fill.from.planar != fill.to.planar && !oneChannel)
        words.push_back(fill.to.planar ? "split into planes" : "merge the planes");
    return words.empty() ? "copy" : JoinWords(words);
}

} // namespace

std::int64_t RowShape::Bytes() const
{
    if (woven)
        return (width * channels * bits + 7) / 8;
    if (planar)
        return channels * ((width * bits + 7) / 8);
    return channels * width * ((bits + 7) / 8);
}

std::string RowShape::Words() const
{
    const char* const layout = woven ? "contiguous bits" : planar ? "planar" : "interleaved";
    return std::string(layout) + ", " + std::to_string(width) + " pixels, " +
           std::to_string(channels) + " x " + Bits(bits) + ", " + std::to_string(Bytes()) +
           " bytes";
}

bool RowStep::Moves() const
{
    return kind != Kind::Quantize && kind != Kind::Stretch && kind != Kind::CheckLevels;
}

std::string RowStep::Words() const
{
    switch (kind) {
    case Kind::Split:
        return "split contiguous bits into planes";
    case Kind::Weave:
        return "weave planes into contiguous bits";
    case Kind::Pad:
        return "add empty planes up to " + std::to_string(to.channels) +
               ", which the portable unpacker needs";
    case Kind::Crop:
        return "drop the empty planes again";
    case Kind::Quantize:
        return "round tones 0 to 255 evenly to levels of " + Bits(levelBits);
    case Kind::Stretch:
        return "stretch levels of " + Bits(levelBits) + " to tones 0 to 255";
    case Kind::CheckLevels:
        return "look for samples beyond the levels of " + Bits(levelBits);
    default:
        return FillWords(*this);
    }
}

std::vector<RowStep> PlanRow(const RowRequest& request)
{
    return Planner(request).Plan();
}

} // namespace zvk::Pelkraft::Client
