#include "tests/c_interface/any_plan.h"

#include "tests/c_interface/fuzz_input.h"
#include "tests/c_interface/plan_records.h"
#include "tests/c_interface/sealed_record.h"
#include "tests/support/random_bytes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

Bytes SavedBytes(const plk_plan* plan)
{
    std::uint64_t needed = 0;
    plk_plan_save(plan, nullptr, 0, &needed, nullptr);
    Bytes record(static_cast<std::size_t>(needed));
    plk_plan_save(plan, record.data(), record.size(), nullptr, nullptr);
    return record;
}

// The plan of a record, or null.
PlanHandle LoadedPlan(const Bytes& record)
{
    plk_plan* plan = nullptr;
    plk_plan_load(record.data(), record.size(), &plan, nullptr);
    return PlanHandle(plan);
}

std::string CheckSaved(const plk_plan* plan)
{
    const Bytes record = SavedBytes(plan);
    const PlanHandle loaded = LoadedPlan(record);
    if (!loaded)
        return "a saved record is not loaded";
    if (SavedBytes(loaded.get()) != record)
        return "a loaded plan is saved in another way";
    char text[4096];
    for (const std::int32_t form : {0, 1})
        if (plk_plan_describe(plan, form, text, sizeof text, nullptr, nullptr) != PLK_OK)
            return "a plan is not described";
    return "";
}

// Any numbers, with a map of a few entries.
std::string CheckSpecOf(InputNumbers& numbers)
{
    std::array<std::int32_t, 8> map;
    numbers.Fill(map);
    for (std::int32_t& entry : map)
        if (numbers.Next(4) != 0)
            entry = numbers.Signed(4);
    plk_spec spec;
    numbers.Fill(spec);
    spec.size = sizeof spec;
    spec.map = numbers.Next(2) != 0 ? map.data() : nullptr;
    spec.map_count = static_cast<std::uint64_t>(numbers.Next(9));
    // Or hardly any spec would be valid.
    for (std::int32_t* field :
         {&spec.reserved, &spec.source.reserved, &spec.target.reserved, &spec.reserved2,
          &spec.source.planar, &spec.target.planar, &spec.repeat, &spec.mirror, &spec.samples,
          &spec.invert, &spec.clip, &spec.stream, &spec.road})
        if (numbers.Next(16) != 0)
            *field &= 1;
    for (std::int32_t* bits : {&spec.source.bits, &spec.target.bits})
        if (numbers.Next(16) != 0)
            *bits = std::array{1, 2, 8, 10, 16}[static_cast<std::size_t>(numbers.Next(5))];
    if (spec.map != nullptr && numbers.Next(4) != 0)
        spec.target.channels = static_cast<std::int32_t>(spec.map_count);
    else if (numbers.Next(4) != 0)
        spec.target.channels = spec.source.channels;
    // No buffer holds the description of a map that is longer than the real one.
    if (spec.map != nullptr && spec.map_count > map.size())
        spec.map_count = map.size();
    // A plan that inverts keeps some bytes for each channel, which may be more than there are.
    if (spec.target.channels > 1 << 20)
        spec.invert = 0;
    plk_plan* plan = nullptr;
    plk_failure failure = Sized<plk_failure>();
    const plk_status status = plk_plan_create(&spec, &plan, &failure);
    const PlanHandle owner(plan);
    return status == PLK_OK ? CheckSaved(plan) : CheckRefused(status, failure);
}

NaiveGeometry TakeForm(InputNumbers& numbers, int width)
{
    constexpr std::array depths = {1, 2, 8, 16, 8, 16, 8, 10};
    const int bits = depths[static_cast<std::size_t>(numbers.Next(8))];
    return {width, numbers.Next(5), bits, numbers.Next(2) == 1 && bits != 10};
}

