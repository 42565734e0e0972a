#include "pattern/pattern_reader.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace zvk::Pelkraft {
namespace {

using TestSupport::Head;
using TestSupport::InColor;

// Writes down all that it is given, refuses nothing, and judges tokens by their texts.
class Recorder final : public PatternHandler
{
public:
    void TakeVersion(std::int32_t version, const PatternToken& keyword) override
    {
        said += keyword.text + "=" + std::to_string(version) + " ";
    }
    void TakeSeed(std::int32_t seed) override { said += "seed=" + std::to_string(seed) + " "; }
    void AllocateInColors(std::int32_t count) override
    {
        said += "records=" + std::to_string(count) + " ";
    }
    void SelectInColor(std::int32_t inColor, const PatternToken& name) override
    {
        said += "in-colour=" + std::to_string(inColor) + ":" + name.text + " ";
    }
    void TakeInk(std::int32_t, std::int32_t position, std::int32_t outInk,
                 const PatternToken& name) override
    {
        said += name.text + "@" + std::to_string(position) + "=" + std::to_string(outInk) + " ";
    }
    void TakeInkCount(std::int32_t, std::int32_t count) override
    {
        said += "inks=" + std::to_string(count) + " ";
    }
    void BeginValueLines(std::int32_t) override { said += "lines: "; }
    void TakeValueLine(std::int32_t, const ValueLine& line) override { Take("line=", line); }
    void TakeBrokenLine(std::int32_t, const ValueLine& line) override { Take("broken=", line); }
    void Refuse(PatternRefusal refusal, const PatternToken& at) override
    {
        said += std::string("[") + TextOf(refusal) + "]@" + at.text + " ";
    }
    void BeginNames(NameList, const PatternToken& opening) override { said += opening.text + " "; }
    void TakeName(NameList list, std::int32_t index, const PatternToken& name) override
    {
        said += (list == NameList::OutInks ? "ink=" : "colour=") + std::to_string(index) + ":" +
                name.text + " ";
    }
    void SkipToken(const PatternToken& token) override { said += "skipped=" + token.text + " "; }
    void SkipValues(const PatternToken& opening, const PatternToken& block) override
    {
        said += "unread=" + opening.text + "/" + block.text + " ";
    }
    void TakeOpenSection(const PatternToken& opening, std::string_view closing) override
    {
        said += "open=" + opening.text + "/" + std::string(closing) + " ";
    }

    bool Means(const PatternToken& token, std::string_view keyword) override
    {
        return token.text == "meant:" + std::string(keyword);
    }
    std::int32_t FindMeantName(NameList, const PatternToken& token) override
    {
        return token.text == "nearly" ? 0 : noIndex;
    }
    SectionEnd FindEnd(const PatternToken& token, const PatternToken&, std::string_view) override
    {
        const auto found = ends.find(token.text);
        return found != ends.end() ? found->second : SectionEnd::None;
    }
    bool IsNumberOf(const PatternToken&, const PatternToken* number) override
    {
        return number == nullptr || number->text != "RANDOM_SEED";
    }
    bool BreaksLine(const PatternToken& token, const ValueLine&) override
    {
        return token.text == "7" || token.text == "END_VALUES";
    }

    std::string said;

private:
    void Take(const char* what, const ValueLine& line)
    {
        said += what + line.stepToken->text;
        if (line.ratioToken != nullptr)
            said += "," + line.ratioToken->text;
        for (std::size_t i = 0; i < mostWeights && line.entryTokens[i] != nullptr; ++i)
            said += "," + line.entryTokens[i]->text;
        said += " ";
    }

