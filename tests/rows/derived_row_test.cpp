#include "tests/rows/guarded_row.h"
#include "tests/rows/refusal.h"
#include "tests/rows/row_fields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Writes down each question, a letter in capitals for a destination, and answers the truth only
// the first time.
class AskedRow : public ImageRow
{
public:
    AskedRow(const NaiveGeometry& shape, unsigned char* bytes, bool newIsSource,
             std::string& newQuestions)
        : ImageRow(shape.width, shape.channels, shape.bits, shape.planar, bytes),
          isSource(newIsSource), questions(newQuestions)
    {}

    int GetWidth() const override { return IsFirst('w') ? ImageRow::GetWidth() : 1 << 20; }
    int GetChannels() const override { return IsFirst('c') ? ImageRow::GetChannels() : 200; }
    int GetBits() const override { return IsFirst('b') ? ImageRow::GetBits() : 16; }
    bool IsPlanar() const override { return ImageRow::IsPlanar() == IsFirst('p'); }
    unsigned char* GetData() const override { return IsFirst('d') ? ImageRow::GetData() : nullptr; }

private:
    bool IsFirst(char question) const
    {
        const char letter = isSource ? question : static_cast<char>(std::toupper(question));
        const bool isFirst = questions.find(letter) == std::string::npos;
        questions += letter;
        return isFirst;
    }

    bool isSource;
    std::string& questions;
};

constexpr int map[] = {0, 1, 2};

using Fill = void (*)(ImageRow& row, const ImageRow& source);
const Fill fills[] = {
    [](ImageRow& row, const ImageRow& source) { row.FillFrom(source, nullptr); },
    [](ImageRow& row, const ImageRow& source) { row.FillFrom(source, false, true); },
    [](ImageRow& row, const ImageRow& source) { row.FillFromWithPixelRepeat(source, -2, nullptr); },
    [](ImageRow& row, const ImageRow& source) {
        row.FillFromWithPixelRepeat(source, 1, false, true);
    },
    [](ImageRow& row, const ImageRow& source) { row.FillFromWithRemap(source, map, nullptr); },
    [](ImageRow& row, const ImageRow& source) { row.FillFromWithRemap(source, map, false, true); },
};

struct Asked
{
    std::string questions;
    std::string end;
};

Asked Ask(const NaiveGeometry& from, const NaiveGeometry& to, Fill fill)
{
    const GuardedBuffer sourceBytes(RandomBytes(NaiveRowBytes(from), 1));
    const GuardedBuffer rowBytes(RandomBytes(NaiveRowBytes(to), 2));
    Asked asked;
    const AskedRow source(from, sourceBytes.data(), true, asked.questions);
    AskedRow row(to, rowBytes.data(), false, asked.questions);
    asked.end = EndOf([&] { fill(row, source); });
    return asked;
}

std::string Sorted(std::string text)
{
    std::sort(text.begin(), text.end());
    return text;
}

TEST(DerivedRow, IsAskedOnceForEachCallAndForItsDataLast)
{
    const NaiveGeometry bytes{30, 3, 8, false};
    const NaiveGeometry words{30, 3, 16, true};
    const NaiveGeometry packed{30, 3, 2, true};
    for (const auto& [from, to] : {std::pair{bytes, words}, std::pair{words, bytes},
                                   std::pair{packed, packed}, std::pair{bytes, packed}})
        for (const Fill fill : fills) {
            const Asked asked = Ask(from, to, fill);
            EXPECT_EQ(returned, asked.end);
            EXPECT_EQ("BCDPWbcdpw", Sorted(asked.questions));
            EXPECT_EQ("dD", asked.questions.substr(8)) << asked.questions;
        }
}

TEST(DerivedRow, IsAskedForNothingButItsChannelsWhereTheyDiffer)
{
    for (const int bits : {8, 4})
        for (const Fill fill : {fills[0], fills[1], fills[2], fills[3]}) {
            const Asked asked = Ask({30, 3, bits, false}, {30, 4, 8, false}, fill);
            EXPECT_NE(returned, asked.end);
            EXPECT_EQ("cC", asked.questions);
        }
}

TEST(DerivedRow, IsNotAskedForItsDataWhereTheCallIsRefused)
{
    const NaiveGeometry served{30, 3, 8, false};
    for (const NaiveGeometry& refused :
         {NaiveGeometry{30, 3, 4, false}, NaiveGeometry{30, 3, 1, false},
          NaiveGeometry{30, 3, 10, true}})
        for (const Fill fill : fills)
            for (const auto& [from, to] :
                 {std::pair{refused, served}, std::pair{served, refused}}) {
                const Asked asked = Ask(from, to, fill);
                EXPECT_NE(returned, asked.end);
                EXPECT_EQ("BCPWbcpw", Sorted(asked.questions));
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
            // An entry for each channel that the row shows, and not for those of its fields.
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

// All three sizes are those of the fields, whatever the row shows.
TEST(DerivedRow, HasTheSizesOfItsFields)
{
    unsigned char byte = 0;
    WindowRow row({21, 3, 8, false}, &byte);
    EXPECT_EQ(14000, row.GetDataSize());
    EXPECT_EQ(2000, row.CalcPlaneSize());
    row.Release();
    row.SetAll(1000, 7, 16, true, nullptr);
    EXPECT_EQ(14000, FieldsOf(row).dataCapacity);
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
