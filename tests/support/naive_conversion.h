#pragma once

#include <cstddef>
#include <string>
#include <vector>

// These plain loops do what a conversion has to do, sample by sample from the definition. They
// include nothing of the library, so that they are a second opinion.
namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;

struct NaiveGeometry
{
    int width;
    int channels;
    int bits;
    bool planar;
};

// A plain fill, a repeat by a factor, or a map; factor is 1 but for a repeat.
struct NaiveOperation
{
    bool isFill = true;
    int factor = 1;
    bool hasMap = false;
    std::vector<int> map;
};

inline NaiveOperation RepeatBy(int factor)
{
    NaiveOperation operation;
    operation.isFill = false;
    operation.factor = factor;
    return operation;
}

inline NaiveOperation MapTo(const std::vector<int>& map)
{
    NaiveOperation operation;
    operation.isFill = false;
    operation.hasMap = true;
    operation.map = map;
    return operation;
}

std::string Describe(const NaiveGeometry& geometry);
std::string Describe(const NaiveOperation& operation);

// Bit-packed planes, several samples in a byte.
bool IsNaivePacked(const NaiveGeometry& geometry);
std::size_t NaiveRowBytes(const NaiveGeometry& geometry);

// All samples, pixel by pixel, and in a pixel channel by channel.
std::vector<unsigned> ReadSamples(const NaiveGeometry& geometry, const Bytes& row);

// Writes a sample of packed planes bit by bit, and any other byte by byte.
void WriteSample(const NaiveGeometry& geometry, Bytes& row, int pixel, int channel, unsigned value);

// The last byte of each packed plane that is written at all gets zeros after the last pixel.
void ClearBehindLastPixel(const NaiveGeometry& destination, Bytes& row, int setPixels);

// A sample's value in another depth.
unsigned NaiveDepthChange(unsigned value, int from, int to);

// Sets the first count samples of a channel to 0.
void ClearSamples(const NaiveGeometry& geometry, Bytes& row, int channel, int count);

// The number of destination pixels that a conversion sets.
int CountSetPixels(const NaiveGeometry& source, const NaiveGeometry& destination, int factor);

// True if a way leads from one kind of row to the other.
bool IsServed(const NaiveGeometry& source, const NaiveGeometry& destination,
              const NaiveOperation& operation);

// The destination's bytes after the conversion, given those before it.
Bytes NaiveConvert(const NaiveGeometry& source, const Bytes& sourceRow,
                   const NaiveGeometry& destination, const Bytes& before,
                   const NaiveOperation& operation);

} // namespace zvk::Pelkraft::TestSupport