    const std::map<std::string, SectionEnd> ends = {{"skip", SectionEnd::Skipped},
                                                    {"here", SectionEnd::Here},
                                                    {"RANDOM_SEED", SectionEnd::Before}};
};

std::string Told(const std::string& text)
{
    Recorder recorder;
    NameTable inColors;
    NameTable outInks;
    PatternReader(mainRules, inColors, outInks, recorder)
        .ReadSections(CutTokens(text, patternComment));
    return recorder.said;
}

// The part of it after the lists of names.
std::string ToldOfBlock(const std::string& block)
{
    const std::string head = Told(Head("2", "A", "X Y"));
    const std::string all = Told(Head("2", "A", "X Y") + block);
    EXPECT_EQ(all.substr(0, head.size()), head);
    return all.substr(head.size());
}

TEST(PatternHandler, IsGivenAllInTheOrderOfTheText)
{
    EXPECT_EQ(Told(Head("2", "A", "X Y") + "RANDOM_SEED 5 odd"),
              "skipped=DotWeavePattern VERSION=2 BEGIN_OUT_INKS ink=0:X ink=1:Y BEGIN_IN_COLORS "
              "records=0 colour=0:A records=1 seed=5 skipped=odd ");
    EXPECT_EQ(ToldOfBlock(InColor("a", "y none X", "1 1 0-4 2 1:3 0-1 1-2")),
              "in-colour=0:a y@0=1 X@1=0 inks=2 lines: line=1,1,0-4 line=2,1:3,0-1,1-2 ");
    EXPECT_EQ(ToldOfBlock("BEGIN_IN_COLOR B BEGIN_VALUES 1 1 0-1 END_VALUES END_IN_COLOR"),
              "unread=BEGIN_VALUES/BEGIN_IN_COLOR ");
}

TEST(PatternHandler, HasTheReaderGoOnWithoutWhatItRefuses)
{
    EXPECT_EQ(ToldOfBlock(InColor("A", "", "8 1 0-1 1 -1:3 0-1 0-2 2 1:1 16-0 0-9 3 1 0-9")),
              "in-colour=0:A inks=0 lines: [step out of range in pattern]@8 broken=8,1,0-1 "
              "[sum of weights out of range in pattern]@-1:3 broken=1,-1:3,0-1,0-2 "
              "[ink position out of range in pattern]@16-0 broken=2,1:1,16-0,0-9 line=3,1,0-9 ");
    EXPECT_EQ(
        ToldOfBlock("VERSION 1 BEGIN_IN_COLOR A BEGIN_VALUES 1 1:1 9-1 8"),
        "VERSION=1 in-colour=0:A lines: [unsupported pattern version]@9-1 [unsupported pattern "
        "version]@8 line=1,1:1,9-1,8 open=BEGIN_VALUES/END_VALUES "
        "open=BEGIN_IN_COLOR/END_IN_COLOR ");
    EXPECT_EQ(
        ToldOfBlock("BEGIN_IN_COLOR BEGIN_INKS X no Y END_INKS END_IN_COLOR"),
        "[BEGIN_INKS without in-colour in pattern]@BEGIN_INKS [BEGIN_INKS without in-colour in "
        "pattern]@BEGIN_INKS ");
    EXPECT_EQ(ToldOfBlock("BEGIN_IN_COLORS B C END_IN_COLORS BEGIN_IN_COLORS D"),
              "BEGIN_IN_COLORS records=0 colour=0:B colour=1:C [in-colour without record in "
              "pattern]@BEGIN_IN_COLORS records=3 BEGIN_IN_COLORS records=0 colour=0:D "
              "open=BEGIN_IN_COLORS/END_IN_COLORS [BEGIN_IN_COLORS without END_IN_COLORS in "
              "pattern]@BEGIN_IN_COLORS [in-colour without record in pattern]@BEGIN_IN_COLORS "
              "records=4 ");
    std::string inks;
    std::string taken;
    for (int i = 0; i < 16; ++i) {
        inks += "X ";
        taken += "X@" + std::to_string(i) + "=0 ";
    }
    EXPECT_EQ(ToldOfBlock(InColor("A", inks + "Y", "")),
              "in-colour=0:A " + taken + "[too many ink positions in pattern]@Y inks=16 lines: ");
}

TEST(PatternHandler, SaysWhereASectionEnds)
{
    EXPECT_EQ(
        ToldOfBlock("BEGIN_IN_COLOR A BEGIN_INKS X skip Y here BEGIN_VALUES skip 1 1 0-1 here "
                    "END_IN_COLOR"),
        "in-colour=0:A X@0=0 Y@1=1 inks=2 lines: line=1,1,0-1 ");
    // Each section that is open ends ahead of the seed.
    EXPECT_EQ(ToldOfBlock("BEGIN_IN_COLOR A BEGIN_INKS X RANDOM_SEED 3"),
              "in-colour=0:A X@0=0 inks=1 seed=3 ");
    EXPECT_EQ(Told("BEGIN_IN_COLORS A RANDOM_SEED 3"),
              "BEGIN_IN_COLORS records=0 colour=0:A records=1 seed=3 ");
    EXPECT_EQ(Told("BEGIN_OUT_INKS A"), "BEGIN_OUT_INKS ink=0:A open=BEGIN_OUT_INKS/END_OUT_INKS ");
}

TEST(PatternHandler, TakesATokenForAnother)
{
    EXPECT_EQ(Told("meant:RANDOM_SEED 4"), "seed=4 ");
    EXPECT_EQ(ToldOfBlock("meant:BEGIN_IN_COLOR nearly meant:BEGIN_INKS nearly other END_INKS "
                          "END_IN_COLOR"),
              "in-colour=0:nearly nearly@0=0 inks=1 ");
    EXPECT_EQ(Told("VERSION RANDOM_SEED 4 RANDOM_SEED"), "VERSION=0 seed=4 seed=0 ");
}

TEST(PatternHandler, BreaksALineOff)
{
    EXPECT_EQ(ToldOfBlock(InColor("A", "", "1 7 1 0-1 2 1:1 0-1 7 1")),
              "in-colour=0:A inks=0 lines: broken=1 line=7,1,0-1 broken=2,1:1,0-1 broken=7,1 ");
}

} // namespace
} // namespace zvk::Pelkraft
