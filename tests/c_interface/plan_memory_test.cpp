#include "tests/c_interface/plan_support.h"
#include "tests/support/counted_memory.h"

#include <cstring>
#include <functional>

// Memory that runs out: each allocation of each function fails once.
namespace zvk::Pelkraft::TestSupport {
namespace {

const std::int32_t manyEntries[] = {3, 2, 1, 0, PLK_EMPTY};

plk_spec MappedSpec()
{
    plk_spec spec = SpecOf(100, 4, 8, 8);
    spec.target.channels = 5;
    spec.target.planar = 1;
    spec.map = manyEntries;
    spec.map_count = 5;
    return spec;
}

// Runs the call with each allocation failing, until it needs no more of them. What it makes is
// freed by the call itself.
void ExpectNoMemory(const std::function<plk_status(plk_failure*)>& call, std::size_t least)
{
    std::size_t number = 0;
    for (plk_status status = PLK_NO_MEMORY; status != PLK_OK; ++number) {
        plk_failure failure = Sized<plk_failure>();
        CountedMemory memory;
        memory.FailAt(number);
        memory.Start();
        status = call(&failure);
        memory.Stop();
        EXPECT_EQ(memory.CountHeld(), 0) << "leaked after failure " << number;
        if (memory.CountFailed() == 0) {
            EXPECT_EQ(status, PLK_OK);
            break;
        }
        ASSERT_EQ(status, PLK_NO_MEMORY) << number;
        EXPECT_EQ(failure.status, PLK_NO_MEMORY);
        EXPECT_STREQ(failure.field, "");
        EXPECT_STREQ(failure.text, "there is not enough memory");
        ASSERT_LT(number, 100U);
    }
    EXPECT_GE(number, least);
}

TEST(PlanMemory, LeavesNothingWhereAPlanCannotBeMade)
{
    ExpectNoMemory(
        [](plk_failure* failure) {
            const plk_spec spec = MappedSpec();
            auto* plan = reinterpret_cast<plk_plan*>(1);
            const plk_status status = plk_plan_create(&spec, &plan, failure);
            EXPECT_EQ(plan == nullptr, status != PLK_OK);
            plk_plan_free(plan);
            return status;
        },
        2);
}

TEST(PlanMemory, LeavesNothingWhereAPlanCannotBeLoaded)
{
    const Bytes record = Saved(PlanOf(MappedSpec()).get());
    ExpectNoMemory(
        [&](plk_failure* failure) {
            auto* plan = reinterpret_cast<plk_plan*>(1);
            const plk_status status = plk_plan_load(record.data(), record.size(), &plan, failure);
            EXPECT_EQ(plan == nullptr, status != PLK_OK);
            plk_plan_free(plan);
            return status;
        },
        3);
}

TEST(PlanMemory, LeavesTheBufferWhereAPlanCannotBeDescribedOrSaved)
{
    const PlanHandle plan = PlanOf(MappedSpec());
    for (const std::int32_t form : {0, 1, 2})
        ExpectNoMemory(
            [&, form](plk_failure* failure) {
                char buffer[1000] = "unchanged";
                const plk_status status =
                    form == 2 ? plk_plan_save(plan.get(), buffer, sizeof buffer, nullptr, failure)
                              : plk_plan_describe(plan.get(), form, buffer, sizeof buffer, nullptr,
                                                  failure);
                EXPECT_EQ(std::strcmp(buffer, "unchanged") == 0, status != PLK_OK);
                return status;
            },
            1);
}

TEST(PlanMemory, IsNotAskedForByARunOrARefusal)
{
    const PlanHandle plan = PlanOf(MappedSpec());
    const Bytes pixels(4000, 1);
    Bytes inks(5000);
    const plk_source source = SourceOf(pixels, {0, 400, 0});
    plk_target target = TargetOf(inks, {0, 500, 100});
    plk_failure failure = Sized<plk_failure>();
    plk_needs needs = Sized<plk_needs>();
    CountedMemory memory;
    memory.Start();
    const plk_status run = plk_plan_run(plan.get(), &source, &target, 10, &failure);
    const plk_status needed = plk_plan_needs(plan.get(), &needs, &failure);
    memory.Stop();
    EXPECT_EQ(run, PLK_OK);
    EXPECT_EQ(needed, PLK_OK);
    EXPECT_EQ(memory.CountAsked(), 0U);
    // Not even where there is none left.
    const DeniedMemory denied;
    target.row_stride = 7;
    EXPECT_EQ(plk_plan_run(plan.get(), &source, &target, 10, &failure), PLK_OVERLAP);
    EXPECT_STREQ(failure.field, "target.row_stride");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
