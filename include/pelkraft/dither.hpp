// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pelkraft/dither.h"
#include "pelkraft/plan.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The functions of dither.h as classes of C++17. They say there what they do.
namespace zvk::Pelkraft {

// The tones of a channel. Its fields are those of plk_tones.
struct ChannelTones
{
    // The expected ink of each step.
    std::vector<std::uint32_t> inks;
    std::int32_t noInk = 0;
    std::int32_t fullInk = 255;
};

// A dither as it is asked for. Its fields are those of plk_dither_spec.
struct DitherSpec
{
    // 8 or 16.
    std::int32_t bits = 8;
    // By channel.
    std::vector<ChannelTones> tones;
    std::int32_t road = PLK_ROAD_AUTOMATIC;
    // 65,536 ranks, or none for the library's own.
    std::vector<std::uint16_t> mask = {};
};

// A dither, made ready. Copies share it and never change it, so that any number of threads may use
// it at once. One that was moved from can only be assigned to or destroyed.
class DitherPlan
{
public:
    // Checks all of it and makes it ready.
    explicit DitherPlan(const DitherSpec& spec)
    {
        if (!spec.mask.empty() && spec.mask.size() != 65536)
            RefuseMask(spec.mask.size());
        std::vector<plk_tones> tones;
        for (const ChannelTones& channel : spec.tones)
            tones.push_back({channel.inks.data(), static_cast<std::int32_t>(channel.inks.size()),
                             channel.noInk, channel.fullInk, 0});
        plk_dither_spec record = {};
        record.size = sizeof record;
        record.bits = spec.bits;
        record.tones = tones.data();
        record.channels = static_cast<std::int32_t>(tones.size());
        record.road = spec.road;
        record.mask = spec.mask.empty() ? nullptr : spec.mask.data();
        plk_dither* made = nullptr;
        RequireOk([&](plk_failure* failure) { return plk_dither_create(&record, &made, failure); });
        handle.reset(made, plk_dither_free);
    }

    // Dithers rows of so many pixels, the first of which stands at this place of its page.
    void Run(std::int64_t x, std::int64_t y, std::uint64_t rows, std::uint64_t pixels,
             const plk_source& source, const plk_target& target) const
    {
        RequireOk([&](plk_failure* failure) {
            return plk_dither_run(Get(), x, y, rows, pixels, &source, &target, failure);
        });
    }

    // The bytes that its pixels take.
    plk_dither_facts GetFacts() const
    {
        plk_dither_facts facts = {};
        facts.size = sizeof facts;
        RequireOk([&](plk_failure* failure) { return plk_dither_needs(Get(), &facts, failure); });
        return facts;
    }

    // For functions of dither.h. It stays this object's.
    const plk_dither* Get() const noexcept { return handle.get(); }

private:
    [[noreturn]] static void RefuseMask(std::size_t ranks)
    {
        plk_failure failure = {};
        failure.size = sizeof failure;
        failure.given = static_cast<std::int64_t>(ranks);
        failure.needed = 65536;
        const std::string text =
            "mask has " + std::to_string(ranks) + " ranks; it must have 65536, or none";
        std::string("mask").copy(failure.field, sizeof failure.field - 1);
        text.copy(failure.text, sizeof failure.text - 1);
        throw PelkraftError(PLK_INVALID, failure);
    }

    std::shared_ptr<const plk_dither> handle;
};

} // namespace zvk::Pelkraft
