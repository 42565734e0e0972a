#include "tools/pelkraft/preview_picture.h"

#include "tools/pelkraft/failure.h"

#include <png.h>

#include <algorithm>
#include <cmath>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double longestSide = 1600;
constexpr std::size_t channels = 3;

// The curve between screen values and light.
double LightOf(std::uint8_t value)
{
    const double share = value / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

std::uint8_t ScreenValueOf(double light)
{
    const double share =
        light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(255 * std::clamp(share, 0.0, 1.0)));
}

// The first pixel of a part, of parts that lie evenly over length.
std::uint32_t PartStart(std::uint32_t part, std::uint32_t parts, std::uint32_t length)
{
    return static_cast<std::uint32_t>(std::uint64_t{part} * length / parts);
}

std::uint32_t Scaled(double length, std::uint32_t most)
{
    return static_cast<std::uint32_t>(
        std::clamp(std::floor(length), 1.0, static_cast<double>(most)));
}

} // namespace

PreviewPicture::PreviewPicture(std::uint32_t newWidth, std::uint32_t newHeight, double pixelHeight,
                               const std::vector<ScreenColour>& inks)
    : width(newWidth), height(newHeight), lights(inks.size())
{
    const double seenHeight = height * pixelHeight;
    const double scale =
        std::min({1.0, 1 / pixelHeight, longestSide / std::max<double>(width, seenHeight)});
    shownWidth = Scaled(width * scale, width);
    shownHeight = Scaled(seenHeight * scale, height);
    sums.resize(shownWidth * channels);
    pixels.resize(std::size_t{shownWidth} * shownHeight * channels);
    for (std::size_t ink = 0; ink < inks.size(); ++ink) {
        for (std::size_t value = 0; value < 256; ++value) {
            for (std::size_t c = 0; c < channels; ++c)
                lights[ink][value][c] = static_cast<float>(1 - static_cast<double>(value) / 255 *
                                                                   (1 - LightOf(inks[ink][c])));
        }
    }
}

void PreviewPicture::AddRow(const unsigned char* row)
{
    for (std::uint32_t part = 0; part < shownWidth; ++part) {
        const std::uint32_t start = PartStart(part, shownWidth, width);
        const std::uint32_t end = PartStart(part + 1, shownWidth, width);
        Light sum = {};
        const unsigned char* pixel = row + lights.size() * start;
        const unsigned char* const behind = row + lights.size() * end;
        for (; pixel != behind; pixel += lights.size()) {
            Light light = {1, 1, 1};
            for (std::size_t ink = 0; ink < lights.size(); ++ink) {
                const Light& left = lights[ink][pixel[ink]];
                for (std::size_t c = 0; c < channels; ++c)
                    light[c] *= left[c];
            }
            for (std::size_t c = 0; c < channels; ++c)
                sum[c] += light[c];
        }
        for (std::size_t c = 0; c < channels; ++c)
            sums[part * channels + c] += double{sum[c]} / (end - start);
    }
    ++rowsSummed;
    ++nextRow;
    if (nextRow == PartStart(shownRow + 1, shownHeight, height))
        FinishRow();
}

void PreviewPicture::FinishRow()
{
    std::uint8_t* const row = pixels.data() + std::size_t{shownRow} * sums.size();
    for (std::size_t i = 0; i < sums.size(); ++i)
        row[i] = ScreenValueOf(sums[i] / rowsSummed);
    std::fill(sums.begin(), sums.end(), 0.0);
    rowsSummed = 0;
    ++shownRow;
}

std::string PreviewPicture::Png() const
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = shownWidth;
    image.height = shownHeight;
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr) == 0)
        throw Failure(ExitCode::Memory, {},
                      std::string("the preview can't be made: ") + image.message);
    bytes.resize(size);
    return bytes;
}

} // namespace zvk::Pelkraft::Client
