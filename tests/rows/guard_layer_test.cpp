#include "tests/rows/refusal.h"
#include "tests/rows/taught_row.h"
#include "tests/support/structured_lines.h"
#include "tests/system_tools/recording_sink.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <ostream>
#include <stdexcept>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const wchar_t* fillContext =
    L"zvk::Pelkraft::ImageRow::FillFrom has thrown C++ exception: ";
constexpr const wchar_t* remapContext =
    L"zvk::Pelkraft::ImageRow::FillFromWithRemap has thrown C++ exception: ";
constexpr const wchar_t* repeatContext =
    L"zvk::Pelkraft::ImageRow::FillFromWithPixelRepeats has thrown C++ exception: ";

constexpr int map[] = {0};

// The way into one of the six public conversions.
struct Overload
{
    const char* name;
    void (*call)(ImageRow& row, const ImageRow& source);
    const wchar_t* context;
};

// Or the test's report would show the record's bytes.
void PrintTo(const Overload& overload, std::ostream* out)
{
    *out << overload.name;
}

const Overload overloads[] = {
    {"FillFrom, record", [](ImageRow& row, const ImageRow& from) { row.FillFrom(from, nullptr); },
     fillContext},
    {"FillFrom, flags",
     [](ImageRow& row, const ImageRow& from) { row.FillFrom(from, false, false); }, fillContext},
    {"FillFromWithRemap, record",
     [](ImageRow& row, const ImageRow& from) { row.FillFromWithRemap(from, map, nullptr); },
     remapContext},
    {"FillFromWithRemap, flags",
     [](ImageRow& row, const ImageRow& from) { row.FillFromWithRemap(from, map, true, true); },
     remapContext},
    {"FillFromWithPixelRepeat, record",
     [](ImageRow& row, const ImageRow& from) { row.FillFromWithPixelRepeat(from, 2, nullptr); },
     repeatContext},
    {"FillFromWithPixelRepeat, flags",
     [](ImageRow& row, const ImageRow& from) { row.FillFromWithPixelRepeat(from, 2, true, false); },
     repeatContext},
};

using Lines = std::vector<std::wstring>;

bool IsClauseLine(const std::wstring& line)
{
    return !IsStructuredLine(line);
}

class Guard : public ::testing::TestWithParam<Overload>
{
protected:
    void Run() { GetParam().call(row, source); }
    Lines Logged()
    {
        return LinesOf([this] { Run(); });
    }
    Lines OneLine(const std::wstring& text) const { return {GetParam().context + text}; }

    // The failure that passes once it has been logged in one line.
    template <typename Failure>
    Failure CaughtAfterLog(const std::wstring& text)
    {
        Failure caught{};
        EXPECT_EQ(OneLine(text), LinesOf([&] {
                      try {
                          Run();
                      } catch (Failure failure) {
                          caught = failure;
                      }
                  }));
        return caught;
    }

    TaughtRow row;
    ImageRow source;
};

TEST_P(Guard, LogsNothingWhereNothingIsThrown)
{
    EXPECT_EQ(Lines{}, Logged());
    EXPECT_EQ(&source, row.last.source);
}

TEST_P(Guard, LogsANumberOnceAndLetsItPass)
{
    row.lesson = [] { throw 4000000001UL; };
    EXPECT_EQ(4000000001UL, CaughtAfterLog<unsigned long>(L"4000000001"));
}

// Shows where it was made.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const Failure*& place) : std::runtime_error("out of ink") { place = this; }
    Failure(const Failure&) = default;
};

TEST_P(Guard, LogsAnExceptionOnceAndLetsTheSameObjectPass)
{
    const Failure* thrown = nullptr;
    const std::exception* caught = nullptr;
    row.lesson = [&] { throw Failure(thrown); };
    EXPECT_EQ(OneLine(L"out of ink"), LinesOf([&] {
                  try {
                      Run();
                  } catch (const Failure& failure) {
                      caught = &failure;
                  }
              }));
    EXPECT_NE(nullptr, caught);
    EXPECT_EQ(thrown, caught);
}

TEST_P(Guard, LogsAPointerToAnExceptionOnceAndLetsItPass)
{
    static const std::logic_error failure("no paper");
    row.lesson = [] { throw &failure; };
    EXPECT_EQ(&failure, CaughtAfterLog<const std::logic_error*>(L"no paper"));
}

TEST_P(Guard, LogsANarrowTextOnceAndLetsItPass)
{
    static const char text[] = "paper jam";
    row.lesson = [] { throw static_cast<const char*>(text); };
    EXPECT_EQ(text, CaughtAfterLog<const char*>(L"paper jam"));
    // It is of the very same type.
    EXPECT_EQ("paper jam", EndOf([this] { Run(); }));
}

TEST_P(Guard, LogsAWideTextOnceAndLetsItPass)
{
    static const wchar_t text[] = L"cover open";
    row.lesson = [] { throw static_cast<const wchar_t*>(text); };
    EXPECT_EQ(text, CaughtAfterLog<const wchar_t*>(L"cover open"));
}

TEST_P(Guard, LogsWritableTextsAsTexts)
{
    static char narrow[] = "narrow";
    row.lesson = [] { throw static_cast<char*>(narrow); };
    EXPECT_EQ(OneLine(L"narrow"), Logged());
    EXPECT_EQ("<a text that may be written to>", EndOf([this] { Run(); }));
    static wchar_t wide[] = L"wide";
    row.lesson = [] { throw static_cast<wchar_t*>(wide); };
    EXPECT_EQ(OneLine(L"wide"), Logged());
}

// Both an exception and something else: the clauses are tried in order.
struct Doubled : std::exception
{
    const char* what() const noexcept override { return "by reference"; }
};

