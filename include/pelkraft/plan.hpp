// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pelkraft/plan.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// The functions of plan.h as classes of C++17. They say there what they do.
namespace zvk::Pelkraft {

// A refusal. The text is the record's sentence.
class PelkraftError : public std::runtime_error
{
public:
    // The record of a refusal with this status.
    PelkraftError(plk_status newStatus, const plk_failure& newFailure)
        : std::runtime_error(newFailure.text), failure(newFailure)
    {
        failure.status = newStatus;
    }

    // All that the library says of it: status, field, numbers given and needed, place in a text.
    const plk_failure& GetFailure() const noexcept { return failure; }
    // The status.
    plk_status GetStatus() const noexcept { return failure.status; }
    // The field or argument, or an empty text.
    const char* GetField() const noexcept { return failure.field; }

private:
    plk_failure failure;
};

// Calls a function of plan.h with a record for its failure, and throws that as a PelkraftError.
template <typename Call>
void RequireOk(const Call& call)
{
    // The library fills it where the answer is a failure.
    plk_failure failure;
    failure.size = sizeof failure;
    const plk_status status = call(&failure);
    if (status != PLK_OK)
        throw PelkraftError(status, failure);
}

// Asks for the size of the bytes that call(buffer, size, needed, failure) gives, then for them.
template <typename Bytes, typename Call>
Bytes FetchBytes(const Call& call)
{
    std::uint64_t needed = 0;
    RequireOk([&](plk_failure* failure) {
        const plk_status status = call(nullptr, std::uint64_t{0}, &needed, failure);
        return status == PLK_TOO_SMALL ? PLK_OK : status;
    });
    Bytes bytes(static_cast<std::size_t>(needed), '\0');
    RequireOk([&](plk_failure* failure) { return call(&bytes[0], needed, nullptr, failure); });
    return bytes;
}

// The form of a row.
struct RowFormat
{
    // Pixels.
    std::int64_t width = 0;
    // Samples of a pixel.
    std::int32_t channels = 0;
    // 1, 2, 8, 10 or 16.
    std::int32_t bits = 8;
    // Planes, or interleaved samples.
    bool planar = false;

    // True for the same form.
    friend bool operator==(const RowFormat& one, const RowFormat& other) noexcept
    {
        return one.width == other.width && one.channels == other.channels &&
               one.bits == other.bits && one.planar == other.planar;
    }
    // The opposite.
    friend bool operator!=(const RowFormat& one, const RowFormat& other) noexcept
    {
        return !(one == other);
    }
};

// A conversion as it is asked for. Its fields are those of plk_spec.
struct ConversionSpec
{
    // The rows that are read.
    RowFormat source;
    // The rows that are written.
    RowFormat target;
    // An entry for each channel of the target; without a map the channels stay as they are.
    std::optional<std::vector<std::int32_t>> map = std::nullopt;
    std::int32_t repeat = 1;
    bool mirror = false;
    std::int32_t samples = PLK_SAMPLES_AS_FILL;
    bool invert = false;
    bool clip = false;
    bool stream = false;
    std::int32_t road = PLK_ROAD_AUTOMATIC;
};

// Rows in memory, as a record of plan.h. Whatever they stand in must outlive the view.
template <typename Record, typename Base>
struct RowsView : Record
{
    // So many bytes from base on.
    RowsView(Base* newBase, std::uint64_t newBytes, std::int64_t rowStride,
             std::int64_t planeStride = 0, std::int64_t newOffset = 0) noexcept
    {
        static_cast<Record&>(*this) = {sizeof(Record), 0,         newBase,    newBytes,
                                       newOffset,      rowStride, planeStride};
    }

