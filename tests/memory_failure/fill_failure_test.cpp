#include "tests/memory_failure/memory_sweep.h"
#include "tests/memory_failure/row_state.h"
#include "tests/support/chain_row.h"
#include "tests/support/conversion_choices.h"
#include "tests/support/conversion_run.h"
#include "tests/support/counting_sink.h"
#include "tests/support/random_bytes.h"
#include "tests/support/words.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Words;

// A fill in one of its two forms: by options, or by flags.
void Fill(const ConversionCase& tested, bool byOptions, ImageRow& row, const ImageRow& source)
{
    const ImageRow::OptionalParameters options(false, tested.forcePortable);
    const NaiveOperation& operation = tested.operation;
    if (operation.hasMap && byOptions)
        row.FillFromWithRemap(source, operation.map.data(), &options);
    else if (operation.hasMap)
        row.FillFromWithRemap(source, operation.map.data(), false, tested.forcePortable);
    else if (operation.isFill && byOptions)
        row.FillFrom(source, &options);
    else if (operation.isFill)
        row.FillFrom(source, false, tested.forcePortable);
    else if (byOptions)
        row.FillFromWithPixelRepeat(source, operation.factor, &options);
    else
        row.FillFromWithPixelRepeat(source, operation.factor, false, tested.forcePortable);
}

template <typename Row>
Row RowOf(const NaiveGeometry& geometry, const GuardedBuffer& buffer)
{
    return {geometry.width, geometry.channels, geometry.bits, geometry.planar, buffer.data()};
}

// Row is the destination's class: only the chain takes memory, and only a plain row refuses
// channel counts.
template <typename Row>
class FillTrial final : public Trial
{
public:
    FillTrial(const ConversionCase& newTested, bool newByOptions)
        : tested(newTested), byOptions(newByOptions),
          content(RandomBytes(NaiveRowBytes(tested.source), 31)),
          before(RandomBytes(NaiveRowBytes(tested.destination), 32)), sourceBytes(content),
          rowBytes(before), source(RowOf<ImageRow>(tested.source, sourceBytes)),
          row(RowOf<Row>(tested.destination, rowBytes))
    {}

    void Run() override
    {
        sink.lines = 0;
        Fill(tested, byOptions, row, source);
    }

    Bytes GetState() override
    {
        Bytes state = rowBytes.bytes();
        const Bytes other = sourceBytes.bytes();
        state.insert(state.end(), other.begin(), other.end());
        AppendFields(state, row);
        AppendFields(state, source);
        return state;
    }

    bool IsDone() override
    {
        Bytes expected =
            NaiveConvert(tested.source, content, tested.destination, before, tested.operation);
        Bytes got = rowBytes.bytes();
        ForgetLeftPacked(tested, expected);
        ForgetLeftPacked(tested, got);
        return got == expected && sourceBytes.bytes() == content;
    }

    bool HasLogged(bool failed) override { return sink.lines == (failed ? 1 : 0); }

private:
    ConversionCase tested;
    bool byOptions;
    Bytes content;
    Bytes before;
    GuardedBuffer sourceBytes;
    GuardedBuffer rowBytes;
    ImageRow source;
    Row row;
    CountingSink sink;
};

template <typename Row>
Operation OperationOf(const ConversionCase& tested, bool byOptions)
{
    Operation operation;
    operation.name = Describe(tested) + (byOptions ? ", by options" : ", by flags");
    operation.prepare = [=] { return std::make_unique<FillTrial<Row>>(tested, byOptions); };
    operation.otherText = noRelocation;
    return operation;
}

// Every way that there is, from a row of whole batches or with some pixels more.
std::vector<Operation> EveryFill(int width, int channels)
{
    std::vector<Operation> all;
    for (const NaiveOperation& fill : Operations(channels)) {
        const int newChannels = fill.hasMap ? static_cast<int>(fill.map.size()) : channels;
        for (const auto& [from, to] : ServedForms(fill)) {
            const NaiveGeometry source{width, channels, from.bits, from.planar};
            const NaiveGeometry destination{DestinationWidth(width, fill.factor, 0), newChannels,
                                            to.bits, to.planar};
            for (const bool portable : {false, true})
                for (const bool byOptions : {false, true})
                    all.push_back(
                        OperationOf<ChainRow>({source, destination, fill, portable}, byOptions));
        }
    }
    return all;
}

TEST(FillsWithoutMemory, FailAsDocumentedForWholeBatches)
{
    SweepAll("fills of 64 pixels", EveryFill(64, 3));
}

TEST(FillsWithoutMemory, FailAsDocumentedForLastPixels)
{
    SweepAll("fills of 37 pixels", EveryFill(37, 5));
}

TEST(FillsWithoutMemory, FailAsDocumentedForWidePixels)
{
    SweepAll("fills of 130 channels", EveryFill(19, 130));
}

// A refusal needs no memory at all.
TEST(FillsWithoutMemory, RefuseAllTheSame)
{
    std::vector<Operation> refusals;
    const auto add = [&](const ConversionCase& tested, const char* text) {
        for (const bool byOptions : {false, true}) {
            refusals.push_back(OperationOf<ImageRow>(tested, byOptions));
            refusals.back().otherText = text;
            refusals.back().refuses = true;
        }
    };
    for (const bool portable : {false, true}) {
        add({{10, 2, 1, false}, {10, 2, 16, false}, {}, portable}, to16);
        add({{10, 2, 16, false}, {10, 2, 1, false}, {}, portable}, from16);
        add({{10, 2, 8, false}, {10, 3, 8, false}, {}, portable}, fill);
        add({{10, 2, 8, false}, {10, 2, 8, false}, RepeatBy(3), portable}, repeat);
        add({{10, 2, 4, false}, {10, 2, 8, false}, {}, portable}, depth);
    }
    SweepAll("refused fills", refusals);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
