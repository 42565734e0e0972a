#include "tests/tools/tiff_image.h"

#include "tests/support/random_bytes.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace zvk::Pelkraft::TestSupport {
namespace {

std::size_t SampleOf(int pixel, int channels, int channel)
{
    const int sample = pixel * channels + channel;
    return static_cast<std::size_t>(sample);
}

using OpenTiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

void Require(bool condition, const std::string& what)
{
    if (!condition)
        throw std::runtime_error(what);
}

// Bit by bit, most significant first; 16 bits in the machine's order.
void PutSample(std::vector<unsigned char>& bytes, std::size_t index, int bits, unsigned value)
{
    if (bits == 16) {
        const auto word = static_cast<std::uint16_t>(value);
        std::memcpy(bytes.data() + 2 * index, &word, 2);
        return;
    }
    if (bits == 8) {
        bytes[index] = static_cast<unsigned char>(value);
        return;
    }
    for (int bit = 0; bit < bits; ++bit) {
        const std::size_t place =
            index * static_cast<std::size_t>(bits) + static_cast<std::size_t>(bit);
        if ((value >> (bits - 1 - bit) & 1U) != 0)
            bytes[place / 8] = static_cast<unsigned char>(bytes[place / 8] | (0x80U >> place % 8));
    }
}

unsigned GetSample(const std::vector<unsigned char>& bytes, std::size_t index, int bits)
{
    if (bits == 16) {
        std::uint16_t word = 0;
        std::memcpy(&word, bytes.data() + 2 * index, 2);
        return word;
    }
    if (bits == 8)
        return bytes[index];
    unsigned value = 0;
    for (int bit = 0; bit < bits; ++bit) {
        const std::size_t place =
            index * static_cast<std::size_t>(bits) + static_cast<std::size_t>(bit);
        value = value << 1 | (bytes[place / 8] >> (7 - place % 8) & 1U);
    }
    return value;
}

// Samples of a rectangle: of all channels, or of one plane. What lies beyond the image is 0.
std::vector<unsigned char> PackedRow(const TiffImage& image, int left, int y, int width, int plane)
{
    const int first = plane < 0 ? 0 : plane;
    const int count = plane < 0 ? image.channels : 1;
    std::vector<unsigned char> row(static_cast<std::size_t>((width * count * image.bits + 7) / 8));
    for (int x = 0; x < width; ++x) {
        for (int c = 0; c < count; ++c) {
            const bool inside = left + x < image.width && y < image.height;
            PutSample(row, SampleOf(x, count, c), image.bits,
                      inside ? image.At(left + x, y, first + c) : 0U);
        }
    }
    return row;
}

std::vector<unsigned char> PackedBlock(const TiffImage& image, int left, int top, int width,
                                       int height, int plane)
{
    std::vector<unsigned char> block;
    for (int y = top; y < top + height; ++y) {
        const auto row = PackedRow(image, left, y, width, plane);
        block.insert(block.end(), row.begin(), row.end());
    }
    return block;
}

void WritePlane(TIFF* tiff, const TiffImage& image, const FileForm& form, int plane)
{
    const auto sample = static_cast<std::uint16_t>(std::max(plane, 0));
    const int stepY = form.tile > 0 ? form.tile : form.rowsPerStrip;
    const int stepX = form.tile > 0 ? form.tile : image.width;
    for (int y = 0; y < image.height; y += stepY) {
        for (int x = 0; x < image.width; x += stepX) {
            const int rows = form.tile > 0 ? stepY : std::min(stepY, image.height - y);
            auto block = PackedBlock(image, x, y, stepX, rows, plane);
            const auto size = static_cast<tmsize_t>(block.size());
            const auto row = static_cast<std::uint32_t>(y);
            const auto column = static_cast<std::uint32_t>(x);
            const tmsize_t written =
                form.tile > 0
                    ? TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, column, row, 0, sample),
                                           block.data(), size)
                    : TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, row, sample), block.data(),
                                            size);
            Require(written == size, "test picture not written");
        }
    }
}