    // The samples of anything with data and size, such as a vector, an array or a span.
    template <typename Samples, typename = std::enable_if_t<std::is_convertible_v<
                                    decltype(std::declval<Samples>().data()), Base*>>>
    explicit RowsView(Samples&& samples, std::int64_t rowStride, std::int64_t planeStride = 0,
                      std::int64_t newOffset = 0) noexcept
        : RowsView(samples.data(), samples.size() * sizeof *samples.data(), rowStride, planeStride,
                   newOffset)
    {}
};

// Rows that are read, and rows that are written.
using SourceRows = RowsView<plk_source, const void>;
using TargetRows = RowsView<plk_target, void>;

// A handle that its copies share and never change, so that any number of threads may use it at
// once. One that was moved from can only be assigned to or destroyed.
template <typename Handle,
          plk_status (*save)(const Handle*, void*, uint64_t, uint64_t*, plk_failure*),
          void (*release)(Handle*)>
class SharedHandle
{
public:
    // The saved record, the same for equal ones.
    std::vector<unsigned char> Save() const
    {
        return FetchBytes<std::vector<unsigned char>>(
            [this](auto... arguments) { return save(handle.get(), arguments...); });
    }

    // For functions of plan.h. It stays this object's.
    const Handle* Get() const noexcept { return handle.get(); }

    // Equal ones do the same.
    friend bool operator==(const SharedHandle& one, const SharedHandle& other)
    {
        return one.handle == other.handle || one.Save() == other.Save();
    }
    // The opposite.
    friend bool operator!=(const SharedHandle& one, const SharedHandle& other)
    {
        return !(one == other);
    }

protected:
    // Without a handle, until Make is called.
    SharedHandle() = default;

    // Keeps what a function of plan.h makes.
    template <typename Maker>
    void Make(const Maker& maker)
    {
        Handle* made = nullptr;
        RequireOk([&](plk_failure* failure) { return maker(&made, failure); });
        handle.reset(made, release);
    }

private:
    std::shared_ptr<const Handle> handle;
};

class Image;

// A conversion, decided.
class ConversionPlan : public SharedHandle<plk_plan, plk_plan_save, plk_plan_free>
{
public:
    // Checks all of it and makes a plan.
    explicit ConversionPlan(const ConversionSpec& spec)
    {
        static constexpr std::int32_t none = 0;
        plk_spec record = {};
        record.size = sizeof record;
        record.source = FormatOf(spec.source);
        record.target = FormatOf(spec.target);
        if (spec.map) {
            // A map without entries needs an address too.
            record.map = spec.map->empty() ? &none : spec.map->data();
            record.map_count = spec.map->size();
        }
        record.repeat = spec.repeat;
        record.mirror = spec.mirror ? 1 : 0;
        record.samples = spec.samples;
        record.invert = spec.invert ? 1 : 0;
        record.clip = spec.clip ? 1 : 0;
        record.stream = spec.stream ? 1 : 0;
        record.road = spec.road;
        Make([&](plk_plan** made, plk_failure* failure) {
            return plk_plan_create(&record, made, failure);
        });
    }

    // Makes the plan of a saved record.
    static ConversionPlan Load(const void* record, std::uint64_t bytes)
    {
        ConversionPlan loaded;
        loaded.Make([=](plk_plan** made, plk_failure* failure) {
            return plk_plan_load(record, bytes, made, failure);
        });
        return loaded;
    }

    // Converts so many rows.
    void Run(const plk_source& source, const plk_target& target, std::uint64_t rows) const
    {
        RequireOk([&](plk_failure* failure) {
            return plk_plan_run(Get(), &source, &target, rows, failure);
        });
    }

    // Converts all rows of a picture. Both must have the plan's formats, and as many rows.
    void operator()(const Image& source, Image& target) const;

    // The bytes that its rows take, and whether they may be converted in place.
    plk_needs GetNeeds() const
    {
        plk_needs needs = {};
        needs.size = sizeof needs;
        RequireOk([&](plk_failure* failure) { return plk_plan_needs(Get(), &needs, failure); });
        return needs;
    }

    // The fields that the plan was made of, in the form that equal plans share.
    ConversionSpec GetSpec() const
    {
        plk_spec record = {};
        record.size = sizeof record;
        RequireOk([&](plk_failure* failure) { return plk_plan_spec(Get(), &record, failure); });
        ConversionSpec spec;
        spec.source = FormatOf(record.source);
        spec.target = FormatOf(record.target);
        if (record.map != nullptr)
            spec.map.emplace(record.map, record.map + record.map_count);
        spec.repeat = record.repeat;
        spec.mirror = record.mirror != 0;
        spec.samples = record.samples;
        spec.invert = record.invert != 0;
        spec.clip = record.clip != 0;
        spec.stream = record.stream != 0;
        spec.road = record.road;
        return spec;
    }

