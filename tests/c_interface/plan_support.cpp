#include "tests/c_interface/plan_support.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A refusal has a sentence that names the field, and both texts end with zeros.
void ExpectWhole(const plk_failure& failure)
{
    EXPECT_EQ(failure.field[sizeof failure.field - 1], '\0');
    EXPECT_EQ(failure.text[sizeof failure.text - 1], '\0');
    EXPECT_EQ(std::strncmp(failure.text, failure.field, std::strlen(failure.field)), 0)
        << failure.text;
    EXPECT_GT(std::strlen(failure.text), std::strlen(failure.field) + 3);
}

} // namespace

PlanHandle PlanOf(const plk_spec& spec)
{
    plk_plan* plan = nullptr;
    plk_failure failure = Sized<plk_failure>();
    EXPECT_EQ(WordsOf(plk_plan_create(&spec, &plan, &failure), failure), "OK") << failure.text;
    return PlanHandle(plan);
}

std::string WordsOf(plk_status status, const plk_failure& failure)
{
    if (status == PLK_OK)
        return "OK";
    EXPECT_EQ(failure.status, status);
    ExpectWhole(failure);
    return Words(status, failure.field, failure.given, failure.needed);
}

std::string CreateWords(const plk_spec* spec)
{
    // A pointer that must not stay.
    auto* plan = reinterpret_cast<plk_plan*>(1);
    plk_failure failure = Sized<plk_failure>();
    const plk_status status = plk_plan_create(spec, &plan, &failure);
    EXPECT_EQ(plan == nullptr, status != PLK_OK);
    plk_plan_free(plan);
    return WordsOf(status, failure);
}

std::string RunWords(const plk_plan* plan, const plk_source* source, const plk_target* target,
                     std::uint64_t rows)
{
    plk_failure failure = Sized<plk_failure>();
    const plk_status status = plk_plan_run(plan, source, target, rows, &failure);
    return WordsOf(status, failure);
}

Bytes Saved(const plk_plan* plan)
{
    std::uint64_t needed = 0;
    EXPECT_EQ(plk_plan_save(plan, nullptr, 0, &needed, nullptr), PLK_TOO_SMALL);
    Bytes record(static_cast<std::size_t>(needed));
    EXPECT_EQ(plk_plan_save(plan, record.data(), record.size(), nullptr, nullptr), PLK_OK);
    return record;
}

std::string Described(const plk_plan* plan, std::int32_t form)
{
    std::uint64_t needed = 0;
    EXPECT_EQ(plk_plan_describe(plan, form, nullptr, 0, &needed, nullptr), PLK_TOO_SMALL);
    std::string text(static_cast<std::size_t>(needed), 'x');
    EXPECT_EQ(plk_plan_describe(plan, form, text.data(), needed, &needed, nullptr), PLK_OK);
    EXPECT_EQ(needed, text.size());
    EXPECT_EQ(text.find('\0'), text.size() - 1);
    text.pop_back();
    return text;
}

} // namespace zvk::Pelkraft::TestSupport
