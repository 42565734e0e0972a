#include "plan/chain_choice.h"
#include "plan/conversion_checks.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

// Requests that are taken at once are among those that the checks let pass one by one.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t map[] = {0, 0, 0, 0};

bool PassesOneByOne(const ConversionRequest& request)
{
    try {
        FormatPair formats;
        BuildFormats(formats, request);
        (void)ChooseChain(formats, request);
        return MovesPixels(request, formats);
    } catch (const char*) {
        return false;
    }
}

std::vector<ConversionRequest> WithEachOption(const RowGeometry& from, const RowGeometry& to)
{
    std::vector<ConversionRequest> requests;
    for (const int factor : {1, -1, 2, -4}) {
        requests.push_back({from, to, 7, factor});
        requests.back().repeats = factor != 1;
    }
    requests.push_back({from, to, 7, 1});
    requests.back().maps = true;
    requests.back().map = {4, map};
    return requests;
}

// Around the sizes that no 32-bit number holds, and those of twice as many bytes as samples.
std::vector<RowGeometry> StrangeRows()
{
    std::vector<RowGeometry> rows;
    for (const int bits : {smallest, -1, 0, 1, 2, 3, 8, 10, 16, 17, 33, 40, largest})
        for (const bool planar : {false, true})
            for (const int channels : {smallest, -1, 0, 1, 2, 32768, 65535, 1 << 30, largest})
                for (const int width :
                     {smallest, -1, 0, 1, 9, 32767, 32768, 65537, (1 << 30) - 1, 1 << 30, largest})
                    rows.push_back({width, channels, bits, planar});
    return rows;
}

TEST(FaultlessRequest, PassesTheChecksOneByOne)
{
    const std::vector<RowGeometry> rows = StrangeRows();
    int faultless = 0;
    const auto check = [&](const RowGeometry& from, const RowGeometry& to) {
        for (const ConversionRequest& request : WithEachOption(from, to))
            if (IsFaultless(request)) {
                ++faultless;
                EXPECT_TRUE(PassesOneByOne(request))
                    << from.channels << " x " << from.bits << ", " << from.width << " px to "
                    << to.channels << " x " << to.bits << ", " << to.width << " px";
            }
    };
    for (const RowGeometry& row : rows)
        for (const RowGeometry& other :
             {RowGeometry{9, 2, 8, false}, RowGeometry{1 << 29, 2, 1, true},
              RowGeometry{9, 1, 16, true}, row}) {
            check(row, other);
            check(other, row);
        }
    EXPECT_GT(faultless, 1000);
}

TEST(FaultlessRequest, IsOneOfUsualFormsAndSizes)
{
    const std::vector<RowGeometry> forms = {{100, 4, 1, true},  {100, 4, 2, true},
                                            {100, 4, 8, true},  {100, 4, 8, false},
                                            {100, 4, 16, true}, {100, 4, 16, false}};
    for (const RowGeometry& from : forms)
        for (const RowGeometry& to : forms)
            for (const ConversionRequest& request : WithEachOption(from, to))
                EXPECT_TRUE(IsFaultless(request)) << from.bits << " to " << to.bits;
}

TEST(FaultlessRequest, HasOneOptionAndAMapInMemory)
{
    const RowGeometry row{100, 4, 8, false};
    ConversionRequest request{row, row, 7, 2};
    request.repeats = request.maps = true;
    request.map = {4, map};
    EXPECT_FALSE(IsFaultless(request));
    request.repeats = false;
    EXPECT_TRUE(IsFaultless(request));
    request.map.entries = nullptr;
    EXPECT_FALSE(IsFaultless(request));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
