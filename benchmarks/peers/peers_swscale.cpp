#include "benchmarks/peers/entry.h"

#include <cstring>
#include <memory>
#include <utility>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/opt.h>
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

namespace zvk::Pelkraft::Benchmarks {
namespace {

struct NamedFormats
{
    const char* job;
    const char* entry;
    AVPixelFormat from;
    AVPixelFormat to;
    OwnRule rule = {};
    // Four calls, one for each plane.
    bool byPlanes = false;
};

// Most of its ways go through samples of 14 or 15 bits, on a scale that is a little another.
constexpr OwnRule ownScale{"own scale", 1};
constexpr OwnRule ownScaleNarrowed{"own scale", 2};
constexpr OwnRule ownScaleWide{"own scale", 64};
constexpr OwnRule ownScaleWidened{"own scale", 512};
constexpr OwnRule threshold{"takes the upper half", 0, true};

constexpr NamedFormats formats[] = {
    {"split_3x8", "swscale_RGB24_GBRP", AV_PIX_FMT_RGB24, AV_PIX_FMT_GBRP},
    {"merge_3x8", "swscale_GBRP_RGB24", AV_PIX_FMT_GBRP, AV_PIX_FMT_RGB24},
    {"split_4x8", "swscale_RGBA_GBRAP", AV_PIX_FMT_RGBA, AV_PIX_FMT_GBRAP, ownScale},
    {"merge_4x8", "swscale_GBRAP_RGBA", AV_PIX_FMT_GBRAP, AV_PIX_FMT_RGBA},
    {"split_4x16", "swscale_RGBA64_GBRAP16", AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_GBRAP16LE},
    {"merge_4x16", "swscale_GBRAP16_RGBA64", AV_PIX_FMT_GBRAP16LE, AV_PIX_FMT_RGBA64LE},
    {"widen_4x8", "swscale_RGBA_RGBA64", AV_PIX_FMT_RGBA, AV_PIX_FMT_RGBA64LE, ownScaleWidened},
    {"narrow_4x16", "swscale_RGBA64_RGBA", AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_RGBA, ownScaleNarrowed},
    {"split_widen_4x8", "swscale_RGBA_GBRAP16", AV_PIX_FMT_RGBA, AV_PIX_FMT_GBRAP16LE,
     ownScaleWidened},
    {"split_narrow_4x16", "swscale_RGBA64_GBRAP", AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_GBRAP,
     ownScaleNarrowed},
    {"pack_planes_4x8", "swscale_GRAY8_MONOBLACK", AV_PIX_FMT_GRAY8, AV_PIX_FMT_MONOBLACK,
     threshold, true},
    {"remap_4x8", "swscale_RGBA_BGRA", AV_PIX_FMT_RGBA, AV_PIX_FMT_BGRA},
    {"remap_4x16", "swscale_RGBA64_BGRA64", AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_BGRA64LE, ownScaleWide},
    {"repeat2_4x8", "swscale_point_RGBA", AV_PIX_FMT_RGBA, AV_PIX_FMT_RGBA, ownScale},
    {"repeat4_4x8", "swscale_point_RGBA", AV_PIX_FMT_RGBA, AV_PIX_FMT_RGBA, ownScale},
    {"repeat2_planes_4x8", "swscale_point_GRAY8", AV_PIX_FMT_GRAY8, AV_PIX_FMT_GRAY8, {}, true},
    {"copy_4x8", "swscale_RGBA_RGBA", AV_PIX_FMT_RGBA, AV_PIX_FMT_RGBA},
};

using Context = std::shared_ptr<SwsContext>;

// Null where it doesn't serve the formats.
Context MakeContext(const Job& job, int width, const NamedFormats& named)
{
    const Context context(sws_alloc_context(), sws_freeContext);
    const std::pair<const char*, std::int64_t> settings[] = {
        {"srcw", width},
        {"srch", 1},
        {"dstw", CalcDestinationWidth(job, width)},
        {"dsth", 1},
        {"src_format", named.from},
        {"dst_format", named.to},
        {"sws_flags", SWS_POINT},
        {"src_range", 1},
        {"dst_range", 1},
    };
    for (const auto& [name, value] : settings)
        av_opt_set_int(context.get(), name, value, 0);
    av_opt_set(context.get(), "sws_dither", "none", 0);
    return sws_init_context(context.get(), nullptr, nullptr) < 0 ? nullptr : context;
}

// The places of a row's planes; planar colours stand in the order green, blue, red, alpha.
template <typename Byte>
struct Places
{
    Places(const Geometry& geometry, int width, Byte* row)
    {
        if (!geometry.planar) {
            planes[0] = row;
            strides[0] = static_cast<int>(CalcRowBytes(geometry, width));
            return;
        }
        constexpr std::size_t placeOfChannel[] = {2, 0, 1, 3};
        const std::size_t planeBytes = CalcPlaneBytes(geometry, width);
        for (std::size_t c = 0; c != static_cast<std::size_t>(geometry.channels); ++c) {
            planes[placeOfChannel[c]] = row + c * planeBytes;
            strides[placeOfChannel[c]] = static_cast<int>(planeBytes);
        }
    }

    Byte* planes[4] = {};
    int strides[4] = {};
};

RowCall ScaleRows(const Context& context, const Job& job, int width)
{
    return [=, &job](const unsigned char* source, unsigned char* destination) {
        const Places<const unsigned char> from(job.source, width, source);
        const Places<unsigned char> to(job.destination, CalcDestinationWidth(job, width),
                                       destination);
        sws_scale(context.get(), from.planes, from.strides, 0, 1, to.planes, to.strides);
    };
}

RowCall ScalePlanes(const Context& context, const Job& job, int width)
{
    const std::size_t fromBytes = CalcPlaneBytes(job.source, width);
    const std::size_t toBytes = CalcPlaneBytes(job.destination, CalcDestinationWidth(job, width));
    const auto planes = static_cast<std::size_t>(job.source.channels);
    return [=](const unsigned char* source, unsigned char* destination) {
        const int fromStrides[4] = {static_cast<int>(fromBytes)};
        const int toStrides[4] = {static_cast<int>(toBytes)};
        for (std::size_t c = 0; c != planes; ++c) {
            const unsigned char* from[4] = {source + c * fromBytes};
            unsigned char* to[4] = {destination + c * toBytes};
            sws_scale(context.get(), from, fromStrides, 0, 1, to, toStrides);
        }
    };
}

void Add(Entries& entries, const Job& job)
{
    for (const NamedFormats& named : formats) {
        if (!IsCalled(job, named.job))
            continue;
        entries.push_back({named.entry,
                           [&job, &named](int width) -> RowCall {
                               const Context context = MakeContext(job, width, named);
                               if (context == nullptr)
                                   return nullptr;
                               return named.byPlanes ? ScalePlanes(context, job, width)
                                                     : ScaleRows(context, job, width);
                           },
                           named.rule});
    }
}

} // namespace

Peer StartSwscale()
{
    av_log_set_level(AV_LOG_QUIET);
    return {"swscale " AV_STRINGIFY(LIBSWSCALE_VERSION), Add};
}

} // namespace zvk::Pelkraft::Benchmarks