    // Steps, road, level and bytes, as PLK_TEXT or PLK_JSON.
    std::string Describe(std::int32_t form = PLK_TEXT) const
    {
        auto text = FetchBytes<std::string>(
            [&](auto... arguments) { return plk_plan_describe(Get(), form, arguments...); });
        text.pop_back();
        return text;
    }

private:
    ConversionPlan() = default;

    static plk_format FormatOf(const RowFormat& format) noexcept
    {
        return {format.width, format.channels, format.bits, format.planar ? 1 : 0, 0};
    }

    static RowFormat FormatOf(const plk_format& format) noexcept
    {
        return {format.width, format.channels, format.bits, format.planar != 0};
    }
};

// A picture that owns its rows. Each row begins at an address that is a multiple of 64, and its
// planes follow one another. New samples are 0. Copies have pixels of their own.
class Image
{
public:
    // The multiple at which rows begin.
    static constexpr std::size_t Alignment = 64;

    // A picture without rows.
    Image() = default;

    // So many rows of this form.
    Image(const RowFormat& newFormat, std::uint64_t newRows) : format(newFormat), rows(newRows)
    {
        // The library knows what a row takes, and refuses what no memory could hold.
        const plk_needs needs = ConversionPlan(ConversionSpec{newFormat, newFormat}).GetNeeds();
        planeBytes = needs.source_plane_bytes;
        rowBytes = (needs.source_row_bytes + Alignment - 1) / Alignment * Alignment;
        if (rows != 0 && rowBytes > PTRDIFF_MAX / rows)
            throw std::bad_alloc();
        pixels = Allocate(GetSize());
        if (pixels)
            std::memset(pixels.get(), 0, GetSize());
    }

    // A copy with pixels of its own.
    Image(const Image& other)
        : format(other.format), rows(other.rows), rowBytes(other.rowBytes),
          planeBytes(other.planeBytes), pixels(Allocate(other.GetSize()))
    {
        if (pixels)
            std::memcpy(pixels.get(), other.pixels.get(), GetSize());
    }

    // The other one has no rows any more.
    Image(Image&& other) noexcept { Swap(other); }

    // Takes the place of another one, a copy or one that is moved.
    Image& operator=(Image other) noexcept
    {
        Swap(other);
        return *this;
    }

    // The form of each row.
    const RowFormat& GetFormat() const noexcept { return format; }
    // The number of rows.
    std::uint64_t GetRows() const noexcept { return rows; }
    // Bytes from one row to the next.
    std::int64_t GetRowStride() const noexcept { return static_cast<std::int64_t>(rowBytes); }
    // Bytes from one plane of a row to the next.
    std::int64_t GetPlaneStride() const noexcept { return static_cast<std::int64_t>(planeBytes); }
    // The bytes of all rows.
    std::size_t GetSize() const noexcept { return static_cast<std::size_t>(rows * rowBytes); }

    // Byte 0 of the first row, or null where there are none.
    unsigned char* GetData() noexcept { return pixels.get(); }
    // The same for reading.
    const unsigned char* GetData() const noexcept { return pixels.get(); }
    // Byte 0 of a row and plane.
    unsigned char* GetRow(std::uint64_t row, std::int32_t plane = 0) noexcept
    {
        return pixels.get() + Distance(row, plane);
    }
    // The same for reading.
    const unsigned char* GetRow(std::uint64_t row, std::int32_t plane = 0) const noexcept
    {
        return pixels.get() + Distance(row, plane);
    }

    // Its rows as those that a run reads.
    SourceRows AsSource() const noexcept
    {
        return {GetData(), GetSize(), GetRowStride(), GetPlaneStride()};
    }
    // Its rows as those that a run writes.
    TargetRows AsTarget() noexcept
    {
        return {GetData(), GetSize(), GetRowStride(), GetPlaneStride()};
    }

private:
    struct Free
    {
        // Memory of this alignment has an operator of its own.
        void operator()(unsigned char* bytes) const noexcept
        {
            ::operator delete(bytes, std::align_val_t(Alignment));
        }
    };
    using Pixels = std::unique_ptr<unsigned char, Free>;

