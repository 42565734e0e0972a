#pragma once

#include "tests/pattern/naive_pattern.h"
#include "tests/support/naive_conversion.h"

#include <cstdint>
#include <string>
#include <vector>

// The golden digests are taken of these cases. All of them come from std::mt19937 alone, whose
// numbers are the same everywhere; those of the standard's distributions are not.
namespace zvk::Pelkraft::TestSupport {

struct GoldenConversion
{
    NaiveGeometry source;
    NaiveGeometry destination;
    NaiveOperation operation;
    Bytes sourceRow;
    Bytes before;
};

constexpr int goldenConversionCount = 200;

GoldenConversion MakeGoldenConversion(int number);

struct PictureSize
{
    int width;
    int height;
};

constexpr PictureSize pictureSizes[] = {{61, 9}, {1021, 5}, {37, 60}};
constexpr int goldenPatternCount = 20;
constexpr int goldenSeedCount = 50;

// Every engine loads it; the reference class reads it as version 2.
NaivePattern MakeGoldenPattern(int number, int seedNumber);

// The step bytes of a picture, row by row.
std::vector<Bytes> MakeGoldenPicture(const NaivePattern& pattern, const PictureSize& size,
                                     int seedNumber);

// A line of goldens.txt begins with one of these names.
std::string ConversionName(int number);
std::string PatternName(int number, int seedNumber);

} // namespace zvk::Pelkraft::TestSupport
