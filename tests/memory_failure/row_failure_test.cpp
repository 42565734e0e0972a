#include "tests/memory_failure/row_state.h"
#include "tests/memory_failure/scene_trial.h"
#include "tests/support/words.h"

#include <algorithm>
#include <optional>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr unsigned char filler = 0x77;

// Answers SetData with more than its geometry takes.
class RoomyRow final : public ImageRow
{
public:
    using ImageRow::ImageRow;
    int extra = 0;

protected:
    int CalcDataSize() const override { return ImageRow::CalcDataSize() + extra; }
};

bool Has(const ImageRow& row, int width, int channels, int bits, bool planar)
{
    return row.GetWidth() == width && row.GetChannels() == channels && row.GetBits() == bits &&
           row.IsPlanar() == planar &&
           row.GetDataSize() == ImageRow::CalcBufferSize(width, channels, bits, planar);
}

// The row owns its buffer, all of which may be written and after which are zeros.
bool OwnsBuffer(ImageRow& row)
{
    const RowFields fields = FieldsOf(row);
    if (!fields.ownsData || fields.data == nullptr || fields.dataCapacity < row.GetDataSize())
        return false;
    row.FillBuffer(filler);
    const unsigned char* const end = fields.data + fields.dataCapacity;
    return std::all_of(static_cast<const unsigned char*>(fields.data), end,
                       [](unsigned char byte) { return byte == filler; }) &&
           std::all_of(end, end + ImageRow::SafetyTrail,
                       [](unsigned char byte) { return byte == 0; });
}

// Rows of each kind, and what an operation makes.
struct RowScene
{
    RowScene() : owning(10, 3, 8, false, nullptr), borrowing(10, 3, 8, false, callers)
    {
        owning.FillBuffer(filler);
    }

    Bytes GetState()
    {
        Bytes state;
        for (const ImageRow* row :
             {static_cast<const ImageRow*>(&owning), static_cast<const ImageRow*>(&borrowing),
              static_cast<const ImageRow*>(&empty)}) {
            AppendFields(state, *row);
            state.insert(state.end(), row->GetData(), row->GetData() + row->GetDataSize());
        }
        AppendNumber(state, made.has_value());
        return state;
    }

    unsigned char callers[30] = {1, 2, 3};
    unsigned char others[30] = {4, 5, 6};
    RoomyRow owning;
    RoomyRow borrowing;
    RoomyRow empty;
    std::optional<ImageRow> made;
};

using Scene = RowScene;

Operation On(const char* name, SceneTrial<Scene>::Action run, SceneTrial<Scene>::Question isDone)
{
    return OperationOn<Scene>(name, run, isDone);
}

std::vector<Operation> Constructions()
{
    return {
        On(
            "the empty constructor", [](Scene& s) { s.made.emplace(); },
            [](Scene& s) { return s.made->GetData() == nullptr; }),
        On(
            "the constructor with a buffer",
            [](Scene& s) { s.made.emplace(10, 3, 8, true, s.others); },
            [](Scene& s) { return Has(*s.made, 10, 3, 8, true) && s.made->GetData() == s.others; }),
        On(
            "the constructor without a buffer",
            [](Scene& s) { s.made.emplace(1000, 4, 16, false, nullptr); },
            [](Scene& s) { return Has(*s.made, 1000, 4, 16, false) && OwnsBuffer(*s.made); }),
        On(
            "the constructor of planes",
            [](Scene& s) { s.made.emplace(1001, 3, 1, true, nullptr); },
            [](Scene& s) { return Has(*s.made, 1001, 3, 1, true) && OwnsBuffer(*s.made); }),
        On(
            "the copy", [](Scene& s) { s.made.emplace(s.borrowing); },
            [](Scene& s) { return s.made->GetData() == s.callers; }),
        On(
            "the assignment",
            [](Scene& s) {
                s.made.emplace();
                *s.made = s.borrowing;
            },
            [](Scene& s) { return s.made->GetData() == s.callers; }),
        On(
            "the destructor",
            [](Scene& s) {
                s.made.emplace(10, 3, 8, false, s.others);
                s.made.reset();
            },
            [](Scene& s) { return !s.made.has_value(); }),
        On(
            "the options", [](Scene&) {},
            [](Scene&) {
                const ImageRow::OptionalParameters none;
                const ImageRow::OptionalParameters some(true, true);
                return !none.forcePortable && some.forcePortable;
            }),
    };
}

