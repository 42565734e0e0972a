#include "tools/pelkraft/sample_planes.h"

#include "tools/pelkraft/page_rows.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

RowRequest RequestFor(const TiffPicture& picture, const std::vector<int>& map)
{
    RowRequest request;
    request.from = ShapeOf(picture);
    request.to = {picture.width, map.empty() ? picture.channels : static_cast<int>(map.size()),
                  std::max(picture.bits, 8), true};
    request.map = map;
    request.tones = Tones::Raw;
    return request;
}

} // namespace

SamplePlanes::SamplePlanes(const TiffFile& file, const TiffPicture& picture,
                           const std::vector<int>& map)
    : plan(PlanRows(file, RequestFor(picture, map)))
{}

SamplePlanes::Row::Row(const SamplePlanes& newPlanes)
    : planes(newPlanes), pipeline(newPlanes.plan),
      bytes(static_cast<std::size_t>(newPlanes.plan.Request().to.Bytes()))
{}

} // namespace zvk::Pelkraft::Client
