#include "tests/rows/refusal.h"
#include "tests/rows/taught_row.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/structured_handler.h"
#include "tests/support/structured_lines.h"
#include "tests/system_tools/recording_sink.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

// The guards, where structured exceptions are logged: whatever leaves a body passes them first.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Lines = std::vector<std::wstring>;

// By this number the compilers' libraries raise what is thrown.
#if defined(_MSC_VER)
const std::wstring throwLine = L"Structured exception: 0xE06D7363 at ";
#else
const std::wstring throwLine = L"Structured exception: 0x20474343 at ";
#endif
const std::wstring violationLine = L"Structured exception: 0xC0000005 at ";
const std::wstring divisionLine = L"Structured exception: 0xC0000094 at ";

constexpr int map[] = {0};

// One of the three conversions, on one of the roads.
struct Conversion
{
    const char* name;
    std::wstring context;
    std::function<void(ImageRow& row, const ImageRow& source)> run;
};

std::vector<Conversion> AllConversions()
{
    const std::wstring start = L"zvk::Pelkraft::ImageRow::";
    const std::wstring end = L" has thrown C++ exception: ";
    std::vector<Conversion> all;
    for (const bool portable : {false, true}) {
        all.push_back({"FillFrom", start + L"FillFrom" + end, [=](ImageRow& row, const auto& from) {
                           row.FillFrom(from, false, portable);
                       }});
        all.push_back({"FillFromWithRemap", start + L"FillFromWithRemap" + end,
                       [=](ImageRow& row, const auto& from) {
                           row.FillFromWithRemap(from, map, false, portable);
                       }});
        all.push_back({"FillFromWithPixelRepeat", start + L"FillFromWithPixelRepeats" + end,
                       [=](ImageRow& row, const auto& from) {
                           row.FillFromWithPixelRepeat(from, 1, false, portable);
                       }});
    }
    return all;
}

// Fails the test unless these are the lines, each of which may go on with an address.
void ExpectLines(const Lines& expected, const Lines& lines)
{
    ASSERT_EQ(expected.size(), lines.size());
    for (std::size_t i = 0; i != lines.size(); ++i) {
        EXPECT_EQ(expected[i], lines[i].substr(0, expected[i].size()));
        if (!IsStructuredLine(expected[i]))
            EXPECT_EQ(expected[i], lines[i]);
        else
            EXPECT_LT(expected[i].size(), lines[i].size());
    }
}

// The number first, then the text: the guard stands inside the clauses.
TEST(StructuredException, IsLoggedByTheGuardBeforeTheClauseLogsTheThrow)
{
    static const std::logic_error failure("no paper");
    const std::pair<std::function<void()>, std::wstring> failures[] = {
        {[] { throw 4000000001UL; }, L"4000000001"},  {[] { throw failure; }, L"no paper"},
        {[] { throw &failure; }, L"no paper"},        {[] { throw "paper jam"; }, L"paper jam"},
        {[] { throw L"cover open"; }, L"cover open"},
    };
    for (const Conversion& conversion : AllConversions())
        for (const auto& [fail, text] : failures) {
            SCOPED_TRACE(conversion.name);
            TaughtRow row;
            row.lesson = fail;
            ExpectLines({throwLine, conversion.context + text},
                        AllLinesOf([&] { conversion.run(row, ImageRow()); }));
        }
}

TEST(StructuredException, IsTheOnlyLineOfAThrowOfAnotherType)
{
    const std::function<void()> failures[] = {[] { throw 5; }, [] { throw std::string("five"); }};
    for (const Conversion& conversion : AllConversions())
        for (const auto& fail : failures) {
            SCOPED_TRACE(conversion.name);
            TaughtRow row;
            row.lesson = fail;
            ExpectLines({throwLine}, AllLinesOf([&] { conversion.run(row, ImageRow()); }));
        }
}

TEST(StructuredException, OfARefusalComesBeforeItsWords)
{
    unsigned char bytes[16] = {};
    const ImageRow source(1, 2, 8, false, bytes);
    ImageRow row(1, 1, 8, false, bytes + 8);
    ExpectLines({throwLine, L"zvk::Pelkraft::ImageRow::FillFrom has thrown C++ exception: "
                            L"zvk::Pelkraft::ImageRow::FillFrom unsupported conversion"},
                AllLinesOf([&] { row.FillFrom(source, nullptr); }));
}

constexpr int width = 300;

// Runs a conversion whose source or destination is closed memory, and says what the host gets.
StructuredException Fault(const Conversion& conversion, const unsigned char* from,
                          unsigned char* to, int bits, bool planar)
{
    const ImageRow source(width, 1, 8, false, const_cast<unsigned char*>(from));
    ImageRow row(width, 1, bits, planar, to);
    return RunUnderHandler([&] { conversion.run(row, source); });
}

bool IsWithin(const void* touched, const unsigned char* start, std::size_t bytes)
{
    const auto* const place = static_cast<const unsigned char*>(touched);
    return place >= start && place < start + bytes;
}