std::vector<Operation> Buffers()
{
    return {
        On(
            "SetData of a buffer on an owning row", [](Scene& s) { s.owning.SetData(s.others); },
            [](Scene& s) {
                return s.owning.GetData() == s.others && !FieldsOf(s.owning).ownsData;
            }),
        On(
            "SetData of null on a row that is large enough",
            [](Scene& s) { s.borrowing.SetData(nullptr); },
            [](Scene& s) { return s.borrowing.GetData() == s.callers; }),
        On(
            "SetData of null on an owning row that wants more",
            [](Scene& s) {
                s.owning.extra = 100;
                s.owning.SetData(nullptr);
            },
            [](Scene& s) {
                return FieldsOf(s.owning).dataCapacity == 130 && OwnsBuffer(s.owning);
            }),
        On(
            "SetData of null on a borrowing row that wants more",
            [](Scene& s) {
                s.borrowing.extra = 100;
                s.borrowing.SetData(nullptr);
            },
            [](Scene& s) { return OwnsBuffer(s.borrowing) && s.callers[0] == 1; }),
        On(
            "SetAll of a larger geometry on an owning row",
            [](Scene& s) { s.owning.SetAll(20, 4, 16, true, nullptr); },
            [](Scene& s) { return Has(s.owning, 20, 4, 16, true) && OwnsBuffer(s.owning); }),
        On(
            "SetAll of a larger geometry on a borrowing row",
            [](Scene& s) { s.borrowing.SetAll(20, 4, 16, true, nullptr); },
            [](Scene& s) { return Has(s.borrowing, 20, 4, 16, true) && OwnsBuffer(s.borrowing); }),
        On(
            "SetAll on an empty row", [](Scene& s) { s.empty.SetAll(20, 4, 2, true, nullptr); },
            [](Scene& s) { return Has(s.empty, 20, 4, 2, true) && OwnsBuffer(s.empty); }),
        On(
            "SetAll of a smaller geometry",
            [](Scene& s) { s.owning.SetAll(5, 3, 8, false, nullptr); },
            [](Scene& s) { return Has(s.owning, 5, 3, 8, false) && OwnsBuffer(s.owning); }),
        On(
            "SetAll with a buffer", [](Scene& s) { s.owning.SetAll(5, 3, 8, false, s.others); },
            [](Scene& s) { return s.owning.GetData() == s.others; }),
        On(
            "Release of an owning row", [](Scene& s) { s.owning.Release(); },
            [](Scene& s) { return s.owning.GetData() == nullptr; }),
        On(
            "Release of a borrowing row", [](Scene& s) { s.borrowing.Release(); },
            [](Scene& s) { return s.borrowing.GetData() == nullptr && s.callers[0] == 1; }),
        On(
            "FillBuffer", [](Scene& s) { s.owning.FillBuffer(0x55); },
            [](Scene& s) { return s.owning.GetData()[29] == 0x55; }),
        On(
            "the sizes", [](Scene& s) { s.borrowing.SetAll(9, 3, 1, true, s.callers); },
            [](Scene& s) { return s.borrowing.CalcPlaneSize() == 2; }),
    };
}

TEST(RowsWithoutMemory, AreMadeAsDocumented)
{
    SweepAll("constructions of rows", Constructions());
}

TEST(RowsWithoutMemory, KeepWhatTheyHave)
{
    SweepAll("buffers of rows", Buffers());
}

TEST(RowsWithoutMemory, RefuseAllTheSame)
{
    Operation planes = On(
        "CalcPlaneSize of an interleaved row", [](Scene& s) { (void)s.owning.CalcPlaneSize(); },
        [](Scene&) { return false; });
    planes.otherText = Words::noPlanes;
    planes.refuses = true;
    SweepAll("refusals of rows", {planes});
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
