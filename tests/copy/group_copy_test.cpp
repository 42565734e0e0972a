#include "copy/group_copy.h"

#include "tests/copy/copy_check.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <climits>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

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

// Limits the processor's level while it lives.
class LimitedLevel
{
public:
    explicit LimitedLevel(int level) { SystemTools::LimitSseVersion(level); }
    ~LimitedLevel() { SystemTools::LimitSseVersion(INT_MAX); }
    LimitedLevel(const LimitedLevel&) = delete;
    LimitedLevel& operator=(const LimitedLevel&) = delete;
};

TEST(PixelCopy, MovesWholeUnitsBelowLevelThree)
{
    for (const int level : {0, 1, 2}) {
        const LimitedLevel limited(level);
        for (std::size_t pixelBytes = 1; pixelBytes <= 130; ++pixelBytes)
            EXPECT_EQ(GetWholeUnitCopy(pixelBytes), GetPixelCopy(pixelBytes)) << level;
        ExpectCopiesEveryPixelSize(GetPixelCopy);
    }
}

#if defined(PELKRAFT_VECTOR_ROAD)

TEST(PixelCopy, GoesThroughRegistersFromLevelThreeOn)
{
    for (const int level : {3, 4, 6, 7}) {
        const LimitedLevel limited(level);
        const bool shuffles = SystemTools::GetSseVersion() >= 3;
        for (std::size_t pixelBytes = 1; pixelBytes <= 130; ++pixelBytes)
            EXPECT_EQ(shuffles ? VectorRoad::GetRegisterCopy(pixelBytes)
                               : GetWholeUnitCopy(pixelBytes),
                      GetPixelCopy(pixelBytes))
                << level;
    }
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