    static Pixels Allocate(std::size_t bytes)
    {
        if (bytes == 0)
            return nullptr;
        return Pixels(
            static_cast<unsigned char*>(::operator new(bytes, std::align_val_t(Alignment))));
    }

    std::size_t Distance(std::uint64_t row, std::int32_t plane) const noexcept
    {
        return static_cast<std::size_t>(row * rowBytes +
                                        static_cast<std::uint64_t>(plane) * planeBytes);
    }

    void Swap(Image& other) noexcept
    {
        std::swap(format, other.format);
        std::swap(rows, other.rows);
        std::swap(rowBytes, other.rowBytes);
        std::swap(planeBytes, other.planeBytes);
        std::swap(pixels, other.pixels);
    }

    RowFormat format;
    std::uint64_t rows = 0;
    std::uint64_t rowBytes = 0;
    std::uint64_t planeBytes = 0;
    Pixels pixels;
};

inline void ConversionPlan::operator()(const Image& source, Image& target) const
{
    const auto require = [](const std::string& field, std::int64_t given, std::int64_t needed) {
        if (given == needed)
            return;
        plk_failure failure = {};
        failure.size = sizeof failure;
        failure.given = given;
        failure.needed = needed;
        const std::string text =
            field + " is " + std::to_string(given) + "; it must be " + std::to_string(needed);
        field.copy(failure.field, sizeof failure.field - 1);
        text.copy(failure.text, sizeof failure.text - 1);
        throw PelkraftError(PLK_INVALID, failure);
    };
    const auto requireFormat = [&](const std::string& side, const RowFormat& given,
                                   const RowFormat& needed) {
        require(side + ".width", given.width, needed.width);
        require(side + ".channels", given.channels, needed.channels);
        require(side + ".bits", given.bits, needed.bits);
        require(side + ".planar", given.planar ? 1 : 0, needed.planar ? 1 : 0);
    };
    const ConversionSpec spec = GetSpec();
    requireFormat("source", source.GetFormat(), spec.source);
    requireFormat("target", target.GetFormat(), spec.target);
    require("target.rows", static_cast<std::int64_t>(target.GetRows()),
            static_cast<std::int64_t>(source.GetRows()));
    Run(source.AsSource(), target.AsTarget(), source.GetRows());
}

// A dot pattern, read.
class PatternPlan : public SharedHandle<plk_pattern, plk_pattern_save, plk_pattern_free>
{
public:
    // Reads a pattern text.
    explicit PatternPlan(std::string_view text, std::int32_t engine = PLK_ENGINE_AUTOMATIC)
    {
        plk_pattern_spec spec = {};
        spec.size = sizeof spec;
        spec.engine = engine;
        Make([&](plk_pattern** made, plk_failure* failure) {
            return plk_pattern_create(text.empty() ? "" : text.data(), text.size(), &spec, made,
                                      failure);
        });
    }

    // Makes the pattern of a saved record.
    static PatternPlan Load(const void* record, std::uint64_t bytes)
    {
        PatternPlan loaded;
        loaded.Make([=](plk_pattern** made, plk_failure* failure) {
            return plk_pattern_load(record, bytes, made, failure);
        });
        return loaded;
    }

    // Applies the pattern to rows of so many pixels.
    void Run(std::uint64_t firstRow, std::uint64_t rows, std::uint64_t pixels,
             const plk_source& source, const plk_target& target) const
    {
        RequireOk([&](plk_failure* failure) {
            return plk_pattern_run(Get(), firstRow, rows, pixels, &source, &target, failure);
        });
    }

    // The bytes that its pixels take, and the numbers of the pattern.
    plk_pattern_facts GetFacts() const
    {
        plk_pattern_facts facts = {};
        facts.size = sizeof facts;
        RequireOk([&](plk_failure* failure) { return plk_pattern_needs(Get(), &facts, failure); });
        return facts;
    }

    // The names of a list, PLK_IN_COLOURS or PLK_OUT_INKS.
    std::vector<std::string> GetNames(std::int32_t list) const
    {
        std::vector<std::string> names;
        while (const char* name =
                   plk_pattern_name(Get(), list, static_cast<std::int32_t>(names.size())))
            names.emplace_back(name);
        return names;
    }

private:
    PatternPlan() = default;
};

} // namespace zvk::Pelkraft
