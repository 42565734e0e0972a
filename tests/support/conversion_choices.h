#pragma once

#include "tests/support/naive_conversion.h"

#include <utility>
#include <vector>

// All that a conversion can be asked for, to draw from or to go through.
namespace zvk::Pelkraft::TestSupport {

// Depth and layout of a row.
struct Form
{
    int bits;
    bool planar;
};

// Every pair of forms between which a way leads.
std::vector<std::pair<Form, Form>> ServedForms(const NaiveOperation& operation);

// The fill, the repeats, and maps of each kind onto a source of so many channels.
std::vector<NaiveOperation> Operations(int channels);

// 1 to 20, and those around the ends of units and of method tables.
std::vector<int> ChannelCounts();

// 0 to 40, and those around the ends of batches.
std::vector<int> Widths();

// The destination as wide as the source asks for; by choice 1 narrower and by choice 2 wider, by
// an odd number.
int DestinationWidth(int sourceWidth, int factor, unsigned choice);

} // namespace zvk::Pelkraft::TestSupport
