// Tries every pair of rows with every operation, and holds the README's table and the page of
// failures against what came of it.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "pelkraft/image_row.h"
#include "zvk/diagnostics.h"

namespace zvk::Pelkraft {
namespace {

struct Kind
{
    std::string name;
    bool planar;
    std::vector<int> depths;
};

const std::vector<Kind>& Kinds()
{
    static const std::vector<Kind> kinds = {{"interleaved 8, 16", false, {8, 16}},
                                            {"planar 8, 16", true, {8, 16}},
                                            {"planar 1, 2", true, {1, 2}},
                                            {"interleaved 1, 2, 10", false, {1, 2, 10}},
                                            {"planar 10", true, {10}}};
    return kinds;
}

// A refusal is logged as well; nobody reads it here.
class NoLog final : public Diagnostics::ILogSink
{
public:
    NoLog() { Diagnostics::Seh::SetDefaultLog(this); }
    ~NoLog() { Diagnostics::Seh::SetDefaultLog(nullptr); }
    void Write(const wchar_t*) override {}
};

using Operation = void (*)(ImageRow& to, const ImageRow& from, bool portable);

void Fill(ImageRow& to, const ImageRow& from, bool portable)
{
    to.FillFrom(from, false, portable);
}

template <int factor>
void Repeat(ImageRow& to, const ImageRow& from, bool portable)
{
    to.FillFromWithPixelRepeat(from, factor, false, portable);
}

void Remap(ImageRow& to, const ImageRow& from, bool portable)
{
    std::vector<int> map(static_cast<std::size_t>(to.GetChannels()), -1);
    map.front() = from.GetChannels() - 1;
    to.FillFromWithRemap(from, map.data(), false, portable);
}

constexpr Operation operations[] = {Fill,       Repeat<2>,  Repeat<4>, Repeat<-1>,
                                    Repeat<-2>, Repeat<-4>, Remap};

struct Outcome
{
    bool sameDepth;
    std::optional<std::string> refusal;
};

std::vector<Outcome> TryAll(const Kind& from, int fromDepth, const Kind& to, int toDepth)
{
    std::vector<Outcome> outcomes;
    for (const int channels : {1, 3, 4, 16, 40}) {
        for (const Operation operation : operations) {
            for (const bool portable : {false, true}) {
                ImageRow source(35, channels, fromDepth, from.planar, nullptr);
                source.FillBuffer(0);
                ImageRow row(140, channels, toDepth, to.planar, nullptr);
                Outcome& outcome = outcomes.emplace_back();
                outcome.sameDepth = fromDepth == toDepth;
                try {
                    operation(row, source, portable);
                } catch (const char* text) {
                    outcome.refusal = text;
                }
            }
        }
    }
    return outcomes;
}

std::vector<Outcome> TryAll(const Kind& from, const Kind& to)
{
    std::vector<Outcome> outcomes;
    for (const int fromDepth : from.depths) {
        for (const int toDepth : to.depths) {
            const std::vector<Outcome> more = TryAll(from, fromDepth, to, toDepth);
            outcomes.insert(outcomes.end(), more.begin(), more.end());
        }
    }
    return outcomes;
}

std::string Cell(const std::vector<Outcome>& outcomes)
{
    bool all = true;
    bool none = true;
    bool atEqualDepth = true;
    for (const Outcome& outcome : outcomes) {
        const bool served = !outcome.refusal;
        all = all && served;
        none = none && !served;
        atEqualDepth = atEqualDepth && served == outcome.sameDepth;
    }
    if (all)
        return "yes";
    if (none)
        return "no";
    return atEqualDepth ? "at equal depth" : "neither yes nor no";
}

std::string PageOf(const std::string& name)
{
    std::ifstream file(std::string(PELKRAFT_SOURCE) + "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Readme, TellsWhatIsServed)
{
    const NoLog noLog;
    std::string table = "| from \\ to |";
    for (const Kind& to : Kinds())
        table.append(" ").append(to.name).append(" |");
    table += "\n|---|---|---|---|---|---|\n";
    for (const Kind& from : Kinds()) {
        table.append("| ").append(from.name).append(" |");
        for (const Kind& to : Kinds())
            table.append(" ").append(Cell(TryAll(from, to))).append(" |");
        table += "\n";
    }
    EXPECT_NE(std::string::npos, PageOf("README.md").find(table)) << table;
}

TEST(PageOfFailures, HasEveryTextThatAPairOfRowsIsRefusedWith)
{
    const NoLog noLog;
    std::set<std::string> texts;
    for (const Kind& from : Kinds()) {
        for (const Kind& to : Kinds()) {
            for (const Outcome& outcome : TryAll(from, to)) {
                if (outcome.refusal)
                    texts.insert(*outcome.refusal);
            }
        }
    }
    const std::string page = PageOf("docs/failures.md");
    EXPECT_FALSE(texts.empty());
    for (const std::string& text : texts)
        EXPECT_NE(std::string::npos, page.find("| `" + text + "` |")) << text;
}

} // namespace
} // namespace zvk::Pelkraft
