#include "pelkraft/image_row.h"
#include "tests/support/structured_lines.h"
#include "tests/system_tools/recording_sink.h"
#include "tests/threads/thread_work.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

std::string TextOf(const std::function<void()>& conversion)
{
    try {
        conversion();
    } catch (const char* text) {
        return text;
    }
    return "nothing";
}

// No failing conversion reads or writes a pixel, so that any bytes will do.
void Fill(const NaiveGeometry& from, const NaiveGeometry& to, int factor)
{
    Bytes bytes(16);
    const ImageRow source(from.width, from.channels, from.bits, from.planar, bytes.data());
    ImageRow row(to.width, to.channels, to.bits, to.planar, bytes.data());
    if (factor == 0)
        row.FillFrom(source, nullptr);
    else
        row.FillFromWithPixelRepeat(source, factor, nullptr);
}

void FillWithoutMap()
{
    Bytes bytes(16);
    const ImageRow source(3, 1, 8, false, bytes.data());
    ImageRow row(3, 1, 8, false, bytes.data());
    row.FillFromWithRemap(source, nullptr, nullptr);
}

std::vector<std::function<void()>> ListConversions()
{
    const NaiveGeometry good{3, 1, 8, false};
    return {
        [=] {
            Fill({3, 2, 8, false}, good, 0);
        },
        [=] {
            Fill({3, 1, 7, false}, good, 0);
        },
        [=] {
            Fill({-3, 1, 8, false}, good, 0);
        },
        [=] {
            Fill({3, 1, 1, false}, good, 0);
        },
        [=] {
            Fill({3, 1, 10, false}, good, 0);
        },
        [=] { Fill(good, good, 3); },
        FillWithoutMap,
    };
}

} // namespace

FailureWork::FailureWork() : conversions(ListConversions())
{
    Diagnostics::RecordingSink sink;
    Diagnostics::Seh::SetDefaultLog(&sink);
    for (const auto& conversion : conversions)
        texts.push_back(TextOf(conversion));
    Diagnostics::Seh::SetDefaultLog(nullptr);
    std::size_t failures = 0;
    for (const std::wstring& line : sink.Lines()) {
        ++lines[line];
        failures += IsStructuredLine(line) ? 0 : 1;
    }
    EXPECT_EQ(failures, conversions.size());
}

void FailureWork::Run() const
{
    for (std::size_t i = 0; i < conversions.size(); ++i)
        EXPECT_EQ(TextOf(conversions[i]), texts[i]);
}

std::map<std::wstring, int> FailureWork::LinesOf(int runs) const
{
    std::map<std::wstring, int> counts = lines;
    for (auto& [line, count] : counts)
        count *= runs;
    return counts;
}

} // namespace zvk::Pelkraft::TestSupport
