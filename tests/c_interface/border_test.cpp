#include "c_interface/border.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

namespace zvk::Pelkraft {
namespace {

std::string EndOf(const std::function<void()>& body)
{
    plk_failure failure = {};
    failure.size = sizeof failure;
    const plk_status status = AtBorder(&failure, body);
    EXPECT_EQ(AtBorder(nullptr, body), status);
    EXPECT_EQ(failure.status, status);
    return std::to_string(status) + " " + failure.field + ": " + failure.text;
}

TEST(Border, TurnsWhateverIsThrownIntoAStatus)
{
    EXPECT_EQ(EndOf([] {}), "0 : ");
    EXPECT_EQ(EndOf([] { throw NullRefusal("spec"); }),
              "1 spec: spec is null; it must point to something");
    EXPECT_EQ(EndOf([] { throw std::bad_alloc(); }), "6 : there is not enough memory");
    EXPECT_EQ(EndOf([] { throw std::length_error("vector"); }), "6 : there is not enough memory");
    EXPECT_EQ(EndOf([] { throw std::runtime_error("a reason"); }),
              "2 : the library refuses this: a reason");
    EXPECT_EQ(EndOf([] { throw "a text"; }), "2 : the library refuses this: a text");
    EXPECT_EQ(EndOf([] { throw 7; }), "2 : the library refuses this: a failure without words");
}

TEST(Border, CutsWhatIsTooLongForARecord)
{
    const std::string longText(1000, 'x');
    const std::string end = EndOf([&] {
        throw Refusal(PLK_INVALID, FieldName(longText.c_str()), 0, 0, longText.c_str(), 12);
    });
    EXPECT_EQ(end, "1 " + longText.substr(0, 31) + ": " + longText.substr(0, 255));
}

TEST(FixedText, WritesNumbersOfAnySize)
{
    const auto textOf = [](const auto&... part) {
        return std::string(FixedText<100>(part...).GetChars().data());
    };
    EXPECT_EQ(textOf(0, "/", -1, "/", 4000000000U), "0/-1/4000000000");
    EXPECT_EQ(textOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

} // namespace
} // namespace zvk::Pelkraft
