#include "tests/support/conversion_choices.h"
#include "tests/support/random_bytes.h"
#include "tests/threads/at_once.h"
#include "tests/threads/thread_work.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {
namespace {

bool RoadsDiffer(ConversionCase conversion)
{
    conversion.forcePortable = true;
    for (int channel = 0; channel < conversion.destination.channels; ++channel)
        if (IsLeftPacked(conversion, channel))
            return true;
    return false;
}

} // namespace

ConversionWork::ConversionWork(Roads roads)
{
    constexpr int width = 37;
    for (const int channels : {3, 17})
        for (const NaiveOperation& operation : Operations(channels))
            for (const auto& [from, to] : ServedForms(operation)) {
                const int newChannels =
                    operation.hasMap ? static_cast<int>(operation.map.size()) : channels;
                const ConversionCase conversion{
                    {width, channels, from.bits, from.planar},
                    {DestinationWidth(width, operation.factor, 0), newChannels, to.bits, to.planar},
                    operation,
                    false};
                if (roads == Roads::Both || !RoadsDiffer(conversion))
                    Add(conversion);
                if (roads == Roads::Both)
                    Add({conversion.source, conversion.destination, operation, true});
            }
}

void ConversionWork::Add(const ConversionCase& conversion)
{
    const auto seed = static_cast<std::uint32_t>(works.size());
    Work work{conversion,
              RandomBytes(NaiveRowBytes(conversion.source), seed),
              RandomBytes(NaiveRowBytes(conversion.destination), seed + 1),
              {},
              {}};
    work.expected = NaiveConvert(conversion.source, work.source, conversion.destination,
                                 work.before, conversion.operation);
    ForgetLeftPacked(conversion, work.expected);
    for (int thread = 0; thread < threadCount; ++thread)
        work.picture.insert(work.picture.end(), work.before.begin(), work.before.end());
    works.push_back(std::move(work));
}

void ConversionWork::Run(int thread)
{
    for (std::size_t i = 0; i < works.size(); ++i) {
        // Each thread begins elsewhere, so that different chains run at once.
        Work& work = works[(i + works.size() / threadCount * static_cast<std::size_t>(thread)) %
                           works.size()];
        const auto rowBytes = static_cast<std::ptrdiff_t>(work.before.size());
        const auto row = work.picture.begin() + thread * rowBytes;
        std::copy(work.before.begin(), work.before.end(), row);
        RunConversion(work.conversion, work.source.data(), &*row);
        Bytes actual(row, row + rowBytes);
        ForgetLeftPacked(work.conversion, actual);
        EXPECT_TRUE(actual == work.expected) << Describe(work.conversion);
    }
}

} // namespace zvk::Pelkraft::TestSupport
