#include "tests/rows/guarded_row.h"
#include "tests/rows/refusal.h"

#include <gtest/gtest.h>

#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Counts how often it is asked, and answers the truth only the first time.
class AskedRow : public ImageRow
{
public:
    using ImageRow::ImageRow;

    int GetWidth() const override { return Answer(width, ImageRow::GetWidth(), 1 << 20); }
    int GetChannels() const override { return Answer(channels, ImageRow::GetChannels(), 200); }
    int GetBits() const override { return Answer(bits, ImageRow::GetBits(), 16); }
    bool IsPlanar() const override
    {
        return Answer(planar, ImageRow::IsPlanar() ? 1 : 0, ImageRow::IsPlanar() ? 0 : 1) != 0;
    }
    unsigned char* GetData() const override
    {
        ++data;
        return data == 1 ? ImageRow::GetData() : nullptr;
    }

    std::string Questions() const
    {
        std::string text;
        for (const int count : {width, channels, bits, planar, data})
            text += std::to_string(count) + " ";
        return text;
    }

private:
    static int Answer(int& count, int first, int later) { return ++count == 1 ? first : later; }

    mutable int width = 0;
    mutable int channels = 0;
    mutable int bits = 0;
    mutable int planar = 0;
    mutable int data = 0;
};

constexpr int map[] = {0, 1, 2};

template <typename Fill>
void ExpectOneQuestionEach(const NaiveGeometry& from, const NaiveGeometry& to, Fill fill)
{
    const GuardedBuffer sourceBytes(RandomBytes(NaiveRowBytes(from), 1));
    const GuardedBuffer rowBytes(RandomBytes(NaiveRowBytes(to), 2));
    const AskedRow source(from.width, from.channels, from.bits, from.planar, sourceBytes.data());
    AskedRow row(to.width, to.channels, to.bits, to.planar, rowBytes.data());
    EXPECT_EQ(returned, EndOf([&] { fill(row, source); }));
    EXPECT_EQ("1 1 1 1 1 ", source.Questions());
    EXPECT_EQ("1 1 1 1 1 ", row.Questions());
}

TEST(DerivedRow, IsAskedOnceForEachCall)
{
    const NaiveGeometry bytes{30, 3, 8, false};
    const NaiveGeometry words{30, 3, 16, true};
    const NaiveGeometry packed{30, 3, 2, true};
    for (const auto& [from, to] : {std::pair{bytes, words}, std::pair{words, bytes},
                                   std::pair{packed, packed}, std::pair{bytes, packed}}) {
        ExpectOneQuestionEach(from, to,
                              [](auto& row, auto& source) { row.FillFrom(source, nullptr); });
        ExpectOneQuestionEach(from, to,
                              [](auto& row, auto& source) { row.FillFrom(source, false, true); });
        ExpectOneQuestionEach(
            from, to, [](auto& row, auto& source) { row.FillFromWithRemap(source, map, nullptr); });
        ExpectOneQuestionEach(from, to, [](auto& row, auto& source) {
            row.FillFromWithRemap(source, map, false, true);
        });
        ExpectOneQuestionEach(from, to, [](auto& row, auto& source) {
            row.FillFromWithPixelRepeat(source, -2, nullptr);
        });
        ExpectOneQuestionEach(from, to, [](auto& row, auto& source) {
            row.FillFromWithPixelRepeat(source, 1, false, true);
        });
    }
}

// Presents a part of another row's bytes.
class WindowRow : public ImageRow
{
public:
    WindowRow(const NaiveGeometry& newShown, unsigned char* newBytes)
        : ImageRow(1000, 7, 16, true, newBytes), shown(newShown), bytes(newBytes)
    {}

    int GetWidth() const override { return shown.width; }
    int GetChannels() const override { return shown.channels; }
    int GetBits() const override { return shown.bits; }
    bool IsPlanar() const override { return shown.planar; }
    unsigned char* GetData() const override { return bytes; }

private:
    NaiveGeometry shown;
    unsigned char* bytes;
};

TEST(DerivedRow, IsConvertedInTheGeometryThatItShows)
{
    const NaiveGeometry from{21, 3, 8, false};
    const NaiveGeometry to{21, 3, 8, true};
    for (int kind = 0; kind != 3; ++kind) {
        const Bytes content = RandomBytes(NaiveRowBytes(from), 3);
        const Bytes before = RandomBytes(NaiveRowBytes(to), 4);
        const GuardedBuffer sourceBytes(content);
        const GuardedBuffer rowBytes(before);
        const WindowRow source(from, sourceBytes.data());
        WindowRow row(to, rowBytes.data());
        NaiveOperation operation;
        if (kind == 0) {
            row.FillFrom(source, nullptr);
        } else if (kind == 1) {
            operation.factor = -2;
            row.FillFromWithPixelRepeat(source, -2, nullptr);
        } else {
            // As many entries as the channels that the row shows, not those of its fields.
            operation.hasMap = true;
            operation.map = {2, -1, 0};
            const GuardedBuffer entries(3 * sizeof(int));
            std::copy(operation.map.begin(), operation.map.end(),
                      reinterpret_cast<int*>(entries.data()));
            row.FillFromWithRemap(source, reinterpret_cast<int*>(entries.data()), nullptr);
        }
        EXPECT_EQ(NaiveConvert(from, content, to, before, operation), rowBytes.bytes()) << kind;
    }
}

// The work of a fill, done otherwise.
class CountingRow : public ImageRow
{
public:
    using ImageRow::ImageRow;
    int fills = 0;

protected:
    void FillFromBody2(const ImageRow& source, const OptionalParameters& options) override
    {
        ++fills;
        ImageRow::FillFromBody2(source, options);
    }
};

TEST(DerivedRow, MayCallTheBodyThatItOverrides)
{
    const NaiveGeometry geometry{17, 2, 16, false};
    const GuardedRow source(geometry, 5);
    const GuardedBuffer bytes(NaiveRowBytes(geometry));
    CountingRow row(17, 2, 16, false, bytes.data());
    row.FillFrom(source.row, nullptr);
    row.FillFrom(source.row, true, false);
    EXPECT_EQ(2, row.fills);
    EXPECT_EQ(source.before, bytes.bytes());
    row.FillFromWithPixelRepeat(source.row, 1, nullptr);
    EXPECT_EQ(2, row.fills);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
