#include "tests/rows/row_fields.h"

#include <gtest/gtest.h>

#include <new>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A copy that is only destroyed when told to.
class HeldCopy
{
public:
    // cppcheck-suppress noDestructor // the copy shares a buffer that the row frees
    explicit HeldCopy(const ImageRow& row) : copy(new (storage) ImageRow(row)) {}
    HeldCopy(const HeldCopy&) = delete;
    HeldCopy& operator=(const HeldCopy&) = delete;
    const ImageRow& Get() const { return *copy; }
    void Destroy() { copy->~ImageRow(); }

private:
    alignas(ImageRow) unsigned char storage[sizeof(ImageRow)] = {};
    ImageRow* copy;
};

TEST(RowCopy, IsMemberwiseAndSharesACallersBuffer)
{
    std::vector<unsigned char> buffer(60, 3);
    const ImageRow row(10, 3, 16, true, buffer.data());
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tried.
    const ImageRow copy(row);
    EXPECT_TRUE(FieldsOf(row) == FieldsOf(copy));
    ImageRow assigned(5, 1, 8, false, buffer.data());
    EXPECT_EQ(&assigned, &(assigned = row));
    EXPECT_TRUE(FieldsOf(row) == FieldsOf(assigned));
    EXPECT_EQ(std::vector<unsigned char>(60, 3), buffer);
}

TEST(RowCopy, ClaimsAnOwnBufferAsTheOriginalDoes)
{
    const ImageRow row(10, 1, 8, false, nullptr);
    const HeldCopy copy(row);
    EXPECT_TRUE(FieldsOf(copy.Get()).ownsData);
    EXPECT_TRUE(FieldsOf(row) == FieldsOf(copy.Get()));
}

TEST(RowCopy, ForgetsTheBufferOfTheRowThatIsAssignedTo)
{
    ImageRow target(10, 1, 8, false, nullptr);
    target.FillBuffer(0x44);
    HeldCopy keeper(target);
    target = ImageRow();
    EXPECT_EQ(nullptr, target.GetData());
    EXPECT_EQ(-1, FieldsOf(target).dataCapacity);
    // Still there: it was not freed.
    EXPECT_EQ(0x44, keeper.Get().GetData()[9]);
    keeper.Destroy();
}

TEST(RowCopy, KeepsTheLargerCapacityOfAShrunkRow)
{
    ImageRow row(100, 1, 8, false, nullptr);
    row.SetAll(10, 1, 8, false, nullptr);
    const HeldCopy copy(row);
    EXPECT_EQ(100, FieldsOf(copy.Get()).dataCapacity);
    EXPECT_EQ(10, copy.Get().GetDataSize());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
