#include "pelkraft/plan.hpp"
#include "tests/c_interface/naive_plan.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <type_traits>

// The classes of C++17 as a customer uses them.
namespace zvk::Pelkraft::TestSupport {
namespace {

ConversionSpec SplitSpec()
{
    return {{5, 4, 8, false}, {5, 4, 8, true}};
}

TEST(ConversionPlans, RunOnAnythingThatHasDataAndSize)
{
    const NaiveJoin split = {{5, 4, 8, false}, {5, 4, 8, true}};
    const ConversionPlan plan(SplitSpec());
    const Bytes pixels = RandomBytes(40, 1);
    const Bytes expected = NaiveRun(split, pixels, {0, 20, 0}, Bytes(40), {0, 20, 5}, 2);
    Bytes inks(40);
    plan.Run(SourceRows(pixels, 20), TargetRows(inks, 20, 5), 2);
    EXPECT_EQ(inks, expected);
    std::array<unsigned char, 41> more = {};
    plan.Run(SourceRows(pixels.data(), 40, 20), TargetRows(more, 20, 5, 1), 2);
    EXPECT_EQ(Bytes(more.begin() + 1, more.end()), expected);
    std::vector<std::uint32_t> words(10);
    plan.Run(SourceRows(pixels, 20), TargetRows(words, 20, 5), 2);
    EXPECT_EQ(std::memcmp(words.data(), expected.data(), 40), 0);
}

TEST(ConversionPlans, ThrowOneExceptionWithTheRecordsFields)
{
    ConversionSpec spec = SplitSpec();
    spec.target.width = 6;
    try {
        const ConversionPlan plan(spec);
        FAIL();
    } catch (const std::runtime_error& error) {
        const auto& refusal = dynamic_cast<const PelkraftError&>(error);
        EXPECT_EQ(refusal.GetStatus(), PLK_UNSUPPORTED);
        EXPECT_STREQ(refusal.GetField(), "target.width");
        EXPECT_EQ(refusal.GetFailure().given, 6);
        EXPECT_EQ(refusal.GetFailure().needed, 5);
        EXPECT_STREQ(refusal.what(), refusal.GetFailure().text);
        EXPECT_EQ(std::string(refusal.what()).substr(0, 17), "target.width is 6");
    }
    Bytes bytes(20);
    EXPECT_THROW(
        ConversionPlan(SplitSpec()).Run(SourceRows(bytes, 20), TargetRows(bytes, 20, 5), 1),
        PelkraftError);
    EXPECT_THROW(ConversionPlan(SplitSpec()).Describe(7), PelkraftError);
    EXPECT_THROW(ConversionPlan::Load(bytes.data(), 20), PelkraftError);
}

// Each field of its own value, so that none can stand for another.
TEST(ConversionPlans, PassEveryFieldOfASpec)
{
    ConversionSpec spec = {{10, 3, 16, false}, {41, 2, 1, true}};
    spec.map = {2, PLK_CONSTANT(1)};
    spec.repeat = 4;
    spec.mirror = true;
    spec.samples = PLK_SAMPLES_AS_TONES;
    spec.clip = true;
    spec.road = PLK_ROAD_PORTABLE;
    const ConversionSpec given = ConversionPlan(spec).GetSpec();
    EXPECT_TRUE(given.source == spec.source);
    EXPECT_TRUE(given.target == spec.target);
    EXPECT_TRUE(given.map == spec.map);
    EXPECT_EQ(given.repeat, 4);
    EXPECT_TRUE(given.mirror);
    EXPECT_EQ(given.samples, PLK_SAMPLES_AS_TONES);
    EXPECT_FALSE(given.invert);
    EXPECT_TRUE(given.clip);
    EXPECT_FALSE(given.stream);
    EXPECT_EQ(given.road, PLK_ROAD_PORTABLE);
    spec.mirror = spec.clip = false;
    spec.target.width = 40;
    spec.invert = spec.stream = true;
    const ConversionSpec other = ConversionPlan(spec).GetSpec();
    EXPECT_FALSE(other.mirror);
    EXPECT_TRUE(other.invert);
    EXPECT_FALSE(other.clip);
    EXPECT_TRUE(other.stream);
    EXPECT_FALSE(ConversionPlan(SplitSpec()).GetSpec().map.has_value());
    ConversionSpec empty = SplitSpec();
    empty.target.channels = 0;
    empty.map.emplace();
    EXPECT_TRUE(ConversionPlan(empty).GetSpec().map.has_value());
}

TEST(ConversionPlans, AreCopiedMovedSavedAndCompared)
{
    static_assert(std::is_nothrow_move_constructible_v<ConversionPlan>);
    static_assert(std::is_nothrow_move_constructible_v<PatternPlan>);
    std::vector<ConversionPlan> plans(3, ConversionPlan(SplitSpec()));
    EXPECT_EQ(plans[0].Get(), plans[2].Get());
    const std::vector<unsigned char> record = plans[0].Save();
    plans[1] = ConversionPlan::Load(record.data(), record.size());
    EXPECT_NE(plans[0].Get(), plans[1].Get());
    EXPECT_TRUE(plans[0] == plans[1]);
    EXPECT_TRUE(plans[0] == plans[2]);
    ConversionSpec mirrored = SplitSpec();
    mirrored.mirror = true;
    EXPECT_TRUE(ConversionPlan(mirrored) != plans[0]);
    EXPECT_EQ(plans[0].GetNeeds().target_plane_bytes, 5U);
    EXPECT_EQ(plans[0].Describe().substr(0, 14), "road: direct, ");
    EXPECT_EQ(plans[0].Describe(PLK_JSON).substr(0, 12), "{\"schema\":1,");
    EXPECT_EQ(plans[0].Describe().find('\0'), std::string::npos);
}

bool IsAligned(const Image& image)
{
    return reinterpret_cast<std::uintptr_t>(image.GetData()) % Image::Alignment == 0 &&
           image.GetRowStride() % static_cast<std::int64_t>(Image::Alignment) == 0;
}

TEST(Images, StandInAVector)
{
    static_assert(std::is_nothrow_move_constructible_v<Image>);
    std::vector<Image> pages;
    for (unsigned char number = 0; number != 20; ++number) {
        Image page({7, 3, 8, true}, 2);
        EXPECT_TRUE(IsAligned(page));
        *page.GetRow(1, 2) = number;
        pages.push_back(std::move(page));
        // NOLINTNEXTLINE(bugprone-use-after-move): a picture that was moved from has no rows.
        EXPECT_TRUE(page.GetData() == nullptr && page.GetRows() == 0);
    }
    std::vector<Image> copies = pages;
    *copies[3].GetRow(1, 2) = 99;
    copies.erase(copies.begin());
    for (std::size_t i = 0; i != pages.size(); ++i)
        EXPECT_EQ(*pages[i].GetRow(1, 2), i);
    EXPECT_EQ(*copies[2].GetRow(1, 2), 99);
    EXPECT_EQ(*copies[18].GetRow(1, 2), 19);
    EXPECT_EQ(copies[0].GetRow(1, 1) - copies[0].GetRow(1, 0), 7);
    EXPECT_EQ(copies[0].GetSize(), 128U);
    EXPECT_EQ(copies[0].GetRow(1)[0], 0);
}

TEST(Images, AreConvertedRowByRow)
{
    const NaiveJoin join = {{9, 2, 16, false}, {18, 2, 8, true}, false, {}, 2, true};
    const ConversionSpec spec = {{9, 2, 16, false}, {18, 2, 8, true}, std::nullopt, 2, true};
    const ConversionPlan plan(spec);
    Image source(spec.source, 3);
    Image target(spec.target, 3);
    const Bytes pixels = RandomBytes(source.GetSize(), 6);
    std::copy(pixels.begin(), pixels.end(), source.GetData());
    plan(source, target);
    const auto rowStep = [](const Image& image) {
        return static_cast<std::ptrdiff_t>(image.GetRowStride());
    };
    const auto planeStep = static_cast<std::ptrdiff_t>(target.GetPlaneStride());
    const Bytes expected = NaiveRun(join, pixels, {0, rowStep(source), 0}, Bytes(target.GetSize()),
                                    {0, rowStep(target), planeStep}, 3);
    EXPECT_EQ(Bytes(target.GetData(), target.GetData() + target.GetSize()), expected);
}

std::string TextOfRefusal(const ConversionPlan& plan, const Image& source, Image& target)
{
    try {
        plan(source, target);
    } catch (const PelkraftError& error) {
        EXPECT_EQ(error.GetStatus(), PLK_INVALID);
        std::string text = error.what();
        EXPECT_EQ(text.find(std::string(error.GetField()) + " is "), 0U);
        return text;
    }
    return "";
}

TEST(Images, MustHaveThePlansFormats)
{
    const ConversionSpec spec = SplitSpec();
    const ConversionPlan plan(spec);
    Image target(spec.target, 3);
    const auto refusalOf = [&](const RowFormat& format, std::uint64_t rows) {
        return TextOfRefusal(plan, Image(format, rows), target);
    };
    EXPECT_EQ(refusalOf(spec.source, 3), "");
    RowFormat format = spec.source;
    format.width += 1;
    EXPECT_EQ(refusalOf(format, 3), "source.width is 6; it must be 5");
    format = spec.source;
    format.channels += 1;
    EXPECT_EQ(refusalOf(format, 3), "source.channels is 5; it must be 4");
    format = spec.source;
    format.bits = 1;
    EXPECT_EQ(refusalOf(format, 3), "source.bits is 1; it must be 8");
    format = spec.source;
    format.planar = true;
    EXPECT_EQ(refusalOf(format, 3), "source.planar is 1; it must be 0");
    EXPECT_EQ(refusalOf(spec.source, 2), "target.rows is 3; it must be 2");
    Image other(spec.source, 3);
    EXPECT_EQ(TextOfRefusal(plan, Image(spec.source, 3), other),
              "target.planar is 0; it must be 1");
}

TEST(Images, MayBeEmpty)
{
    for (const RowFormat& format : {RowFormat{0, 4, 8, false}, {5, 0, 8, true}, {5, 4, 8, true}})
        for (const std::uint64_t rows : {0U, 2U}) {
            const Image source(format, rows);
            Image target(format, rows);
            ConversionPlan({format, format})(source, target);
            const Image copy = target;
            EXPECT_EQ(copy.GetSize(), format.width * format.channels != 0 ? rows * 64 : 0U);
            EXPECT_EQ(copy.GetData() == nullptr, copy.GetSize() == 0);
        }
    EXPECT_EQ(Image().GetData(), nullptr);
}

TEST(Images, AreRefusedWhereNoMemoryCouldHoldThem)
{
    EXPECT_THROW(Image({-1, 4, 8, false}, 2), PelkraftError);
    EXPECT_THROW(Image({5, 4, 12, false}, 2), PelkraftError);
    const auto most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_THROW(Image({5, 4, 8, false}, most), std::bad_alloc);
    EXPECT_THROW(Image({PTRDIFF_MAX / 4, 4, 8, false}, 1), std::bad_alloc);
    EXPECT_EQ(Image({0, 4, 8, false}, most).GetSize(), 0U);
}

constexpr std::string_view patternText = R"(DotWeavePattern
VERSION 2
BEGIN_OUT_INKS LightCyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS LightCyan END_INKS
BEGIN_VALUES
1 1 0-255
END_VALUES
END_IN_COLOR
)";

TEST(PatternPlans, ApplyTheirText)
{
    const PatternPlan pattern(patternText);
    const Bytes steps = {0, 1, 1};
    Bytes inks(3, 9);
    pattern.Run(3, 1, 3, SourceRows(steps, 3), TargetRows(inks, 3));
    EXPECT_EQ(inks, (Bytes{0, 255, 255}));
    EXPECT_EQ(pattern.GetFacts().out_inks, 1);
    EXPECT_EQ(pattern.GetFacts().in_colours, 1);
    EXPECT_EQ(pattern.GetNames(PLK_OUT_INKS), std::vector<std::string>{"LightCyan"});
    EXPECT_EQ(pattern.GetNames(PLK_IN_COLOURS), std::vector<std::string>{"Cyan"});
    const std::vector<unsigned char> record = pattern.Save();
    EXPECT_TRUE(PatternPlan::Load(record.data(), record.size()) == pattern);
    EXPECT_TRUE(PatternPlan(patternText, PLK_ENGINE_X86) != pattern);
    EXPECT_THROW(PatternPlan(patternText, 1), PelkraftError);
    EXPECT_THROW(pattern.Run(0, 1, 4, SourceRows(steps, 3), TargetRows(inks, 3)), PelkraftError);
}

TEST(PatternPlans, ThrowWithThePlaceInTheText)
{
    try {
        std::string text(patternText);
        text.replace(text.find("LightCyan"), 9, "Cyan LightCyan");
        const PatternPlan pattern(text, PLK_ENGINE_X86);
        FAIL();
    } catch (const PelkraftError& error) {
        EXPECT_EQ(error.GetStatus(), PLK_BAD_TEXT);
        EXPECT_EQ(error.GetFailure().line, 3U);
        EXPECT_EQ(error.GetFailure().column, 16U);
    }
    EXPECT_THROW(PatternPlan(""), PelkraftError);
    EXPECT_THROW(PatternPlan{std::string_view()}, PelkraftError);
    EXPECT_THROW(PatternPlan::Load("x", 1), PelkraftError);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
