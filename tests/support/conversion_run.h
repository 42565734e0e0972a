#pragma once

#include "pelkraft/image_row.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/naive_conversion.h"

#include <string>

namespace zvk::Pelkraft::TestSupport {

// One conversion through the public row class.
struct ConversionCase
{
    NaiveGeometry source;
    NaiveGeometry destination;
    NaiveOperation operation;
    bool forcePortable;
};

std::string Describe(const ConversionCase& oneCase);

// Runs it from one row to another, of any class, whose geometries are those of the case.
void RunConversion(const ConversionCase& oneCase, const ImageRow& source, ImageRow& destination);
// Runs it on the given buffers, which hold exactly the rows' bytes.
void RunConversion(const ConversionCase& oneCase, unsigned char* source,
                   unsigned char* destination);

// True if the direct road has to serve it, for rows that do not overlap and whose map names no
// channel beyond the source's.
bool IsServedDirectly(const ConversionCase& oneCase);

// True if the portable unpacker leaves this channel as it is. Such channels are not compared: all
// others of the destination are.
bool IsLeftPacked(const ConversionCase& oneCase, int destinationChannel);

// Sets the samples that IsLeftPacked names to 0, so that the rest can be compared whole.
void ForgetLeftPacked(const ConversionCase& oneCase, Bytes& destinationRow);

} // namespace zvk::Pelkraft::TestSupport
