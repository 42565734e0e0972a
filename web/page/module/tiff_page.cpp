#include "web/page/module/answer.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// Reads the first page of a TIFF file in memory. The facts that the page looks at before it reads
// are given as numbers, and rows as the file has them.
namespace zvk::Pelkraft::Page {
namespace {

struct File
{
    const unsigned char* data = nullptr;
    tmsize_t size = 0;
    tmsize_t at = 0;
};

File file;
TIFF* tiff = nullptr;
std::string fault;
std::vector<unsigned char> row;

// libtiff's first words say most; what it tries after a fault only adds to them.
void KeepFault(const char* module, const char* format, std::va_list arguments)
{
    if (!fault.empty())
        return;
    char words[256];
    std::vsnprintf(words, sizeof words, format, arguments);
    fault = module == nullptr ? words : std::string(module) + ": " + words;
}

tmsize_t Read(thandle_t, void* buffer, tmsize_t bytes)
{
    const tmsize_t count = std::clamp<tmsize_t>(file.size - file.at, 0, bytes);
    std::memcpy(buffer, file.data + std::min(file.at, file.size), static_cast<std::size_t>(count));
    file.at += count;
    return count;
}

tmsize_t Write(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t Seek(thandle_t, toff_t offset, int whence)
{
    const toff_t base = whence == SEEK_CUR   ? static_cast<toff_t>(file.at)
                        : whence == SEEK_END ? static_cast<toff_t>(file.size)
                                             : 0;
    const toff_t place = base + offset;
    if (place > INT32_MAX)
        return static_cast<toff_t>(-1);
    file.at = static_cast<tmsize_t>(place);
    return place;
}

int Close(thandle_t)
{
    return 0;
}

toff_t Size(thandle_t)
{
    return static_cast<toff_t>(file.size);
}

int Fail(const std::string& usual)
{
    SetAnswer(fault.empty() ? usual : fault);
    return 1;
}

std::uint16_t FieldOf(std::uint32_t tag, std::uint16_t missing)
{
    std::uint16_t value = missing;
    return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : missing;
}

std::string FactsOf()
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    std::uint16_t extras = 0;
    std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
    std::uint16_t none = 0;
    auto full = static_cast<std::uint16_t>((1U << FieldOf(TIFFTAG_BITSPERSAMPLE, 1)) - 1);
    TIFFGetField(tiff, TIFFTAG_DOTRANGE, &none, &full);
    std::string facts;
    for (const std::uint32_t number :
         {width, height, std::uint32_t{FieldOf(TIFFTAG_SAMPLESPERPIXEL, 1)},
          std::uint32_t{FieldOf(TIFFTAG_BITSPERSAMPLE, 1)},
          std::uint32_t{FieldOf(TIFFTAG_PHOTOMETRIC, 0xFFFF)},
          std::uint32_t{FieldOf(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)},
          std::uint32_t{FieldOf(TIFFTAG_COMPRESSION, COMPRESSION_NONE)},
          std::uint32_t{FieldOf(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT)},
          std::uint32_t{TIFFIsTiled(tiff) != 0}, std::uint32_t{extras},
          static_cast<std::uint32_t>(TIFFIsCODECConfigured(FieldOf(TIFFTAG_COMPRESSION, 1)) != 0),
          static_cast<std::uint32_t>(TIFFScanlineSize(tiff)),
          std::uint32_t{FieldOf(TIFFTAG_INKSET, INKSET_CMYK)}, std::uint32_t{none},
          std::uint32_t{full}})
        facts += std::to_string(number) + ' ';
    facts += '\n';
    char* names = nullptr;
    std::uint16_t count = 0;
    if (TIFFGetField(tiff, TIFFTAG_INKNAMES, &names) == 1 && names != nullptr &&
        TIFFGetField(tiff, TIFFTAG_NUMBEROFINKS, &count) == 1)
        for (int ink = 0; ink < count; ++ink, names += std::strlen(names) + 1)
            facts += std::string(names) + '\n';
    return facts;
}

} // namespace

void SetAnswerToCurrentException()
{
    SetAnswer("out of memory: the picture takes more of it than this page has");
}

PELKRAFT_FOR_PAGE(tiff_close) CloseFile()
{
    if (tiff != nullptr)
        TIFFClose(tiff);
    tiff = nullptr;
    fault.clear();
    return 0;
}

PELKRAFT_FOR_PAGE(tiff_open) OpenFile(const unsigned char* data, int size)
{
    CloseFile();
    file = {data, size, 0};
    TIFFSetErrorHandler(KeepFault);
    TIFFSetWarningHandler(nullptr);
    // Nothing is mapped, and nothing is written.
    tiff =
        TIFFClientOpen("picture", "rm", nullptr, Read, Write, Seek, Close, Size, nullptr, nullptr);
    if (tiff == nullptr)
        return Fail("it is no TIFF file");
    return Answer(FactsOf);
}

// The answer is the row; of separate planes, that of one sample.
PELKRAFT_FOR_PAGE(tiff_row) ReadRow(std::uint32_t y, std::uint16_t sample)
{
    row.assign(static_cast<std::size_t>(std::max<tmsize_t>(TIFFScanlineSize(tiff), 0)), 0);
    if (TIFFReadScanline(tiff, row.data(), y, sample) != 1)
        return Fail("row " + std::to_string(y) + " can't be read");
    return Answer([] { return std::string(row.begin(), row.end()); });
}

} // namespace zvk::Pelkraft::Page
