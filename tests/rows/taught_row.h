#pragma once

#include "pelkraft/image_row.h"

#include <functional>

namespace zvk::Pelkraft::TestSupport {

// A row whose three bodies do what they are told.
class TaughtRow : public ImageRow
{
public:
    using ImageRow::FillFromSehGuard;
    using ImageRow::FillFromWithPixelRepeatSehGuard;
    using ImageRow::FillFromWithRemapSehGuard;
    using ImageRow::ImageRow;

    // The arguments of a body.
    struct Call
    {
        const char* body = "none";
        const ImageRow* source = nullptr;
        const int* map = nullptr;
        int factor = 0;
        const OptionalParameters* record = nullptr;
        OptionalParameters options;
    };

    std::function<void()> lesson = [] {};
    Call last;

protected:
    void FillFromBody2(const ImageRow& source, const OptionalParameters& options) override
    {
        Note({"fill", &source, nullptr, 0, &options, options});
    }

    void FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                const OptionalParameters& options) override
    {
        Note({"remap", &source, map, 0, &options, options});
    }

    void FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                      const OptionalParameters& options) override
    {
        Note({"repeat", &source, nullptr, factor, &options, options});
    }

private:
    void Note(const Call& call)
    {
        last = call;
        lesson();
    }
};

} // namespace zvk::Pelkraft::TestSupport