TEST(StructuredException, OfAFaultIsLoggedOnceAndGoesOnToTheHost)
{
    const GuardedBuffer open(2 * width);
    // All of the row lies in the forbidden page after the buffer.
    unsigned char* const closed = open.data() + open.size();
    for (const Conversion& conversion : AllConversions())
        for (const int bits : {8, 16}) {
            SCOPED_TRACE(conversion.name);
            StructuredException exception;
            ExpectLines({violationLine}, AllLinesOf([&] {
                            exception = Fault(conversion, closed, open.data(), bits, false);
                        }));
            EXPECT_EQ(STATUS_ACCESS_VIOLATION, exception.code);
            EXPECT_TRUE(IsWithin(exception.touched, closed, width));
            ExpectLines({violationLine}, AllLinesOf([&] {
                            exception = Fault(conversion, open.data(), closed, bits, true);
                        }));
            EXPECT_EQ(STATUS_ACCESS_VIOLATION, exception.code);
            EXPECT_TRUE(IsWithin(exception.touched, closed, 2 * width));
        }
}

TEST(StructuredException, OfABodyKeepsItsCode)
{
    for (const Conversion& conversion : AllConversions()) {
        SCOPED_TRACE(conversion.name);
        TaughtRow row;
        row.lesson = [] { RaiseException(STATUS_INTEGER_DIVIDE_BY_ZERO, 0, 0, nullptr); };
        StructuredException exception;
        ExpectLines({divisionLine}, AllLinesOf([&] {
                        exception = RunUnderHandler([&] { conversion.run(row, ImageRow()); });
                    }));
        EXPECT_EQ(STATUS_INTEGER_DIVIDE_BY_ZERO, exception.code);
    }
}

// A host may exchange the log while a conversion runs: its lines go to the log of that moment.
TEST(StructuredException, GoesToTheLogThatTheBodyHasSet)
{
    for (const Conversion& conversion : AllConversions())
        for (const bool isThrow : {false, true}) {
            SCOPED_TRACE(conversion.name);
            Diagnostics::RecordingSink later;
            TaughtRow row;
            row.lesson = [&] {
                Diagnostics::Seh::SetDefaultLog(&later);
                if (isThrow)
                    throw "paper jam";
                RaiseException(STATUS_ACCESS_VIOLATION, 0, 0, nullptr);
            };
            const Lines earlierLines =
                AllLinesOf([&] { RunUnderHandler([&] { conversion.run(row, ImageRow()); }); });
            ExpectLines({}, earlierLines);
            ExpectLines(isThrow ? Lines{throwLine, conversion.context + L"paper jam"}
                                : Lines{violationLine},
                        later.Lines());
        }
}

TEST(StructuredException, IsLoggedByTheGuardsThemselves)
{
    TaughtRow row;
    const ImageRow source;
    const ImageRow::OptionalParameters options;
    row.lesson = [] { throw "from the body"; };
    ExpectLines({throwLine}, AllLinesOf([&] { row.FillFromSehGuard(source, options); }));
    ExpectLines({throwLine},
                AllLinesOf([&] { row.FillFromWithRemapSehGuard(source, map, options); }));
    ExpectLines({throwLine},
                AllLinesOf([&] { row.FillFromWithPixelRepeatSehGuard(source, 1, options); }));
}

class BrokenSink final : public Diagnostics::ILogSink
{
public:
    BrokenSink() { Diagnostics::Seh::SetDefaultLog(this); }
    ~BrokenSink() { Diagnostics::Seh::SetDefaultLog(nullptr); }
    BrokenSink(const BrokenSink&) = delete;
    BrokenSink& operator=(const BrokenSink&) = delete;

    void Write(const wchar_t*) override
    {
        ++lines;
        throw std::runtime_error("no room in the log");
    }

    int lines = 0;
};

TEST(StructuredException, IsNotReplacedByAFailureOfTheLog)
{
    for (const Conversion& conversion : AllConversions()) {
        SCOPED_TRACE(conversion.name);
        TaughtRow row;
        row.lesson = [] { RaiseException(STATUS_ACCESS_VIOLATION, 0, 0, nullptr); };
        const BrokenSink sink;
        EXPECT_EQ(STATUS_ACCESS_VIOLATION,
                  RunUnderHandler([&] { conversion.run(row, ImageRow()); }).code);
        EXPECT_EQ(1, sink.lines);
        row.lesson = [] { throw "paper jam"; };
        EXPECT_EQ(sink.lines, 1);
        try {
            conversion.run(row, ImageRow());
            ADD_FAILURE() << "nothing is thrown";
        } catch (const char* text) {
            EXPECT_STREQ("paper jam", text);
        }
        EXPECT_EQ(3, sink.lines);
    }
}

// A throw has no handler of the host's in its way, and takes its objects along.
TEST(StructuredException, OfAThrowLeavesTheUnwindingToTheCompiler)
{
    struct Counted
    {
        explicit Counted(int& newCount) : count(newCount) { ++count; }
        ~Counted() { --count; }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;
        int& count;
    };
    int alive = 0;
    TaughtRow row;
    row.lesson = [&] {
        const Counted inside(alive);
        throw "paper jam";
    };
    EXPECT_EQ("paper jam", EndOf([&] {
                  const Counted outside(alive);
                  row.FillFrom(ImageRow(), nullptr);
              }));
    EXPECT_EQ(0, alive);
    EXPECT_EQ(0, std::uncaught_exceptions());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