TEST_P(Guard, LogsEachFailureInOneClauseOnly)
{
    static Doubled doubled;
    row.lesson = [] { throw doubled; };
    EXPECT_EQ(OneLine(L"by reference"), Logged());
    row.lesson = [] { throw static_cast<std::exception*>(&doubled); };
    EXPECT_EQ(OneLine(L"by reference"), Logged());
    row.lesson = [] { throw nullptr; };
    EXPECT_EQ(1U, Logged().size());
}

template <typename Thrown>
void ExpectToPassUnlogged(TaughtRow& row, const Overload& overload, const Thrown& thrown)
{
    const ImageRow source;
    bool passed = false;
    row.lesson = [&] { throw thrown; };
    EXPECT_EQ(Lines{}, LinesOf([&] {
                  try {
                      overload.call(row, source);
                  } catch (Thrown caught) {
                      passed = caught == thrown;
                  }
              }));
    EXPECT_TRUE(passed);
}

TEST_P(Guard, LetsAnyOtherTypePassUnlogged)
{
    ExpectToPassUnlogged(row, GetParam(), 5);
    ExpectToPassUnlogged(row, GetParam(), 5U);
    ExpectToPassUnlogged(row, GetParam(), 5L);
    ExpectToPassUnlogged(row, GetParam(), 5ULL);
    ExpectToPassUnlogged(row, GetParam(), std::string("a string"));
    ExpectToPassUnlogged(row, GetParam(), std::wstring(L"a wide string"));
    ExpectToPassUnlogged(row, GetParam(), static_cast<const void*>(&row));
    ExpectToPassUnlogged(row, GetParam(), static_cast<const unsigned char*>(nullptr));
}

TEST_P(Guard, LogsToTheSinkThatIsSetWhenTheFailureIsCaught)
{
    static const std::logic_error failure("no paper");
    const std::function<void()> failures[] = {[] { throw 5UL; }, [] { throw failure; },
                                              [] { throw &failure; }, [] { throw "paper jam"; },
                                              [] { throw L"cover open"; }};
    for (const auto& fail : failures) {
        Diagnostics::RecordingSink sink;
        row.lesson = [&] {
            Diagnostics::Seh::SetDefaultLog(&sink);
            fail();
        };
        EXPECT_EQ(Lines{}, Logged());
        const Lines lines = sink.Lines();
        EXPECT_EQ(1, std::count_if(lines.begin(), lines.end(), IsClauseLine));
    }
}

class BrokenSink final : public Diagnostics::ILogSink
{
public:
    void Write(const wchar_t* line) override
    {
        lines += IsClauseLine(line) ? 1 : 0;
        throw std::runtime_error("no room in the log");
    }

    int lines = 0;
};

TEST_P(Guard, KeepsTheFailureWhereTheLogFails)
{
    static const char text[] = "the failure itself";
    const char* caught = nullptr;
    row.lesson = [] { throw static_cast<const char*>(text); };
    BrokenSink sink;
    Diagnostics::Seh::SetDefaultLog(&sink);
    try {
        Run();
    } catch (const char* pointer) {
        caught = pointer;
    } catch (const std::exception&) {
        ADD_FAILURE() << "the log's failure has taken its place";
    }
    Diagnostics::Seh::SetDefaultLog(nullptr);
    EXPECT_EQ(text, caught);
    EXPECT_EQ(1, sink.lines);
}

INSTANTIATE_TEST_SUITE_P(EachOverload, Guard, ::testing::ValuesIn(overloads),
                         [](const auto& tested) {
                             std::string name = tested.param.name;
                             name.replace(name.find(", "), 2, "By");
                             return name;
                         });

TEST(Refusal, OfTheLibraryItselfIsLoggedWithItsContextOnce)
{
    unsigned char bytes[16] = {};
    const ImageRow source(1, 2, 8, false, bytes);
    ImageRow row(1, 1, 8, false, bytes + 8);
    EXPECT_EQ(Lines{fillContext +
                    std::wstring(L"zvk::Pelkraft::ImageRow::FillFrom unsupported conversion")},
              LinesOf([&] { row.FillFrom(source, nullptr); }));
    EXPECT_EQ(Lines{repeatContext + std::wstring(L"zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat"
                                                 L" unsupported conversion")},
              LinesOf([&] { row.FillFromWithPixelRepeat(source, 1, nullptr); }));
    EXPECT_EQ(Lines{remapContext + std::wstring(L"zvk::Pelkraft::ImageRow::FillFromWithRemap"
                                                L" unsupported conversion")},
              LinesOf([&] { row.FillFromWithRemap(source, nullptr, nullptr); }));
}

// The guards by themselves: they call the body and leave failures to the public operations.
TEST(SehGuard, CallsTheOverriddenBodyAndLogsNothing)
{
    TaughtRow row;
    const ImageRow source;
    const ImageRow::OptionalParameters options(true, true);
    row.lesson = [] { throw "from the body"; };
    EXPECT_EQ(Lines{}, LinesOf([&] { row.FillFromSehGuard(source, options); }));
    EXPECT_STREQ("fill", row.last.body);
    EXPECT_EQ(Lines{}, LinesOf([&] { row.FillFromWithRemapSehGuard(source, map, options); }));
    EXPECT_STREQ("remap", row.last.body);
    EXPECT_EQ(map, row.last.map);
    EXPECT_EQ(Lines{}, LinesOf([&] { row.FillFromWithPixelRepeatSehGuard(source, -4, options); }));
    EXPECT_STREQ("repeat", row.last.body);
    EXPECT_EQ(-4, row.last.factor);
    EXPECT_EQ("from the body", EndOf([&] { row.FillFromSehGuard(source, options); }));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