void WritePage(TIFF* tiff, const TiffImage& image, const FileForm& form)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, image.channels);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, image.bits);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
                 form.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, form.compression);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, form.photometric);
    if (form.tile > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, form.tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, form.tile);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
    }
    if (form.setTags)
        form.setTags(tiff);
    for (int plane = 0; plane < (form.separate ? image.channels : 1); ++plane)
        WritePlane(tiff, image, form, form.separate ? plane : -1);
    Require(TIFFWriteDirectory(tiff) == 1, "test page not written");
}

template <typename Value>
int Field(TIFF* tiff, std::uint32_t tag)
{
    Value value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return static_cast<int>(value);
}

} // namespace

std::uint16_t TiffImage::At(int x, int y, int channel) const
{
    return samples[SampleOf(y * width + x, channels, channel)];
}

std::uint16_t& TiffImage::At(int x, int y, int channel)
{
    return samples[SampleOf(y * width + x, channels, channel)];
}

TiffImage BlankImage(int width, int height, int channels, int bits)
{
    TiffImage image{width, height, channels, bits, {}};
    image.samples.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                         static_cast<std::size_t>(channels));
    return image;
}

TiffImage RandomImage(int width, int height, int channels, int bits, std::uint32_t seed)
{
    TiffImage image = BlankImage(width, height, channels, bits);
    const auto bytes = RandomBytes(2 * image.samples.size(), seed);
    for (std::size_t i = 0; i < image.samples.size(); ++i)
        image.samples[i] =
            static_cast<std::uint16_t>((bytes[2 * i] | bytes[2 * i + 1] << 8) & ((1 << bits) - 1));
    return image;
}

void WriteTiff(const std::string& path, const TiffImage& image, const FileForm& form)
{
    WriteTiffPages(path, {image}, form);
}

void WriteTiffPages(const std::string& path, const std::vector<TiffImage>& images,
                    const FileForm& form)
{
    const OpenTiff tiff(TIFFOpen(path.c_str(), form.mode), TIFFClose);
    Require(tiff != nullptr, "test picture not opened");
    for (const TiffImage& image : images)
        WritePage(tiff.get(), image, form);
}

TiffImage ReadTiff(const std::string& path, FileForm& form, int page)
{
    // Its remarks are no part of a test's result.
    TIFFSetWarningHandler(nullptr);
    const OpenTiff tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
    Require(tiff != nullptr, path + " can't be opened");
    Require(TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(page)) == 1, "no such page");
    TiffImage image = BlankImage(Field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH),
                                 Field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH),
                                 Field<std::uint16_t>(tiff.get(), TIFFTAG_SAMPLESPERPIXEL),
                                 Field<std::uint16_t>(tiff.get(), TIFFTAG_BITSPERSAMPLE));
    form.separate = Field<std::uint16_t>(tiff.get(), TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    form.compression = Field<std::uint16_t>(tiff.get(), TIFFTAG_COMPRESSION);
    form.photometric = Field<std::uint16_t>(tiff.get(), TIFFTAG_PHOTOMETRIC);
    form.rowsPerStrip = Field<std::uint32_t>(tiff.get(), TIFFTAG_ROWSPERSTRIP);

    const int together = form.separate ? 1 : image.channels;
    std::vector<unsigned char> row(static_cast<std::size_t>(TIFFScanlineSize(tiff.get())));
    for (int plane = 0; plane < (form.separate ? image.channels : 1); ++plane) {
        for (int y = 0; y < image.height; ++y) {
            Require(TIFFReadScanline(tiff.get(), row.data(), static_cast<std::uint32_t>(y),
                                     static_cast<std::uint16_t>(plane)) == 1,
                    path + " has a row that can't be read");
            for (int x = 0; x < image.width; ++x) {
                for (int c = 0; c < together; ++c)
                    image.At(x, y, plane + c) = static_cast<std::uint16_t>(
                        GetSample(row, SampleOf(x, together, c), image.bits));
            }
        }
    }
    return image;
}

} // namespace zvk::Pelkraft::TestSupport
