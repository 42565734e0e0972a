#include "tests/c_interface/plan_records.h"
#include "tests/support/random_bytes.h"
#include "tests/threads/thread_work.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int rowsOfThread = 3;
constexpr int width = 133;

NaiveJoin Join(const NaiveGeometry& source, const NaiveGeometry& target)
{
    return {source, target};
}

// Plans of one kernel, of several over a tile, with a map of planes, and with all at once.
std::vector<NaiveJoin> Joins()
{
    std::vector<NaiveJoin> joins = {
        Join({width, 4, 8, false}, {width, 4, 8, true}),
        Join({width, 4, 16, true}, {width, 4, 2, true}),
        Join({width, 3, 8, true}, {width, 3, 8, true}),
        Join({width, 4, 8, false}, {2 * width, 3, 16, true}),
    };
    joins[2].maps = true;
    joins[2].map = {2, -1, -100};
    joins[3].maps = joins[3].mirrored = joins[3].inverted = true;
    joins[3].map = {1, 3, 0};
    joins[3].repeat = 2;
    joins[3].samples = NaiveSamples::AsTones;
    return joins;
}

// Rows one directly after the other, from this row on.
NaivePlacement DenseFrom(const NaiveGeometry& form, int row)
{
    const auto bytes = static_cast<std::ptrdiff_t>(NaiveRowBytes(form));
    return {row * bytes, bytes, form.planar ? bytes / form.channels : 0};
}

} // namespace

struct PlanWork::Work
{
    NaiveJoin join;
    PlanHandle plan;
    Bytes source;
    Bytes expected;
    Bytes picture;
};

PlanWork::PlanWork(int threads)
{
    const int rows = threads * rowsOfThread;
    for (const NaiveJoin& join : Joins()) {
        Work& work = works.emplace_back();
        work.join = join;
        plk_plan* plan = nullptr;
        const plk_spec spec = SpecOf(join);
        EXPECT_EQ(plk_plan_create(&spec, &plan, nullptr), PLK_OK);
        work.plan.reset(plan);
        work.source = RandomBytes(NaiveRowBytes(join.source) * static_cast<std::size_t>(rows), 4);
        work.picture.resize(NaiveRowBytes(join.target) * static_cast<std::size_t>(rows));
        work.expected = NaiveRun(join, work.source, DenseFrom(join.source, 0), work.picture,
                                 DenseFrom(join.target, 0), rows);
    }
}

PlanWork::~PlanWork() = default;

void PlanWork::Run(int thread)
{
    for (Work& work : works) {
        const NaivePlacement to = DenseFrom(work.join.target, thread * rowsOfThread);
        const plk_source source =
            SourceOf(work.source, DenseFrom(work.join.source, thread * rowsOfThread));
        plk_target target = Sized<plk_target>();
        target.base = work.picture.data();
        target.bytes = work.picture.size();
        target.offset = to.offset;
        target.row_stride = to.rowStep;
        target.plane_stride = to.planeStep;
        plk_failure failure = Sized<plk_failure>();
        EXPECT_EQ(plk_plan_run(work.plan.get(), &source, &target, rowsOfThread, &failure), PLK_OK);
        const auto bytes = to.rowStep * rowsOfThread;
        EXPECT_TRUE(std::equal(work.picture.begin() + to.offset,
                               work.picture.begin() + to.offset + bytes,
                               work.expected.begin() + to.offset))
            << Describe(work.join);
        // Refusals and descriptions read the plan too.
        target.row_stride = 1;
        EXPECT_EQ(plk_plan_run(work.plan.get(), &source, &target, rowsOfThread, &failure),
                  PLK_OVERLAP);
        char text[1000];
        EXPECT_EQ(plk_plan_describe(work.plan.get(), PLK_JSON, text, sizeof text, nullptr, nullptr),
                  PLK_OK);
        std::uint64_t bytesOfRecord = 0;
        EXPECT_EQ(plk_plan_save(work.plan.get(), text, sizeof text, &bytesOfRecord, nullptr),
                  PLK_OK);
    }
}

} // namespace zvk::Pelkraft::TestSupport
