#include "copy/group_copy.h"

#include "tests/copy/copy_check.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

bool HasVectorRoad()
{
#if defined(PELKRAFT_VECTOR_ROAD)
    return __builtin_cpu_supports("ssse3");
#else
    return false;
#endif
}

using GetGroupCopy = GroupCopy (*)(std::size_t pixelBytes);

void ExpectCopiesEveryPixelSize(GetGroupCopy getCopy)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= 130; ++pixelBytes)
        for (const std::size_t groups : {1U, 2U, 3U, 5U, 9U}) {
            SCOPED_TRACE(testing::Message() << groups << " groups by " << pixelBytes);
            const std::size_t bytes = 16 * groups * pixelBytes;
            ExpectCopies(static_cast<long long>(bytes),
                         [=](unsigned char* source, unsigned char* destination) {
                             getCopy(pixelBytes)({source, destination, groups, pixelBytes});
                         });
        }
}

TEST(WholeUnitCopy, CopiesGroupsOfEveryPixelSize)
{
    ExpectCopiesEveryPixelSize(GetWholeUnitCopy);
}

TEST(PixelCopy, CopiesGroupsOfEveryPixelSize)
{
    ExpectCopiesEveryPixelSize(GetPixelCopy);
}

#if defined(PELKRAFT_VECTOR_ROAD)

TEST(PixelCopy, GoesThroughRegistersWhereTheProcessorCan)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= 130; ++pixelBytes)
        EXPECT_EQ(HasVectorRoad() ? VectorRoad::GetRegisterCopy(pixelBytes)
                                  : GetWholeUnitCopy(pixelBytes),
                  GetPixelCopy(pixelBytes));
}

TEST(RegisterCopy, HasABodyForEachTrailOfShortAndLongPixels)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= 32; ++pixelBytes) {
        for (std::size_t other = 1; other != pixelBytes; ++other)
            EXPECT_NE(VectorRoad::GetRegisterCopy(other), VectorRoad::GetRegisterCopy(pixelBytes));
        EXPECT_EQ(VectorRoad::GetRegisterCopy((pixelBytes - 1) % 16 + 17),
                  VectorRoad::GetRegisterCopy((pixelBytes - 1) % 16 + std::size_t{16} * 7 + 1));
    }
}

#endif

} // namespace
} // namespace zvk::Pelkraft