NaiveJoin TakeSpec(InputNumbers& numbers)
{
    NaiveJoin join;
    join.repeat = 1 << numbers.Next(3);
    join.source = TakeForm(numbers, numbers.Next(40));
    join.target = TakeForm(numbers, join.source.width * join.repeat);
    if (numbers.Next(4) == 0)
        join.target.width = numbers.Next(60);
    join.mirrored = numbers.Next(2) == 1;
    join.samples = static_cast<NaiveSamples>(numbers.Next(3));
    join.inverted = numbers.Next(4) == 0;
    join.maps = numbers.Next(2) == 1;
    if (!join.maps)
        join.target.channels = join.source.channels;
    for (int i = 0; i != join.target.channels && join.maps; ++i)
        join.map.push_back(numbers.Next(join.source.channels + 3) - 3);
    return join;
}

bool HasNoFullScale(const NaiveGeometry& form)
{
    return !form.planar && form.bits % 8 != 0;
}

bool IsServedJoin(const NaiveJoin& join)
{
    const bool needsFullScale = join.inverted || join.samples == NaiveSamples::AsTones;
    return !needsFullScale || (!HasNoFullScale(join.source) && !HasNoFullScale(join.target));
}

std::string CheckRun(const NaiveTrial& trial, const plk_plan* plan, std::size_t size)
{
    plk_needs needs = Sized<plk_needs>();
    plk_plan_needs(plan, &needs, nullptr);
    const Bytes source = RandomBytes(size, 1);
    const Bytes before = trial.shared ? source : RandomBytes(size, 2);
    Bytes target = before;
    const plk_source from = SourceOf(trial.shared ? target : source, trial.from);
    const plk_target to = TargetOf(target, trial.to);
    plk_failure failure = Sized<plk_failure>();
    const plk_status status =
        plk_plan_run(plan, &from, &to, static_cast<std::uint64_t>(trial.rows), &failure);
    const std::string end = NaiveEnd(trial, needs.in_place != 0, size);
    std::string found = Words(status, failure.field, 0, 0);
    found.resize(std::min(found.find_first_of(".:"), found.size()));
    if ((status == PLK_OK ? "OK" : found) != end)
        return "the run ends with " + found + " instead of " + end;
    if (status != PLK_OK)
        return target == before ? CheckRefused(status, failure) : "a refused run writes";
    if (target != NaiveRun(trial.spec, source, trial.from, before, trial.to, trial.rows))
        return "the run gives other bytes";
    return "";
}

std::string CheckSmallPlan(InputNumbers& numbers)
{
    constexpr int size = 2000;
    NaiveTrial trial = {TakeSpec(numbers), {}, {}, numbers.Next(5), numbers.Next(2) == 1};
    trial.from = TakePlacement(numbers, trial.spec.source, size);
    trial.to = numbers.Next(8) == 0 ? trial.from : TakePlacement(numbers, trial.spec.target, size);
    plk_spec spec = SpecOf(trial.spec);
    spec.stream = numbers.Next(2);
    spec.road = numbers.Next(2);
    plk_plan* plan = nullptr;
    plk_failure failure = Sized<plk_failure>();
    const plk_status status = plk_plan_create(&spec, &plan, &failure);
    const PlanHandle owner(plan);
    // A constant 1 fits every depth.
    if ((status == PLK_OK) != IsServedJoin(trial.spec))
        return "making the plan ends with status " + std::to_string(status) + ": " +
               Describe(trial.spec);
    if (status != PLK_OK)
        return CheckRefused(status, failure);
    const std::string finding = CheckRun(trial, plan, size);
    return finding.empty() ? CheckSaved(plan) : finding + ": " + Describe(trial);
}

// The rest of the input as a record whose frame fits.
std::string CheckRecord(const Bytes& content)
{
    const Bytes record = SealedRecord({'p', 'l', 'k', 'P'}, 1, content);
    const PlanHandle plan = LoadedPlan(record);
    LoadedPlan(content);
    return plan ? CheckSaved(plan.get()) : "";
}

} // namespace

std::string CheckAnyPlan(const std::uint8_t* bytes, std::size_t count)
{
    InputNumbers numbers(bytes, count);
    switch (numbers.Next(4)) {
    case 0:
        return CheckSpecOf(numbers);
    case 1:
        return CheckRecord(numbers.Rest());
    default:
        return CheckSmallPlan(numbers);
    }
}

} // namespace zvk::Pelkraft::TestSupport
