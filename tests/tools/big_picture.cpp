// Makes a TIFF picture of any size, and reads what became of it, row by row. Every sample is a
// function of its place, so that each can be told without the other file.
//   big_picture make FILE WIDTH HEIGHT BITS LAYOUT ROWS_PER_STRIP [packbits]
//   big_picture check FILE WIDTH HEIGHT BITS LAYOUT [same|mirrored|halves|steps]
// LAYOUT is interleaved or planar. Of a picture of 8 channels: "mirrored" has each row from its
// end, "halves" 1 bit for the upper half of all values, "steps" what a pattern of one step for
// each channel makes of that half: the number of the channel, counted from 1.

#include <tiffio.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t channels = 8;

enum class Change
{
    Same,
    Mirrored,
    Halves,
    Steps
};

struct Shape
{
    std::uint32_t width;
    std::uint32_t height;
    int bits;
    bool planar;
};

using OpenTiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

void Require(bool holds, const std::string& text)
{
    if (!holds)
        throw std::runtime_error(text);
}

std::uint32_t Number(const char* text)
{
    return static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

// 16 bits that look like chance; a sample of 8 bits has the upper ones.
std::uint32_t SampleAt(std::uint32_t x, std::uint32_t y, std::uint32_t channel)
{
    std::uint32_t mixed = x * 2654435761U ^ y * 2246822519U ^ channel * 3266489917U;
    mixed = (mixed ^ mixed >> 15) * 668265263U;
    return mixed >> 16;
}

// Calls put(index, sample) for each sample of a row, or of one plane of it.
template <typename Put>
void ForEachSample(const Shape& shape, std::uint32_t plane, Put put)
{
    std::size_t index = 0;
    for (std::uint32_t x = 0; x < shape.width; ++x) {
        for (std::uint32_t c = 0; c < (shape.planar ? 1 : channels); ++c)
            put(index++, x, plane + c);
    }
}

void Make(const std::string& path, const Shape& shape, std::uint32_t rowsPerStrip, bool packed)
{
    const OpenTiff tiff(TIFFOpen(path.c_str(), "w"), TIFFClose);
    Require(tiff != nullptr, "not opened");
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, shape.width);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, shape.height);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, channels);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, shape.bits);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG,
                 shape.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, packed ? COMPRESSION_PACKBITS : COMPRESSION_NONE);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED);
    TIFFSetField(tiff.get(), TIFFTAG_INKSET, INKSET_MULTIINK);
    TIFFSetField(tiff.get(), TIFFTAG_NUMBEROFINKS, channels);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
    std::vector<unsigned char> row(static_cast<std::size_t>(TIFFScanlineSize(tiff.get())));
    for (std::uint32_t plane = 0; plane < (shape.planar ? channels : 1); ++plane) {
        for (std::uint32_t y = 0; y < shape.height; ++y) {
            ForEachSample(shape, plane, [&](std::size_t i, std::uint32_t x, std::uint32_t c) {
                const std::uint32_t sample = SampleAt(x, y, c);
                if (shape.bits == 8) {
                    row[i] = static_cast<unsigned char>(sample >> 8);
                } else {
                    row[2 * i] = static_cast<unsigned char>(sample);
                    row[2 * i + 1] = static_cast<unsigned char>(sample >> 8);
                }
            });
            Require(TIFFWriteScanline(tiff.get(), row.data(), y,
                                      static_cast<std::uint16_t>(plane)) == 1,
                    "not written");
        }
    }
}

// The sample that belongs at a place of the new picture.
std::uint32_t Expected(const Shape& shape, Change change, std::uint32_t x, std::uint32_t y,
                       std::uint32_t c)
{
    switch (change) {
    case Change::Mirrored:
        return SampleAt(shape.width - 1 - x, y, c) >> 8;
    case Change::Halves:
        // Half a tone goes down: 32768 is the last value of tone 127, the last of level 0.
        return SampleAt(x, y, c) > 32768 ? 1 : 0;
    case Change::Steps:
        return (SampleAt(x, y, c) >> 15) * (c + 1);
    default:
        return SampleAt(x, y, c) >> 8;
    }
}

Change ChangeOf(const std::string& word)
{
    if (word == "mirrored")
        return Change::Mirrored;
    if (word == "halves")
        return Change::Halves;
    if (word == "steps")
        return Change::Steps;
    Require(word == "same", "no change of the name " + word);
    return Change::Same;
}

std::uint32_t Present(const std::vector<unsigned char>& row, int bits, std::size_t index)
{
    return bits == 8 ? row[index] : row[index / 8] >> (7 - index % 8) & 1U;
}

void Check(const std::string& path, const Shape& shape, Change change)
{
    const OpenTiff tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
    Require(tiff != nullptr, "not opened");
    const auto field = [&](std::uint32_t tag, auto value) {
        TIFFGetFieldDefaulted(tiff.get(), tag, &value);
        return static_cast<std::uint32_t>(value);
    };
    Require(field(TIFFTAG_IMAGEWIDTH, std::uint32_t{}) == shape.width &&
                field(TIFFTAG_IMAGELENGTH, std::uint32_t{}) == shape.height &&
                field(TIFFTAG_SAMPLESPERPIXEL, std::uint16_t{}) == channels &&
                field(TIFFTAG_BITSPERSAMPLE, std::uint16_t{}) ==
                    static_cast<std::uint32_t>(shape.bits) &&
                (field(TIFFTAG_PLANARCONFIG, std::uint16_t{}) == PLANARCONFIG_SEPARATE) ==
                    shape.planar,
            "another shape");
    std::vector<unsigned char> row(static_cast<std::size_t>(TIFFScanlineSize(tiff.get())));
    for (std::uint32_t plane = 0; plane < (shape.planar ? channels : 1); ++plane) {
        for (std::uint32_t y = 0; y < shape.height; ++y) {
            Require(
                TIFFReadScanline(tiff.get(), row.data(), y, static_cast<std::uint16_t>(plane)) == 1,
                "not read");
            bool same = true;
            ForEachSample(shape, plane, [&](std::size_t i, std::uint32_t x, std::uint32_t c) {
                same = same && Present(row, shape.bits, i) == Expected(shape, change, x, y, c);
            });
            Require(same, "other samples in row " + std::to_string(y));
        }
    }
}

} // namespace

int main(int argc, char** argv)
try {
    const std::vector<std::string> words(argv, argv + argc);
    Require(argc >= 8, "usage: big_picture make|check FILE WIDTH HEIGHT BITS LAYOUT ...");
    const Shape shape = {Number(argv[3]), Number(argv[4]), static_cast<int>(Number(argv[5])),
                         words[6] == "planar"};
    if (words[1] == "make")
        Make(words[2], shape, Number(argv[7]), argc > 8 && words[8] == "packbits");
    else
        Check(words[2], shape, ChangeOf(words[7]));
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "big_picture: %s\n", failure.what());
    return 1;
}
